#include "app/allocator.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {
/// Blocks of this size, several large pages, and above are asked for in large pages.
constexpr std::size_t largeBlockBytes = std::size_t{8} * 1024 * 1024;

bool isPowerOfTwo(std::size_t number)
{
    return number != 0 && (number & (number - 1)) == 0;
}

/// Advises the kernel to back the block with large pages.
void fillWithLargePages(void *block, std::size_t size)
{
    const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const auto address = reinterpret_cast<std::uintptr_t>(block);
    const std::uintptr_t offset = (page - address % page) % page;
    madvise(static_cast<char *>(block) + offset, (size - offset) / page * page, MADV_HUGEPAGE);
}
} // namespace

void returnFreedMemory()
{
    constexpr int thresholdBytes = 128 * 1024;
    mallopt(M_TRIM_THRESHOLD, thresholdBytes);
    mallopt(M_MMAP_THRESHOLD, thresholdBytes);
    mallopt(M_ARENA_MAX, 2);
}

/// Replaces the C library's function for the whole process. For each stream that libmpv opens, FFmpeg clears
/// ten megabytes to probe its first bytes in; in pages of the usual size that takes a fifth of the time from
/// a double click to the sound.
extern "C" int posix_memalign(void **block, std::size_t alignment, std::size_t size) noexcept
{
    if (!isPowerOfTwo(alignment) || alignment % sizeof(void *) != 0) {
        return EINVAL;
    }
    void *made = memalign(alignment, size);
    if (made == nullptr) {
        return ENOMEM;
    }
    if (size >= largeBlockBytes) {
        fillWithLargePages(made, size);
    }
    *block = made;
    return 0;
}

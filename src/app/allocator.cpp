#include "app/allocator.h"

#include <malloc.h>

void returnFreedMemory()
{
    constexpr int thresholdBytes = 128 * 1024;
    mallopt(M_TRIM_THRESHOLD, thresholdBytes);
    mallopt(M_MMAP_THRESHOLD, thresholdBytes);
    mallopt(M_ARENA_MAX, 2);
}

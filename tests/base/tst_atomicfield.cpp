#include "base/atomicfield.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

namespace {
void check(bool held, const char *what)
{
    if (!held) {
        std::fprintf(stderr, "FAIL: %s\n", what);
        std::exit(1);
    }
}

/// What a reader got stays whole and valid while others write. Under ThreadSanitizer this is where a torn
/// access would be seen.
void readersAndWritersMeet()
{
    constexpr int rounds = 20'000;
    AtomicField<std::shared_ptr<const std::string>> field(std::make_shared<const std::string>(64, 'a'));
    const auto write = [&field](char letter) {
        for (int round = 0; round < rounds; ++round) {
            field.set(std::make_shared<const std::string>(64, letter));
        }
    };
    const auto read = [&field] {
        for (int round = 0; round < rounds; ++round) {
            const auto text = field.get();
            check(*text == std::string(64, text->front()), "a value is read whole");
        }
    };
    std::vector<std::thread> threads;
    threads.emplace_back(write, 'b');
    threads.emplace_back(write, 'c');
    threads.emplace_back(read);
    threads.emplace_back(read);
    for (std::thread &thread : threads) {
        thread.join();
    }
}

/// The last owner's destructor may use the field itself, and so must not run inside its lock.
void oldValueIsDestroyedOutsideTheLock()
{
    AtomicField<std::shared_ptr<int>> field;
    bool destroyed = false;
    field.set(std::shared_ptr<int>(new int(1), [&field, &destroyed](const int *value) {
        destroyed = field.get() == nullptr;
        delete value;
    }));
    field.set(nullptr);
    check(destroyed, "the old value is destroyed after the new one is in place");
}
} // namespace

int main()
{
    readersAndWritersMeet();
    oldValueIsDestroyedOutsideTheLock();
    return 0;
}

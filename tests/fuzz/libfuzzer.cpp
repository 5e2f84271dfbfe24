#include "fuzz/targets.h"

#include <QLoggingCategory>
#include <cstddef>
#include <cstdint>
#include <string_view>

// The functions that libFuzzer calls, under the names that it expects.

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    QLoggingCategory::setFilterRules(QStringLiteral("*=false"));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    for (const auto &[name, run] : fuzzTargets) {
        if (std::string_view(name) == FUZZ_TARGET) {
            run(QByteArray(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)));
        }
    }
    return 0;
}

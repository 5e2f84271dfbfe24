#include "playback/mpv/readallowance.h"

#include <algorithm>
#include <utility>

namespace {
constexpr quint64 step = 2 * 1024 * 1024;
/// Pictures stand in front of sound, and beside it: a second of video has two megabytes at most.
constexpr quint64 mostWithoutSound = 8 * 1024 * 1024;
/// What else the program takes meanwhile counts as the stream's, and so only a part of it does.
constexpr qint64 mostCounted = 3 * static_cast<qint64>(step);
constexpr qint64 mostUnexplained = 24LL * 1024 * 1024;
} // namespace

ReadAllowance::ReadAllowance()
    : bytes_(step)
{
    memory_.begin();
}

void ReadAllowance::update(double end, qint64 bufferedBytes, quint64 bytesRead)
{
    if (end != std::exchange(end_, end)) {
        bytesAtSound_ = bytesRead;
    }
    buffered_ = bufferedBytes;
}

bool ReadAllowance::extend(quint64 bytesRead)
{
    const qint64 explained = buffered_ - std::exchange(bufferedBefore_, buffered_);
    const qint64 grown = memory_.grownBytes() - explained;
    memory_.begin();
    // A core takes its time to open a stream, and some memory.
    if (grown > static_cast<qint64>(step) / 2) {
        unexplained_ += std::min(grown, mostCounted);
    }
    if (bytesRead - bytesAtSound_ >= mostWithoutSound || unexplained_ > mostUnexplained) {
        return false;
    }
    bytes_ = bytesRead + step;
    return true;
}

#include "playback/stream/hls/steadyclock.h"

namespace {
/// How far times may fall behind without being a jump, in halves of a second, and run ahead, in seconds: what
/// is missing in between may have been lost.
constexpr qint64 behindDivisor = 2;
constexpr qint64 mostAhead = 20;
/// Nothing real is beyond; sums within stay in range.
constexpr qint64 latestPassed = 1LL << 61;
} // namespace

qint64 SteadyClock::shiftFor(qint64 time, qint64 rate, qint64 step)
{
    const qint64 shifted = time + shift_;
    if (passed_ && (shifted < *passed_ - rate / behindDivisor || shifted > *passed_ + mostAhead * rate)) {
        shift_ += *passed_ + step - shifted;
    }
    return shift_;
}

void SteadyClock::pass(qint64 time)
{
    if (time < latestPassed) {
        passed_ = time;
    } else {
        *this = {};
    }
}

#include "playback/stream/timeshares.h"

#include <algorithm>

namespace {
/// What an address gets however many others wait behind it.
constexpr std::chrono::milliseconds shortestShare = std::chrono::seconds(1);
} // namespace

TimeShares::TimeShares(std::chrono::milliseconds total)
    : total_(total)
{
    shareTimer_.setSingleShot(true);
    connect(&shareTimer_, &QTimer::timeout, this, &TimeShares::shareOver);
}

void TimeShares::begin()
{
    elapsed_.start();
}

void TimeShares::beginShare(qsizetype waiting)
{
    if (waiting == 0) {
        endShare();
        return;
    }
    shareTimer_.start(std::max(shortestShare, left() / static_cast<int>(waiting + 1)));
}

void TimeShares::extendShare()
{
    if (shareTimer_.isActive()) {
        shareTimer_.start(std::max(shortestShare, left() / 2));
    }
}

void TimeShares::endShare()
{
    shareTimer_.stop();
}

std::chrono::milliseconds TimeShares::left() const
{
    return total_ - std::chrono::milliseconds(elapsed_.elapsed());
}

#include "playback/mpv/bufferwatch.h"

#include <chrono>
#include <cmath>
#include <utility>

namespace {
/// By how many seconds the loaded ranges grow from one report to the next.
constexpr double reportedGrowth = 1.0;
/// The buffer counts as full a little before its limit: libmpv stops at the packet that would cross it.
constexpr double fullShare = 0.98;
/// What waits to be heard at most, once it has left the buffer.
constexpr std::chrono::milliseconds queuedSound = MpvConditions::serverQueue + MpvConditions::readySound;
/// The share of the time that has to come in as sound for a dry buffer to go on.
constexpr double sustainingShare = 0.5;
} // namespace

BufferWatch::BufferWatch(const MpvConditions &conditions)
    : fullBytes_(
          static_cast<qint64>(std::ceil(fullShare * static_cast<double>(conditions.pausedBufferBytes))))
    , isPaced_(conditions.isPaced)
{
    queuedSoundTimer_.setSingleShot(true);
    queuedSoundTimer_.setInterval(queuedSound);
    connect(&queuedSoundTimer_, &QTimer::timeout, this, &BufferWatch::queuedSoundPlayed);
}

void BufferWatch::setUse(Use use)
{
    const Use before = std::exchange(use_, use);
    if (use == before || use != Use::Played) {
        return;
    }
    if (before != Use::None) {
        watchUnderrun();
    }
    offerRanges();
}

void BufferWatch::update(const CacheState &state)
{
    state_ = state;
    end_ = state.end.value_or(end_);
    if (use_ == Use::Played) {
        watchUnderrun();
        offerRanges();
    } else if (use_ == Use::Kept && state.loadingRests && state.bytesAhead >= fullBytes_) {
        Q_EMIT filledUp();
    }
}

/// An underrun is no lost connection yet: a server that sends each sound just in time never fills a buffer,
/// and the output has its queue. It is one when that has been played and too little has come.
void BufferWatch::watchUnderrun()
{
    if (isPaced_ && state_.underrun && !queuedSoundTimer_.isActive()) {
        underrunEnd_ = end_;
        queuedSoundTimer_.start();
    }
}

void BufferWatch::queuedSoundPlayed()
{
    if (use_ == Use::Played &&
        end_ - underrunEnd_ < sustainingShare * std::chrono::duration<double>(queuedSound).count()) {
        Q_EMIT ranDry();
    }
}

void BufferWatch::offerRanges()
{
    if (state_.ranges.isEmpty() || (toldEnd_ && std::abs(end_ - *toldEnd_) < reportedGrowth)) {
        return;
    }
    toldEnd_ = end_;
    Q_EMIT rangesChanged(state_.ranges);
}

#include "playback/mpv/ratecontrol.h"

#include "playback/mpv/mpvconditions.h"
#include "playback/mpv/mpvhandle.h"
#include "playback/mpv/soundcontrol.h"

#include <chrono>

namespace {
/// How long a pause may wait for loading to go on.
constexpr std::chrono::milliseconds longestPauseDelay{500};
} // namespace

RateControl::RateControl(MpvHandle &handle, const SoundControl &sound, qint64 pausedBufferBytes)
    : handle_(handle)
    , sound_(sound)
    , pausedBufferBytes_(pausedBufferBytes)
{
    pauseDelay_.setSingleShot(true);
    pauseDelay_.setInterval(longestPauseDelay);
    connect(&pauseDelay_, &QTimer::timeout, this, [this] { apply(Rate::Paused); });
}

void RateControl::setRunning(bool running, bool loadingRests)
{
    handle_.setInteger("demuxer-max-bytes", running ? MpvConditions::playingBufferBytes : pausedBufferBytes_);
    if (running) {
        apply(Rate::Running);
    } else {
        apply(loadingRests ? Rate::Pausing : Rate::Paused);
    }
}

void RateControl::loadingGoesOn()
{
    if (rate_ == Rate::Pausing) {
        apply(Rate::Paused);
    }
}

void RateControl::outputOpened()
{
    apply(rate_ == Rate::Running ? Rate::Running : Rate::Paused);
}

void RateControl::apply(Rate rate)
{
    rate_ = rate;
    if (rate == Rate::Pausing) {
        pauseDelay_.start();
    } else {
        pauseDelay_.stop();
        if (sound_.isOutputOpen()) {
            handle_.setFlag("pause", rate == Rate::Paused);
        }
    }
    Q_EMIT changed();
}

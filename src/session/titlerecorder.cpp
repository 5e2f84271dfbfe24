#include "session/titlerecorder.h"

#include "session/nowplaying.h"

#include <chrono>

namespace {
/// A title that stands shorter is entered only if none follows it.
constexpr std::chrono::milliseconds settlingTime{1000};
} // namespace

TitleRecorder::TitleRecorder(TitleHistory &history)
    : history_(history)
{
    settling_.setSingleShot(true);
    settling_.setInterval(settlingTime);
    connect(&settling_, &QTimer::timeout, this, [this] { history_.add(current_); });
}

void TitleRecorder::follow(const NowPlaying &nowPlaying)
{
    if (nowPlaying.title == current_.title) {
        return;
    }
    settling_.stop();
    if (nowPlaying.title.isEmpty()) {
        history_.add(current_);
        current_ = {};
    } else {
        // With the station as of now: when the title ends, another station may be playing already.
        current_ = {QDateTime::currentDateTime(), nowPlaying.station, nowPlaying.title};
        settling_.start();
    }
}

#include "mainwindow/infobinding.h"

#include "session/radiosession.h"
#include "ui/panels/infoview.h"

#include <chrono>

namespace {
/// The area changes no more often than that.
constexpr std::chrono::milliseconds calmTime{500};
} // namespace

InfoBinding::InfoBinding(InfoView &view, const RadioSession &session)
    : view_(view)
    , session_(session)
{
    showing_.setSingleShot(true);
    connect(&showing_, &QTimer::timeout, this, &InfoBinding::show);
    connect(&session, &RadioSession::nowPlayingChanged, this, &InfoBinding::changed);
    connect(&session.heardStream(), &HeardStream::changed, this, &InfoBinding::changed);
}

StreamInfo InfoBinding::info() const
{
    const NowPlaying &now = session_.nowPlaying();
    const StreamInfo &heard = session_.heardStream().info();
    return {.title = now.title,
            .codec = now.codec,
            .bitrate = now.bitrate,
            .buffered = heard.buffered,
            .isUnverified = heard.isUnverified};
}

void InfoBinding::changed()
{
    const StreamInfo next = info();
    if (next == shown_) {
        showing_.stop();
        return;
    }
    // What has ended is not left standing.
    if (calm_.hasExpired() || next.isEmpty()) {
        show();
    } else if (!showing_.isActive()) {
        showing_.start(static_cast<int>(calm_.remainingTime()));
    }
}

void InfoBinding::show()
{
    showing_.stop();
    calm_.setRemainingTime(calmTime);
    shown_ = info();
    view_.setInfo(shown_);
}

#include "mainwindow/infobinding.h"

#include "base/displaytext.h"
#include "playback/heardstream.h"
#include "ui/panels/infoview.h"

#include <chrono>

namespace {
/// The area changes no more often than that.
constexpr std::chrono::milliseconds calmTime{500};
/// A title that stands shorter is entered only if none follows it.
constexpr std::chrono::milliseconds settlingTime{1000};
} // namespace

InfoBinding::InfoBinding(InfoView &view, const HeardStream &heard)
    : view_(view)
    , heard_(heard)
{
    settling_.setSingleShot(true);
    settling_.setInterval(settlingTime);
    connect(&settling_, &QTimer::timeout, this, [this] { history_.add(current_); });
    showing_.setSingleShot(true);
    connect(&showing_, &QTimer::timeout, this, &InfoBinding::show);
    connect(&heard_, &HeardStream::changed, this, &InfoBinding::heardChanged);
}

void InfoBinding::setStation(const QString &name)
{
    station_ = displayText(name);
}

void InfoBinding::heardChanged(const StreamInfo &info)
{
    if (const QString title = displayText(info.title).trimmed(); title != current_.title) {
        titleChanged(title);
    }
    // What has ended is not left standing.
    if (calm_.hasExpired() || info.isEmpty()) {
        show();
    } else if (!showing_.isActive()) {
        showing_.start(static_cast<int>(calm_.remainingTime()));
    }
}

void InfoBinding::titleChanged(const QString &title)
{
    settling_.stop();
    if (title.isEmpty()) {
        history_.add(current_);
        current_ = {};
    } else {
        // With the station as of now: when the sound ends, the next one may have its name here already.
        current_ = {QDateTime::currentDateTime(), station_, title};
        settling_.start();
    }
}

void InfoBinding::show()
{
    showing_.stop();
    calm_.setRemainingTime(calmTime);
    StreamInfo shown = heard_.info();
    shown.title = current_.title;
    view_.setInfo(shown);
}

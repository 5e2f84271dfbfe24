#include "playback/mpv/outputretry.h"

#include "playback/mpv/mpvhandle.h"

#include <QLoggingCategory>
#include <chrono>

namespace {
Q_LOGGING_CATEGORY(lcOutput, "plumtide.playback")

/// How often a sound server is looked for where there was none.
constexpr std::chrono::milliseconds retryTime{3000};
} // namespace

OutputRetry::OutputRetry(MpvHandle &handle, bool nullIsFallback)
    : nullIsFallback_(nullIsFallback)
{
    timer_.setInterval(retryTime);
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [&handle] { handle.command({"ao-reload"}); });
}

void OutputRetry::outputOpened(const QByteArray &name)
{
    if (!nullIsFallback_ || name != "null") {
        timer_.stop();
    } else if (!timer_.isActive()) {
        qCWarning(lcOutput) << "no sound server answers; playing unheard until one does";
        timer_.start();
    }
}

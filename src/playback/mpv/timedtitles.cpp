#include "playback/mpv/timedtitles.h"

#include <utility>

void TimedTitles::add(quint64 position, const QByteArray &title)
{
    // The first one may have stood for long, and is told to everybody who comes.
    const auto time = std::exchange(isFirst_, false) ? std::optional(0.0) : std::nullopt;
    waiting_.push_back({.position = position, .text = title, .time = time});
}

/// What lies between two reports is taken to be spread evenly: a server may send half a minute at once.
void TimedTitles::loaded(quint64 bytesRead, double end)
{
    const quint64 readBefore = std::exchange(bytesRead_, bytesRead);
    const double endBefore = std::exchange(end_, end).value_or(0);
    for (Title &title : waiting_) {
        if (!title.time && title.position <= bytesRead) {
            const quint64 since = title.position > readBefore ? title.position - readBefore : 0;
            const auto share = bytesRead > readBefore
                                   ? static_cast<double>(since) / static_cast<double>(bytesRead - readBefore)
                                   : 1.0;
            title.time = endBefore + share * (end - endBefore);
        }
    }
}

std::optional<QByteArray> TimedTitles::heardAt(double time)
{
    std::optional<QByteArray> heard;
    while (!waiting_.empty() && waiting_.front().time && *waiting_.front().time <= time) {
        heard = std::move(waiting_.front().text);
        waiting_.pop_front();
    }
    return heard;
}

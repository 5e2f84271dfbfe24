#include "playback/stream/streamcandidates.h"

#include "playback/stream/playlist.h"

#include <chrono>

namespace {
/// A place is free a second or two after the listener before has gone.
constexpr int mostTimesBusy = 3;
constexpr std::chrono::milliseconds restTime = std::chrono::seconds(1);
} // namespace

StreamCandidates::StreamCandidates(const QUrl &address)
{
    waiting_.push_back({.url = address});
}

std::optional<StreamCandidate> StreamCandidates::takeNext()
{
    if (waiting_.empty() || tried_ == maximumTried) {
        return std::nullopt;
    }
    ++tried_;
    const StreamCandidate next = waiting_.front();
    waiting_.pop_front();
    return next;
}

void StreamCandidates::insertEntries(const StreamCandidate &playlist, const QByteArray &text,
                                     const QUrl &base)
{
    if (playlist.depth >= maximumDepth) {
        return;
    }
    const QList<QUrl> entries = Playlist::entries(text, base);
    for (auto entry = entries.crbegin(); entry != entries.crend(); ++entry) {
        waiting_.push_front({.url = *entry, .depth = playlist.depth + 1});
    }
}

void StreamCandidates::postpone(const StreamCandidate &busy)
{
    if (busy.timesBusy < mostTimesBusy) {
        waiting_.push_back({.url = busy.url,
                            .depth = busy.depth,
                            .timesBusy = busy.timesBusy + 1,
                            .rest = QDeadlineTimer(restTime)});
    }
}

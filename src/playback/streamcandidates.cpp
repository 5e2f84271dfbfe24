#include "playback/streamcandidates.h"

#include "playback/backend.h"
#include "playback/playlist.h"

namespace {
using Approach = StreamCandidate::Approach;

bool isNamedLikeAPlaylist(const QUrl &address)
{
    const QString path = address.path();
    return path.endsWith(QLatin1StringView(".m3u"), Qt::CaseInsensitive) ||
           path.endsWith(QLatin1StringView(".pls"), Qt::CaseInsensitive);
}

StreamCandidate candidateFor(const QUrl &address, Approach usual, int depth)
{
    return {.url = address,
            .approach = isNamedLikeAPlaylist(address) ? Approach::ProbeOnly : usual,
            .depth = depth};
}
} // namespace

StreamCandidates::StreamCandidates(const StreamRequest &request)
{
    waiting_.push_back(
        candidateFor(request.url, request.headers.isEmpty() ? Approach::Probe : Approach::Offer, 0));
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
        waiting_.push_front(candidateFor(*entry, Approach::Offer, playlist.depth + 1));
    }
}

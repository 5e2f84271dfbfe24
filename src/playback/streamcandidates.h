#pragma once

#include <QByteArray>
#include <QUrl>
#include <deque>
#include <optional>

struct StreamRequest;

/// An address that may be a stream's.
struct StreamCandidate
{
    /// What is done with it first.
    enum class Approach {
        Offer,     ///< it is taken for a stream
        Probe,     ///< it is probed, and taken for a stream only if its server is slow to answer
        ProbeOnly, ///< it is named like a playlist
    };

    QUrl url;
    Approach approach = Approach::Probe;
    /// How many playlists lead to it.
    int depth = 0;
};

/// The addresses that one start tries, in their order.
class StreamCandidates
{
public:
    /// How deep playlists may name playlists.
    static constexpr int maximumDepth = 3;
    /// How many are tried: playlists that name each other multiply.
    static constexpr int maximumTried = 64;

    /// Begins with the address of `request` alone. A request with headers of its own is offered first: a
    /// server may let a listener in once only, and be slow to notice that the probe has left.
    explicit StreamCandidates(const StreamRequest &request);

    /// The next one to try; none where all have been, or as many as may be.
    std::optional<StreamCandidate> takeNext();
    /// How many wait.
    qsizetype waiting() const { return static_cast<qsizetype>(waiting_.size()); }
    /// Puts what a playlist names before those that wait. `text` is what was found at `playlist`, and its
    /// entries may be relative to `base`. One that lies too deep names none.
    void insertEntries(const StreamCandidate &playlist, const QByteArray &text, const QUrl &base);

private:
    std::deque<StreamCandidate> waiting_;
    int tried_ = 0;
};

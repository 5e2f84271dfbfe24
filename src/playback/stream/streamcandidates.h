#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QUrl>
#include <deque>
#include <optional>

/// An address that may be a stream's.
struct StreamCandidate
{
    QUrl url;
    /// How many playlists lead to it.
    int depth = 0;
    /// How often its server has had no place for another listener, and how long it is left alone since.
    int timesBusy = 0;
    QDeadlineTimer rest = {};
};

/// The addresses that one start tries, in their order.
class StreamCandidates
{
public:
    /// How deep playlists may name playlists.
    static constexpr int maximumDepth = 3;
    /// How many are tried: playlists that name each other multiply.
    static constexpr int maximumTried = 64;

    /// Begins with that address alone.
    explicit StreamCandidates(const QUrl &address);

    /// The next one to try; none where all have been, or as many as may be.
    std::optional<StreamCandidate> takeNext();
    /// How many wait.
    qsizetype waiting() const { return static_cast<qsizetype>(waiting_.size()); }
    /// Puts what a playlist names before those that wait. `text` is what was found at `playlist`, and its
    /// entries may be relative to `base`. One that lies too deep names none.
    void insertEntries(const StreamCandidate &playlist, const QByteArray &text, const QUrl &base);
    /// Puts one behind those that wait, because its server was busy; unless that has been so often.
    void postpone(const StreamCandidate &busy);

private:
    std::deque<StreamCandidate> waiting_;
    int tried_ = 0;
};

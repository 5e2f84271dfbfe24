#pragma once

#include "playback/backend.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <QUrl>
#include <chrono>
#include <deque>

class HttpExchange;

/// Finds the stream behind an address, which may be a playlist, a playlist of playlists, or redirected.
///
/// Candidates are tried in order. What a start is given is looked at first; what a playlist names, unless the
/// name is that of another playlist, is taken for a stream and handed out at once, because servers count
/// their listeners and are slow to send the first bytes. Only when such a stream is refused it is looked at,
/// for it may be a playlist or a redirect after all; and what looks like sound is handed out a second time,
/// because a stream that is joined in the middle is sometimes taken for something else. The name of a server
/// is looked up before its stream is handed out: here a name server that does not answer holds a few threads,
/// and none of the player's. Each candidate has its share of the time that is left, so that a dead one leaves
/// time for the next.
///
/// A stream that has not begun to be read a while after it was handed out is looked at beside, because FFmpeg
/// asks again and again for an answer without a length that is too short to be sound, and never refuses it.
/// And what has not answered its look after that while is handed out beside: a server that takes most of the
/// time to answer would take as much again. Where the request has headers of its own, its address is handed
/// out unseen as well: a server may let a listener in once only, and be slow to see that he has gone.
///
/// Lives on the main thread. Ends by being destroyed, or with failed().
class StreamResolver : public QObject
{
    Q_OBJECT

public:
    /// How deep playlists may name playlists.
    static constexpr int maximumDepth = 3;
    /// How many candidates one start tries: playlists that name each other multiply.
    static constexpr int maximumCandidates = 64;

    /// The User-Agent that stream servers are sent.
    static QByteArray userAgent();

    explicit StreamResolver(const StreamRequest &request, QObject *parent = nullptr);
    ~StreamResolver() override;

    /// What a request for `url` carries: the headers of the stream's request where they may go there, and
    /// always a User-Agent.
    HttpHeaders headersFor(const QUrl &url) const;

    /// Begins. Signals may be sent before this returns.
    void start();
    /// The stream handed out last could not be played; goes on.
    void refused();
    /// The stream handed out last must not be tried again; goes on.
    void reject();
    /// The stream handed out last has been taken for sound, though it has not been heard yet.
    void accepted();

Q_SIGNALS:
    void streamFound(const QUrl &stream);
    /// What was handed out last is not to be played after all.
    void streamDropped();
    /// There is nothing left to try.
    void failed();

private:
    struct Candidate
    {
        QUrl url;
        int depth = 0;
        /// Whether it goes out as a stream unseen.
        bool trusted = false;
    };

    void next();
    void shareTime();
    std::chrono::milliseconds timeLeft() const;
    void lookUpName();
    void dropName();
    void doubt();
    void look();
    void judge(bool complete);
    void dismiss();
    void lookFailed(int code);
    void handOut(const QUrl &stream);
    void endLook();

    QUrl address_;
    HttpHeaders ownHeaders_;
    std::deque<Candidate> waiting_;
    int tried_ = 0;
    Candidate current_;
    /// What has been handed out last of the current candidate, and how often.
    QUrl handedOut_;
    int timesHandedOut_ = 0;
    std::chrono::milliseconds timeout_;
    QElapsedTimer elapsed_;
    QTimer share_;
    HttpExchange *exchange_ = nullptr;
    /// Until a stream that was handed out unseen is looked at, though it has not been refused, or one whose
    /// look has no answer is handed out.
    QTimer doubt_;
    /// -1 while no name is being looked up.
    int lookup_ = -1;
};

#pragma once

#include "playback/stream/icyreader.h"
#include "playback/stream/oggtitles.h"
#include "playback/stream/streamaccess.h"
#include "playback/stream/streamconnection.h"
#include "playback/stream/streamsource.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QUrl>
#include <memory>
#include <optional>

/// A stream that a server sends over one connection, without an end. Where the connection ends, or is silent
/// for a while, another is made, again and again: whether it is worth waiting for is decided by whoever hears
/// what is still in hand. The silent one stays meanwhile, and goes on where it speaks first.
class LiveStream : public StreamSource
{
    Q_OBJECT

public:
    /// Goes on with `connection`, which has found sound behind `address`.
    LiveStream(const StreamAccess &access, QUrl address, StreamConnection::Pointer connection,
               QObject *parent = nullptr);

    void start() override;

private:
    void moreWanted() override;
    void receive();
    void rest(bool isResting);
    void lost(bool isComplete);
    void scheduleAttempt();
    void attempt();
    void answered(StreamConnection::Finding finding);
    void refused();
    void adopt();

    const StreamAccess access_;
    /// What the station's address is.
    const QUrl address_;
    /// Null while it is lost.
    StreamConnection::Pointer current_;
    /// One that has been asked for and has not answered yet.
    StreamConnection::Pointer next_;
    std::optional<IcyReader> icy_;
    /// None where the server itself tells titles.
    std::optional<OggTitles> oggTitles_;
    quint64 receivedBefore_ = 0;
    bool isResting_ = false;
    /// What is asked for next: where its redirects have led last, or the address itself.
    QUrl target_;
    int attempts_ = 0; // since sound came last
    QElapsedTimer sinceAttempt_;
    QTimer silence_;
    QTimer pause_; // before the next attempt
};

#pragma once

#include "playback/stream/streamaccess.h"
#include "playback/stream/streamcandidates.h"
#include "playback/stream/streamconnection.h"
#include "playback/stream/timeshares.h"

#include <QObject>
#include <QTimer>
#include <memory>

class StreamSource;
struct StreamRequest;

/// Finds the stream behind an address, which may be a playlist, a playlist of playlists, or redirected, and
/// offers the player one stream after the other until it plays one.
///
/// Candidates are tried in order, each within its share of the time, and each over one connection: what tells
/// by its first bytes that it is sound is offered, and goes on. One whose server has no place for another
/// listener is tried again after a second: the listener before may have been this one.
///
/// Lives on the main thread. Ends by being destroyed, or with failed(). Inside a slot of its signals it may
/// be deleted only with deleteLater().
class StreamResolver : public QObject
{
    Q_OBJECT

public:
    explicit StreamResolver(const StreamRequest &request, QObject *parent = nullptr);
    ~StreamResolver() override;

    /// Begins. Signals may be sent before this returns.
    void start();
    /// The player could not play the stream offered last; goes on.
    void refused();
    /// The player has recognised the stream offered last as sound, though it has not been heard yet.
    void accepted();

Q_SIGNALS:
    /// `stream` is offered to the player, in the place of what was offered before. Whoever receives it owns
    /// it, and starts it.
    void streamFound(StreamSource *stream);
    /// What was offered last is not to be played after all.
    void streamDropped();
    /// There is nothing left to try.
    void failed();

private:
    /// What is done with the current candidate.
    enum class Stage {
        None,    ///< there is none: before the start, between two of them, and after the last
        Waiting, ///< its server was busy
        Asking,  ///< its server has not answered yet
        Offered, ///< a stream has been found there, and the player may play it
    };

    static bool mayFollow(Stage from, Stage to);
    void enter(Stage stage);
    void next();
    void ask();
    void evaluate(StreamConnection::Finding finding);
    void offer(std::unique_ptr<StreamSource> stream);

    const StreamAccess access_;
    StreamCandidates candidates_;
    TimeShares time_;
    Stage stage_ = Stage::None;
    StreamCandidate current_;
    /// While the stage is Asking.
    StreamConnection::Pointer connection_;
    QTimer wait_;
};

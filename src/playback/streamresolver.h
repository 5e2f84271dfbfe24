#pragma once

#include "playback/backend.h"
#include "playback/namelookup.h"
#include "playback/streamcandidates.h"
#include "playback/streamheaders.h"
#include "playback/streamprobe.h"
#include "playback/timeshares.h"

#include <QObject>
#include <QTimer>
#include <QUrl>

/// Finds the stream behind an address, which may be a playlist, a playlist of playlists, or redirected, and
/// offers the player one address after the other until it plays one.
///
/// Candidates are tried in order, each within its share of the time. What a start is given is probed first;
/// what a playlist names, unless the name is that of another playlist, is taken for a stream and offered at
/// once, because servers count their listeners and are slow to send the first bytes. Only when the player
/// refuses such a stream it is probed, for it may be a playlist or a redirect after all; and what the probe
/// takes for sound is offered a second time, because a stream that is joined in the middle is sometimes taken
/// for something else. The name of a server is looked up before its address is offered unprobed.
///
/// An address that was offered unprobed and that the player has not begun to read a while later is probed
/// while it stays offered, because FFmpeg asks again and again for an answer without a length that is too
/// short to be sound, and never refuses it. And an address whose probe has had no answer after that while is
/// offered meanwhile: a server that takes most of the time to answer would take as much again.
///
/// Lives on the main thread. Ends by being destroyed, or with failed(). Inside a slot of its signals it may
/// be deleted only with deleteLater().
class StreamResolver : public QObject
{
    Q_OBJECT

public:
    explicit StreamResolver(const StreamRequest &request, QObject *parent = nullptr);

    /// Begins. Signals may be sent before this returns.
    void start();
    /// The player could not play the stream offered last; goes on.
    void refused();
    /// The stream offered last must not be tried again; goes on.
    void reject();
    /// The player has recognised the stream offered last as sound, though it has not been heard yet.
    void accepted();

Q_SIGNALS:
    /// `stream` is offered to the player, in the place of what was offered before.
    void streamFound(const QUrl &stream);
    /// What was offered last is not to be played after all.
    void streamDropped();
    /// There is nothing left to try.
    void failed();

private:
    /// What is done with the current candidate.
    enum class Stage {
        None,                ///< there is none: before the start, between two of them, and after the last
        ResolvingName,       ///< its server's name is looked up, for it to be offered unprobed
        Probing,             ///< it is probed, and has not been offered
        ProbingSlowServer,   ///< the same, while the name is looked up for it to be offered meanwhile
        OfferedUnprobed,     ///< it is offered as it is
        OfferedWhileProbing, ///< the same, while a probe finds out whether it is a stream
        ProbingRefused,      ///< it has been refused, and a probe finds out what it is
        OfferedProbed,       ///< what the probe has found is offered
    };

    static bool mayFollow(Stage from, Stage to);
    static bool resolvesName(Stage stage);
    static bool probes(Stage stage);
    static bool hasOffered(Stage stage);
    void enter(Stage stage);
    void next();
    void resolveName();
    void offerUnprobed();
    void offerProbed(const QUrl &stream);
    void probe();
    void evaluate(const StreamProbe::Result &result);
    void disregardProbe();
    void noResponse();

    const StreamHeaders headers_;
    StreamCandidates candidates_;
    TimeShares time_;
    Stage stage_ = Stage::None;
    StreamCandidate current_;
    /// What has been offered last of the current candidate, and how often.
    QUrl offered_;
    int timesOffered_ = 0;
    NameLookup nameLookup_;
    StreamProbe probe_;
    /// The time that a player has to begin to read what is offered unprobed, or a server to answer the probe.
    QTimer responseTimer_;
};

#pragma once

#include "base/atomicfield.h"
#include "base/deletelater.h"
#include "favourites/radiomodel.h"
#include "playback/backend.h"
#include "playback/playbackstate.h"

#include <QObject>
#include <QThreadPool>
#include <functional>
#include <memory>

class QTimer;

/// Starts streams, turns what the player reports and the time-out of a start into a state and the two status
/// texts, and tears the player down.
///
/// Everything runs on the main thread but the making of an item, which happens on a thread of its own, one
/// item at a time and in the order of the starts.
class StreamPlayback : public QObject, private Observer
{
    Q_OBJECT

public:
    /// The stored time-out of a start; invalid where none is stored.
    using StoredTimeout = std::function<QVariant()>;
    /// The stored choice of the User-Agent that private stations are shown; invalid where none is stored.
    using StoredUserAgent = std::function<QVariant()>;

    /// What a play/pause command did.
    enum class Toggle { NoPlayer, Paused, Resumed };

    /// The backend must outlive this object.
    StreamPlayback(Backend &backend, StoredTimeout storedTimeout, StoredUserAgent storedUserAgent,
                   QObject *parent = nullptr);
    ~StreamPlayback() override;

    /// Plays `address` under the name `name`. Does nothing for an address that is null or empty.
    void playRadioFromURL(const QString &address, const QString &name);

    /// Plays a station that the user has entered, from its own address fields. Does nothing for null, and
    /// where it has no url or no port; empty texts count as there.
    void playRadioCustomWithObject(const StationRecord &model);

    /// Leaves the previous player and starts a stream. Does nothing for a null address; one that is no URL
    /// ends in a player that failed.
    void executeSynchAVPlayer(const QString &address, const QString &name);

    /// The same for a private station: its credentials and the chosen User-Agent go with every request for
    /// its stream. Does nothing for null.
    void executeSynchPrivateAVPlayer(const StationRecord &model);

    /// The time-out of a start has passed: ends a player that never streamed.
    void timerDone();

    /// Tears the current player down; does nothing where there is no player or no item.
    void destroyPlayer();

    /// Pauses a player whose rate is not 0, resumes one whose rate is.
    Toggle togglePause();

    /// Null while nothing plays.
    const std::shared_ptr<BackendPlayer> &myBackendPlayer() const { return myBackendPlayer_; }
    /// The item that was made last; null once it has been torn down.
    std::shared_ptr<BackendItem> playeritem() const { return playeritem_.get(); }
    /// The time-out of the latest start; null once it has been taken back.
    const QTimer *globalTimer() const { return globalTimer_.get(); }
    /// Whether a stream is known to be playing.
    bool isPlaying() const { return isPlaying_; }
    PlaybackState state() const;
    /// The name that the latest start was given; null before the first.
    const QString &station() const { return station_; }

Q_SIGNALS:
    void titleChanged(const QString &text);
    /// Written every time, also when the text stays the same.
    void statusChanged(const QString &text);
    /// Whether there is a player whose rate is not 0; sent whenever that may have changed.
    void runningChanged(bool running);
    /// A stream of the name station() is being started.
    void started();
    /// On a real change only; it has been sent by the time that the texts which go with it are.
    void stateChanged(PlaybackState state);
    /// destroyPlayer() has ended a player.
    void tornDown();

private:
    /// What a start begins with: leaves the previous player and starts the time-out, which it gives in
    /// seconds.
    double beginStart(const QString &name);
    void detachPlayer();
    /// Gives the time-out in seconds.
    double startTimeout();
    void stopTimeout();
    void makeItem(const StreamRequest &request);
    void makePlayer();
    void stopObservingItem();
    void observeValueForKeyPath(QStringView keyPath, const Observable *object,
                                const QVariant &newValue) override;
    void playerStatusChanged();
    void itemChanged(QStringView keyPath, const QVariant &newValue);
    void reportRunning();
    /// `progress` is what the state is while nobody pauses.
    void setProgress(PlaybackState progress);
    void reportState();
    void endPlayer(PlaybackState ending);

    Backend &backend_;
    StoredTimeout storedTimeout_;
    StoredUserAgent storedUserAgent_;
    std::shared_ptr<BackendPlayer> myBackendPlayer_;
    AtomicField<std::shared_ptr<BackendItem>> playeritem_;
    /// Ended from within its own signal, and so never deleted on the spot.
    std::unique_ptr<QTimer, DeleteLater> globalTimer_;
    bool isPlaying_ = false;
    QString station_;
    /// The state but for a pause, which is told by the player.
    PlaybackState progress_ = PlaybackState::Stopped;
    PlaybackState reportedState_ = PlaybackState::Stopped;
    QThreadPool itemMaker_;
};

#include "playback/streamplayback.h"

#include "base/rvobject.h"
#include "http/address.h"
#include "playback/keypath.h"
#include "playback/privatestream.h"

#include <QTimer>
#include <algorithm>
#include <limits>
#include <utility>

namespace {
bool isRunning(const BackendPlayer &player)
{
    // A rate that is not a number counts as running.
    return player.rate() != 0.0F;
}
} // namespace

StreamPlayback::StreamPlayback(Backend &backend, StoredTimeout storedTimeout, StoredUserAgent storedUserAgent,
                               QObject *parent)
    : QObject(parent)
    , backend_(backend)
    , storedTimeout_(std::move(storedTimeout))
    , storedUserAgent_(std::move(storedUserAgent))
{
    itemMaker_.setMaxThreadCount(1);
    itemMaker_.setThreadPriority(QThread::HighPriority);
    // The thread is made before the backend opens its library: making one meanwhile would wait for that.
    itemMaker_.setExpiryTimeout(-1);
    itemMaker_.start([] {});
}

StreamPlayback::~StreamPlayback()
{
    itemMaker_.clear();
    itemMaker_.waitForDone();
}

void StreamPlayback::playRadioFromURL(const QString &address, const QString &name)
{
    if (!address.isEmpty()) {
        Q_EMIT titleChanged(name);
        executeSynchAVPlayer(address, name);
    }
}

void StreamPlayback::playRadioCustomWithObject(const StationRecord &model)
{
    if (!model) {
        return;
    }
    const QString url = model->text(RadioField::url);
    const QString port = model->text(RadioField::port);
    if (url.isNull() || port.isNull()) {
        return;
    }
    if (model->flag(RadioField::radioIsPrivate)) {
        executeSynchPrivateAVPlayer(model);
        return;
    }
    // The port follows the mount point: users enter the address of a public station for that order.
    executeSynchAVPlayer(url + model->text(RadioField::mountpoint) + QLatin1Char(':') + port,
                         model->text(RadioField::name));
}

void StreamPlayback::executeSynchAVPlayer(const QString &address, const QString &name)
{
    if (address.isNull()) {
        return;
    }
    const double timeout = beginStart(name);
    makeItem({urlFromAddress(address), timeout});
}

void StreamPlayback::executeSynchPrivateAVPlayer(const StationRecord &model)
{
    if (!model) {
        return;
    }
    const QString name = model->text(RadioField::name);
    const double timeout = beginStart(name);
    const StreamRequest request{privateStreamUrl(*model), timeout,
                                privateStreamHeaders(*model, storedUserAgent_())};
    Q_EMIT titleChanged(name);
    makeItem(request);
}

void StreamPlayback::timerDone()
{
    if (isPlaying_) {
        stopTimeout();
        return;
    }
    endPlayer(PlaybackState::Failed);
    setProgress(PlaybackState::Failed);
    Q_EMIT statusChanged(QStringLiteral("Server is not responding"));
}

void StreamPlayback::destroyPlayer()
{
    endPlayer(PlaybackState::Stopped);
}

void StreamPlayback::endPlayer(PlaybackState ending)
{
    if (!myBackendPlayer_ || !playeritem()) {
        return;
    }
    stopTimeout();
    myBackendPlayer_->removeObserver(this, KeyPath::status);
    stopObservingItem();
    playeritem_.set(nullptr);
    // First, because what is heard ends with the player, and whoever is told so asks for the state.
    progress_ = ending;
    myBackendPlayer_.reset();
    reportState();
    Q_EMIT titleChanged(QStringLiteral("idle"));
    Q_EMIT statusChanged(QStringLiteral("Terminated / lost connection"));
    isPlaying_ = false;
    reportRunning();
    Q_EMIT tornDown();
}

StreamPlayback::Toggle StreamPlayback::togglePause()
{
    if (!myBackendPlayer_) {
        return Toggle::NoPlayer;
    }
    const bool running = isRunning(*myBackendPlayer_);
    if (running) {
        myBackendPlayer_->pause();
        isPlaying_ = false;
        if (progress_ == PlaybackState::Playing) {
            // What it asks at its end, whether there has been sound, is answered.
            stopTimeout();
        }
        Q_EMIT statusChanged(QStringLiteral("Paused (buffering in background)"));
    } else {
        // The status text stays until the next report replaces it.
        myBackendPlayer_->play();
        isPlaying_ = true;
    }
    reportRunning();
    return running ? Toggle::Paused : Toggle::Resumed;
}

double StreamPlayback::beginStart(const QString &name)
{
    // Before the old player goes, so that what it was doing is not reported once more.
    station_ = name;
    progress_ = PlaybackState::Connecting;
    detachPlayer();
    Q_EMIT started();
    reportState();
    Q_EMIT titleChanged(name);
    Q_EMIT statusChanged(QStringLiteral("Connecting please wait.."));
    stopTimeout();
    return startTimeout();
}

void StreamPlayback::detachPlayer()
{
    if (myBackendPlayer_) {
        myBackendPlayer_->removeObserver(this, KeyPath::status);
        myBackendPlayer_.reset();
        reportRunning();
    }
    stopObservingItem();
}

double StreamPlayback::startTimeout()
{
    constexpr double longest = std::numeric_limits<int>::max() / 1000.0;
    const double seconds = std::clamp(RVObject::rtoToTime(storedTimeout_()), 0.0, longest);
    globalTimer_.reset(new QTimer(this));
    globalTimer_->setSingleShot(true);
    globalTimer_->setTimerType(Qt::PreciseTimer);
    connect(globalTimer_.get(), &QTimer::timeout, this, &StreamPlayback::timerDone);
    globalTimer_->start(static_cast<int>(seconds * 1000));
    return seconds;
}

void StreamPlayback::stopTimeout()
{
    if (globalTimer_) {
        globalTimer_->stop();
        globalTimer_.reset();
    }
}

void StreamPlayback::makeItem(const StreamRequest &request)
{
    isPlaying_ = false;
    itemMaker_.start([this, request] {
        playeritem_.set(backend_.makeItem(request));
        QMetaObject::invokeMethod(this, &StreamPlayback::makePlayer, Qt::QueuedConnection);
    });
}

/// Takes whichever item was written last; a later start may have replaced the one that this step is for, and
/// its own step then takes the same item once more.
void StreamPlayback::makePlayer()
{
    const auto item = playeritem();
    if (!item) {
        return;
    }
    item->addObserver(this, KeyPath::playbackBufferEmpty);
    item->addObserver(this, KeyPath::playbackBufferFull);
    item->addObserver(this, KeyPath::playbackLikelyToKeepUp);
    item->addObserver(this, KeyPath::loadedTimeRanges);
    myBackendPlayer_ = backend_.makePlayer(item);
    myBackendPlayer_->addObserver(this, KeyPath::status);
    myBackendPlayer_->play();
    reportRunning();
}

void StreamPlayback::stopObservingItem()
{
    if (const auto item = playeritem()) {
        item->removeObserver(this, KeyPath::playbackLikelyToKeepUp);
        item->removeObserver(this, KeyPath::playbackBufferEmpty);
        item->removeObserver(this, KeyPath::playbackBufferFull);
        item->removeObserver(this, KeyPath::loadedTimeRanges);
    }
}

void StreamPlayback::observeValueForKeyPath(QStringView keyPath, const Observable *object,
                                            const QVariant &newValue)
{
    if (!myBackendPlayer_) {
        return;
    }
    if (object == myBackendPlayer_.get() && keyPath == KeyPath::status) {
        playerStatusChanged();
    } else if (object == myBackendPlayer_->currentItem()) {
        itemChanged(keyPath, newValue);
    }
}

void StreamPlayback::playerStatusChanged()
{
    switch (myBackendPlayer_->status()) {
    case BackendPlayer::ReadyToPlay:
        setProgress(PlaybackState::Connecting);
        Q_EMIT statusChanged(QStringLiteral("Connecting please wait.."));
        break;
    case BackendPlayer::Unknown:
    case BackendPlayer::Failed:
        setProgress(PlaybackState::Failed);
        Q_EMIT statusChanged(QStringLiteral("Failed"));
        break;
    }
}

void StreamPlayback::itemChanged(QStringView keyPath, const QVariant &newValue)
{
    if (keyPath == KeyPath::playbackLikelyToKeepUp) {
        setProgress(PlaybackState::Buffering);
        Q_EMIT statusChanged(QStringLiteral("Buffering .."));
    } else if (keyPath == KeyPath::loadedTimeRanges) {
        if (!newValue.toList().isEmpty()) {
            isPlaying_ = isRunning(*myBackendPlayer_);
            setProgress(PlaybackState::Playing);
            Q_EMIT statusChanged(isPlaying_ ? QStringLiteral("- Streaming -") : QStringLiteral("Disconnect"));
        }
    } else if (keyPath == KeyPath::playbackBufferEmpty) {
        Q_EMIT statusChanged(QStringLiteral("Lost connection !"));
        endPlayer(PlaybackState::Failed);
    } else if (keyPath == KeyPath::playbackBufferFull) {
        // A full buffer ends playback exactly like an empty one.
        Q_EMIT statusChanged(QStringLiteral("Buffer is full !"));
        endPlayer(PlaybackState::Stopped);
    }
}

void StreamPlayback::reportRunning()
{
    Q_EMIT runningChanged(myBackendPlayer_ && isRunning(*myBackendPlayer_));
    reportState();
}

PlaybackState StreamPlayback::state() const
{
    const bool isUnderWay = progress_ != PlaybackState::Stopped && progress_ != PlaybackState::Failed;
    return isUnderWay && myBackendPlayer_ && !isRunning(*myBackendPlayer_) ? PlaybackState::Paused
                                                                           : progress_;
}

void StreamPlayback::setProgress(PlaybackState progress)
{
    progress_ = progress;
    reportState();
}

void StreamPlayback::reportState()
{
    const PlaybackState now = state();
    if (now != std::exchange(reportedState_, now)) {
        Q_EMIT stateChanged(now);
    }
}

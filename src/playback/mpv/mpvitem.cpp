#include "playback/mpv/mpvitem.h"

#include "http/address.h"
#include "playback/keypath.h"
#include "playback/mpv/listenersound.h"
#include "playback/mpv/mpvplayer.h"

#include <QLatin1StringView>
#include <utility>

MpvItem::MpvItem(const StreamRequest &request, const MpvConditions &conditions,
                 std::unique_ptr<MpvHandle> handle)
    : request_(request)
    , conditions_(conditions)
    , handle_(std::move(handle))
{
}

MpvItem::~MpvItem() = default;

/// Which stages may follow each other. A player may release its item in any of them.
bool MpvItem::mayFollow(Stage from, Stage to)
{
    switch (to) {
    case Stage::New:
        return false;
    case Stage::Resolving:
        return from == Stage::New;
    case Stage::Opening:
        return from == Stage::Resolving;
    case Stage::Sounding:
    case Stage::Failed:
        return from == Stage::Resolving || from == Stage::Opening;
    case Stage::Ended:
        return from == Stage::Sounding;
    case Stage::Empty:
        return from == Stage::Sounding || from == Stage::Ended;
    case Stage::Full:
        return from == Stage::Opening || from == Stage::Sounding || from == Stage::Ended;
    case Stage::Released:
        return true;
    }
    return false;
}

void MpvItem::enter(Stage stage)
{
    Q_ASSERT(mayFollow(stage_, stage));
    stage_ = stage;
}

bool MpvItem::isBeforeSound() const
{
    return stage_ == Stage::Resolving || stage_ == Stage::Opening;
}

/// Also when there is only what the buffer still holds.
bool MpvItem::isHeard() const
{
    return stage_ == Stage::Sounding || stage_ == Stage::Ended;
}

void MpvItem::attach(MpvPlayer *player)
{
    player_ = player;
}

void MpvItem::detach(MpvPlayer *player)
{
    if (player_ == player) {
        player_ = nullptr;
        release();
    }
}

void MpvItem::setRunning(bool running)
{
    if (running && stage_ == Stage::New) {
        begin();
        return;
    }
    if (!rateControl_) {
        return;
    }
    if (running && stage_ == Stage::Ended) {
        // What ran out during the pause is reported when its sound is missed.
        QMetaObject::invokeMethod(this, &MpvItem::reportEmpty, Qt::QueuedConnection);
    }
    rateControl_->setRunning(running, bufferWatch_->loadingRests());
}

void MpvItem::begin()
{
    enter(Stage::Resolving);
    if (!handle_ || !isHttpUrl(request_.url)) {
        QMetaObject::invokeMethod(this, &MpvItem::fail, Qt::QueuedConnection);
        return;
    }
    handle_->setWakeup([this] { scheduleDrain(); });
    handle_->observe("current-ao", MPV_FORMAT_STRING);
    handle_->observe("core-idle", MPV_FORMAT_FLAG);
    handle_->observe("demuxer-cache-state", MPV_FORMAT_NODE);
    handle_->observe("metadata", MPV_FORMAT_NODE);
    handle_->observe("audio-out-params", MPV_FORMAT_NODE);
    handle_->observe("current-tracks/audio", MPV_FORMAT_NODE);
    soundControl_ = std::make_unique<SoundControl>(*handle_, *conditions_.sound);
    heardReport_ = std::make_unique<HeardReport>(conditions_.heard);
    outputRetry_ = std::make_unique<OutputRetry>(*handle_, conditions_.nullIsFallback);
    formatKeeper_ = std::make_unique<FormatKeeper>(*handle_);
    rateControl_ = std::make_unique<RateControl>(*handle_, *soundControl_, conditions_.pausedBufferBytes);
    connect(rateControl_.get(), &RateControl::changed, this, &MpvItem::updateBufferUse);
    bufferWatch_ = std::make_unique<BufferWatch>(conditions_);
    connect(bufferWatch_.get(), &BufferWatch::rangesChanged, this,
            [this](const QVariantList &ranges) { notify(KeyPath::loadedTimeRanges, ranges); });
    connect(bufferWatch_.get(), &BufferWatch::filledUp, this, &MpvItem::reportFull);
    connect(bufferWatch_.get(), &BufferWatch::ranDry, this, &MpvItem::reportEmpty);
    load_ = std::make_unique<StreamLoad>(*handle_, request_);
    connect(load_.get(), &StreamLoad::titleHeard, this,
            [this](const QByteArray &title) { heardReport_->titleHeard(title); });
    connect(load_.get(), &StreamLoad::factsChanged, this, [this](const StreamSource::Facts &facts) {
        heardReport_->serverChanged(facts.bitrate, facts.isUnverified);
    });
    connect(load_.get(), &StreamLoad::sourceFinished, this, [this] { formatKeeper_->streamEnded(); });
    // An observer of the failure may release the player, and what signals it.
    connect(load_.get(), &StreamLoad::failed, this, &MpvItem::fail, Qt::QueuedConnection);
    load_->start();
}

void MpvItem::fail()
{
    if (isBeforeSound()) {
        enter(Stage::Failed);
        setStatus(BackendPlayer::Failed);
    }
}

void MpvItem::release()
{
    enter(Stage::Released);
    load_.reset();
    bufferWatch_.reset();
    rateControl_.reset();
    formatKeeper_.reset();
    outputRetry_.reset();
    soundControl_.reset();
    heardReport_.reset();
    handle_.reset();
}

void MpvItem::setStatus(BackendPlayer::Status status)
{
    if (player_ != nullptr) {
        player_->setStatus(status);
    }
}

/// On a thread of libmpv.
void MpvItem::scheduleDrain()
{
    if (!drainScheduled_.exchange(true)) {
        QMetaObject::invokeMethod(this, &MpvItem::drain, Qt::QueuedConnection);
    }
}

void MpvItem::drain()
{
    drainScheduled_ = false;
    // What is reported may release this item, and its handle with the events.
    const auto alive = weak_from_this().lock();
    while (alive && stage_ != Stage::Released) {
        const mpv_event &event = handle_->nextEvent();
        if (event.event_id == MPV_EVENT_NONE) {
            break;
        }
        handle(event);
    }
}

void MpvItem::handle(const mpv_event &event)
{
    switch (event.event_id) {
    case MPV_EVENT_START_FILE:
        if (stage_ == Stage::Resolving) {
            enter(Stage::Opening);
            setStatus(BackendPlayer::ReadyToPlay);
        }
        break;
    case MPV_EVENT_FILE_LOADED:
        load_->opened();
        break;
    case MPV_EVENT_AUDIO_RECONFIG:
        soundControl_->restore();
        break;
    case MPV_EVENT_PROPERTY_CHANGE:
        propertyChanged(*static_cast<const mpv_event_property *>(event.data));
        break;
    case MPV_EVENT_COMMAND_REPLY:
        load_->replied(event);
        break;
    case MPV_EVENT_END_FILE:
        if (load_->ended(*static_cast<const mpv_event_end_file *>(event.data)) && stage_ == Stage::Sounding) {
            soundEnded();
        }
        break;
    default:
        break;
    }
}

void MpvItem::propertyChanged(const mpv_event_property &property)
{
    const QLatin1StringView name(property.name);
    const auto *node =
        property.format == MPV_FORMAT_NODE ? static_cast<const mpv_node *>(property.data) : nullptr;
    if (name == QLatin1StringView("metadata")) {
        heardReport_->metadataChanged(node);
    } else if (name == QLatin1StringView("current-tracks/audio")) {
        heardReport_->trackChanged(node);
    } else if (name == QLatin1StringView("audio-out-params")) {
        formatKeeper_->outputChanged(node);
    } else if (name == QLatin1StringView("demuxer-cache-state")) {
        heardReport_->cacheChanged(node);
        if (node != nullptr) {
            cacheChanged(CacheState::from(*node));
        }
    } else if (property.format == MPV_FORMAT_FLAG) {
        const bool value = *static_cast<const int *>(property.data) != 0;
        if (name == QLatin1StringView("core-idle") && !value && isBeforeSound()) {
            soundStarted();
        }
    } else if (property.format == MPV_FORMAT_STRING) {
        outputChanged(*static_cast<const char *const *>(property.data));
    }
}

void MpvItem::outputChanged(const QByteArray &name)
{
    soundControl_->outputOpened(name);
    rateControl_->outputOpened();
    outputRetry_->outputOpened(name);
}

void MpvItem::cacheChanged(const CacheState &state)
{
    if (!state.loadingRests) {
        rateControl_->loadingGoesOn();
    }
    load_->cacheChanged(state);
    bufferWatch_->update(state);
}

void MpvItem::soundStarted()
{
    enter(Stage::Sounding);
    load_->settle();
    // From here on nothing but a really empty output is silence.
    handle_->setFlag("cache-pause", false);
    notify(KeyPath::playbackLikelyToKeepUp, true);
    if (stage_ != Stage::Released) {
        updateBufferUse();
    }
}

/// During a pause it is reported with its end.
void MpvItem::soundEnded()
{
    enter(Stage::Ended);
    if (rateControl_->rate() == RateControl::Rate::Running) {
        reportEmpty();
    }
}

void MpvItem::updateBufferUse()
{
    switch (rateControl_->rate()) {
    case RateControl::Rate::Running:
        bufferWatch_->setUse(isHeard() ? BufferWatch::Use::Played : BufferWatch::Use::None);
        break;
    case RateControl::Rate::Pausing:
        bufferWatch_->setUse(BufferWatch::Use::Pausing);
        break;
    case RateControl::Rate::Paused:
        bufferWatch_->setUse(BufferWatch::Use::Kept);
        break;
    }
}

void MpvItem::reportEmpty()
{
    if (!isHeard()) {
        return;
    }
    enter(Stage::Empty);
    const auto alive = weak_from_this().lock();
    notify(KeyPath::playbackLikelyToKeepUp, false);
    if (alive && stage_ != Stage::Released) {
        notify(KeyPath::playbackBufferEmpty, true);
    }
}

void MpvItem::reportFull()
{
    if (stage_ == Stage::Opening || isHeard()) {
        enter(Stage::Full);
        notify(KeyPath::playbackBufferFull, true);
    }
}

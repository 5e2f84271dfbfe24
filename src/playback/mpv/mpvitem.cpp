#include "playback/mpv/mpvitem.h"

#include "http/address.h"
#include "playback/keypath.h"
#include "playback/mpv/listenersound.h"
#include "playback/mpv/mpvnode.h"
#include "playback/mpv/mpvplayer.h"
#include "playback/streamresolver.h"

#include <QLatin1StringView>
#include <QLoggingCategory>
#include <algorithm>
#include <cmath>
#include <utility>

namespace {
Q_LOGGING_CATEGORY(lcItem, "plumtide.playback")

/// By how many seconds the loaded ranges grow from one report to the next.
constexpr double reportedGrowth = 1.0;
/// The buffer counts as full a little before its limit: libmpv stops at the packet that would cross it.
constexpr double fullShare = 0.98;
/// What waits to be heard at most, once it has left the buffer.
constexpr std::chrono::milliseconds queuedSound = MpvItem::serverQueue + MpvItem::readySound;
/// The share of the time that has to come in as sound for a dry buffer to go on.
constexpr double sustainingShare = 0.5;
/// libmpv's own demand on the likeness to a format, out of 100.
constexpr int surerProbeScore = 26;
/// What this process may take while a stream is opened, whatever for: libmpv takes 10 MiB for every one.
/// FFmpeg reads the tags in front of the sound as a whole, and a tag of 256 MB is a valid one.
constexpr qint64 mostOpeningBytes = 24LL * 1024 * 1024;
constexpr std::chrono::milliseconds memoryCheckTime{10};
/// How long a pause may wait for loading to go on.
constexpr std::chrono::milliseconds longestPauseDelay{500};
/// How often a sound server is looked for where there was none.
constexpr std::chrono::milliseconds outputRetryTime{3000};

/// libmpv takes whole seconds, and 0 for its own default.
QByteArray networkTimeout(double seconds)
{
    constexpr double longest = 24.0 * 60 * 60;
    return QByteArray::number(static_cast<int>(std::clamp(seconds, 1.0, longest)));
}
} // namespace

MpvItem::MpvItem(const StreamRequest &request, const MpvConditions &conditions,
                 std::unique_ptr<MpvHandle> handle)
    : request_(request)
    , conditions_(conditions)
    , handle_(std::move(handle))
    , outputRetry_(this)
    , opening_(this)
    , pauseDelay_(this)
    , dry_(this)
{
    pauseDelay_.setSingleShot(true);
    pauseDelay_.setInterval(longestPauseDelay);
    connect(&pauseDelay_, &QTimer::timeout, this, &MpvItem::applyRate);
    dry_.setSingleShot(true);
    dry_.setInterval(queuedSound);
    connect(&dry_, &QTimer::timeout, this, &MpvItem::judgeDryBuffer);
    opening_.setInterval(memoryCheckTime);
    connect(&opening_, &QTimer::timeout, this, &MpvItem::judgeMemory);
    outputRetry_.setInterval(outputRetryTime);
    connect(&outputRetry_, &QTimer::timeout, this, [this] { handle_->command({"ao-reload"}); });
}

MpvItem::~MpvItem() = default;

void MpvItem::attach(MpvPlayer *player)
{
    player_ = player;
}

void MpvItem::detach(MpvPlayer *player)
{
    if (player_ == player) {
        player_ = nullptr;
        shutDown();
    }
}

void MpvItem::setRunning(bool running)
{
    running_ = running;
    if (running && !begun_) {
        begin();
        return;
    }
    if (!handle_) {
        return;
    }
    handle_->setInteger("demuxer-max-bytes", running ? playingBufferBytes : conditions_.pausedBufferBytes);
    // Loading that rests goes on, up to the new limit, only once something has been taken out of the buffer:
    // a pause waits for that.
    if (!running && loadingRests_) {
        pauseDelay_.start();
    } else {
        applyRate();
    }
    if (running) {
        offerRanges();
        watchDryBuffer();
    }
    if (running && ended_) {
        // What ran out during the pause is reported when its sound is missed.
        QMetaObject::invokeMethod(this, &MpvItem::reportEmpty, Qt::QueuedConnection);
    }
}

void MpvItem::begin()
{
    begun_ = true;
    if (!handle_ || !isHttpUrl(request_.url)) {
        QMetaObject::invokeMethod(this, &MpvItem::fail, Qt::QueuedConnection);
        return;
    }
    handle_->setWakeup([this] { scheduleDrain(); });
    handle_->observe("current-ao", MPV_FORMAT_STRING);
    handle_->observe("core-idle", MPV_FORMAT_FLAG);
    handle_->observe("demuxer-cache-state", MPV_FORMAT_NODE);
    handle_->observe("metadata", MPV_FORMAT_NODE);
    handle_->observe("current-tracks/audio", MPV_FORMAT_NODE);
    soundControl_ = std::make_unique<SoundControl>(*handle_, *conditions_.sound);
    heardReport_ = std::make_unique<HeardReport>(conditions_.heard);

    resolver_ = std::make_unique<StreamResolver>(request_);
    connect(resolver_.get(), &StreamResolver::streamFound, this, &MpvItem::load);
    connect(resolver_.get(), &StreamResolver::streamDropped, this, &MpvItem::drop);
    connect(resolver_.get(), &StreamResolver::failed, this, &MpvItem::fail);
    resolver_->start();
}

void MpvItem::load(const QUrl &stream)
{
    entry_.reset();
    // Options of the one stream: libmpv forgets them with it, so that they reach no other, and has let go of
    // the one before when it takes them.
    MpvHandle::Options options{{"network-timeout", networkTimeout(request_.timeout)}};
    const HttpHeaders headers = resolver_->headersFor(stream);
    for (const auto &[name, value] : headers) {
        if (name.compare("User-Agent", Qt::CaseInsensitive) == 0) {
            options.emplace_back("user-agent", value);
        } else {
            options.emplace_back("http-header-fields-append", name + ": " + value);
            // What is meant for one server only goes to one that has shown that it is that server.
            options.emplace_back("tls-verify", "yes");
        }
    }
    if (stream == std::exchange(stream_, stream)) {
        // It was taken for a format that it hardly resembled.
        options.emplace_back("demuxer-lavf-probescore", QByteArray::number(surerProbeScore));
    }
    memory_.begin();
    opening_.start();
    handle_->load(stream.toEncoded(), options, ++loads_);
}

void MpvItem::judgeMemory()
{
    if (memory_.grownBytes() > mostOpeningBytes) {
        qCWarning(lcItem) << "a stream takes too much memory before it begins; it is not played";
        resolver_->reject();
    }
}

/// What libmpv still has to say of the stream belongs to nobody.
void MpvItem::drop()
{
    opening_.stop();
    entry_.reset();
    ++loads_;
    handle_->command({"stop"});
}

void MpvItem::fail()
{
    if (player_ != nullptr) {
        player_->setStatus(BackendPlayer::Failed);
    }
}

void MpvItem::shutDown()
{
    opening_.stop();
    outputRetry_.stop();
    pauseDelay_.stop();
    dry_.stop();
    soundControl_.reset();
    heardReport_.reset();
    handle_.reset();
    resolver_.reset();
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
    // What is reported may end this item.
    const auto alive = weak_from_this().lock();
    while (alive && handle_) {
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
        if (!started_ && player_ != nullptr) {
            started_ = true;
            player_->setStatus(BackendPlayer::ReadyToPlay);
        }
        break;
    case MPV_EVENT_FILE_LOADED:
        if (resolver_ && entry_) {
            opening_.stop();
            resolver_->accepted();
        }
        break;
    case MPV_EVENT_AUDIO_RECONFIG:
        soundControl_->restore();
        break;
    case MPV_EVENT_PROPERTY_CHANGE:
        propertyChanged(*static_cast<const mpv_event_property *>(event.data));
        break;
    case MPV_EVENT_COMMAND_REPLY:
        if (event.reply_userdata == loads_ && event.error >= 0) {
            entry_ =
                numberAt(static_cast<const mpv_event_command *>(event.data)->result, "playlist_entry_id");
        }
        break;
    case MPV_EVENT_END_FILE:
        streamEnded(*static_cast<const mpv_event_end_file *>(event.data));
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
    } else if (name == QLatin1StringView("demuxer-cache-state")) {
        heardReport_->cacheChanged(node);
        if (node != nullptr) {
            cacheChanged(*node);
        }
    } else if (property.format == MPV_FORMAT_FLAG) {
        const bool value = *static_cast<const int *>(property.data) != 0;
        if (name == QLatin1StringView("core-idle") && !value && !sounded_) {
            soundStarted();
        }
    } else if (property.format == MPV_FORMAT_STRING) {
        outputChanged(*static_cast<const char *const *>(property.data));
    }
}

void MpvItem::outputChanged(const QByteArray &name)
{
    soundControl_->outputOpened(name);
    outputOpen_ = true;
    applyRate();
    if (conditions_.nullIsMakeshift && name == "null") {
        if (!outputRetry_.isActive()) {
            qCWarning(lcItem) << "no sound server answers; playing unheard until one does";
            outputRetry_.start();
        }
    } else {
        outputRetry_.stop();
    }
}

/// The core rests until its output is open and has the right level.
void MpvItem::applyRate()
{
    pauseDelay_.stop();
    if (handle_ && outputOpen_) {
        handle_->setFlag("pause", !running_);
    }
}

void MpvItem::soundStarted()
{
    sounded_ = true;
    opening_.stop();
    resolver_.reset();
    // From here on nothing but a really empty output is silence.
    handle_->setFlag("cache-pause", false);
    notify(KeyPath::playbackLikelyToKeepUp, true);
    offerRanges();
}

void MpvItem::cacheChanged(const mpv_node &state)
{
    ranges_.clear();
    if (const mpv_node *ranges = nodeAt(state, "seekable-ranges");
        ranges != nullptr && ranges->format == MPV_FORMAT_NODE_ARRAY) {
        for (int index = 0; index < ranges->u.list->num; ++index) {
            const mpv_node &range = ranges->u.list->values[index];
            rangesEnd_ = secondsAt(range, "end");
            ranges_.append(
                QVariant::fromValue(BackendItem::TimeRange{secondsAt(range, "start"), rangesEnd_}));
        }
    }
    if (ranges_.isEmpty() && nodeAt(state, "cache-end") != nullptr) {
        // All that was loaded has been played already, as with an output that is faster than the stream.
        rangesEnd_ = secondsAt(state, "cache-end");
        ranges_.append(
            QVariant::fromValue(BackendItem::TimeRange{secondsAt(state, "reader-pts"), rangesEnd_}));
    }
    loadingRests_ = flagAt(state, "idle") && !flagAt(state, "eof");
    if (pauseDelay_.isActive() && !loadingRests_) {
        applyRate();
    }
    offerRanges();
    if (!handle_) {
        return;
    }
    if (!running_ && !pauseDelay_.isActive() && loadingRests_) {
        reportFull(numberAt(state, "fw-bytes"));
    }
    underrun_ = flagAt(state, "underrun");
    watchDryBuffer();
}

void MpvItem::watchDryBuffer()
{
    if (running_ && sounded_ && conditions_.inTime && underrun_ && !dry_.isActive()) {
        dryEnd_ = rangesEnd_;
        dry_.start();
    }
}

/// A dry buffer is no lost connection yet: a server that sends each sound just in time never fills one, and
/// the output has its queue. It is one when that has been played and too little has come.
void MpvItem::judgeDryBuffer()
{
    if (running_ &&
        rangesEnd_ - dryEnd_ < sustainingShare * std::chrono::duration<double>(queuedSound).count()) {
        reportEmpty();
    }
}

void MpvItem::streamEnded(const mpv_event_end_file &end)
{
    // The end of one that has been given up already must not be taken for the end of its successor.
    const bool current = entry_ == end.playlist_entry_id;
    if (!current || (end.reason != MPV_END_FILE_REASON_EOF && end.reason != MPV_END_FILE_REASON_ERROR)) {
        return;
    }
    if (!sounded_) {
        opening_.stop();
        resolver_->refused();
        return;
    }
    ended_ = true;
    if (running_) {
        reportEmpty();
    }
}

/// Ranges that come during a pause wait for its end, so that what the user was told about the pause stays
/// readable.
void MpvItem::offerRanges()
{
    if (!sounded_ || !running_ || ranges_.isEmpty() ||
        (reportedEnd_ && std::abs(rangesEnd_ - *reportedEnd_) < reportedGrowth)) {
        return;
    }
    reportedEnd_ = rangesEnd_;
    notify(KeyPath::loadedTimeRanges, ranges_);
}

void MpvItem::reportFull(qint64 bytes)
{
    if (!fullReported_ &&
        static_cast<double>(bytes) >= fullShare * static_cast<double>(conditions_.pausedBufferBytes)) {
        fullReported_ = true;
        notify(KeyPath::playbackBufferFull, true);
    }
}

void MpvItem::reportEmpty()
{
    if (!emptyReported_) {
        emptyReported_ = true;
        notify(KeyPath::playbackLikelyToKeepUp, false);
        notify(KeyPath::playbackBufferEmpty, true);
    }
}

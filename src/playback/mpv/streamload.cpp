#include "playback/mpv/streamload.h"

#include "playback/mpv/cachestate.h"
#include "playback/mpv/mpvhandle.h"
#include "playback/mpv/mpvnode.h"
#include "playback/stream/streamrequest.h"

#include <QLoggingCategory>
#include <chrono>
#include <utility>

namespace {
Q_LOGGING_CATEGORY(lcLoad, "plumtide.playback")

/// libmpv's own demand on the likeness to a format, out of 100.
constexpr int surerProbeScore = 26;
/// What this process may take while a stream is opened, whatever for: a few compressed bytes can become any
/// number. An answer of the directory may have two thirds of it.
constexpr qint64 mostOpeningBytes = 48LL * 1024 * 1024;
constexpr std::chrono::milliseconds memoryCheckTime{10};
/// libmpv reports what it has in its buffer several times a second.
constexpr std::chrono::milliseconds reportTime{1000};
} // namespace

StreamLoad::StreamLoad(MpvHandle &handle, const StreamRequest &request)
    : handle_(handle)
    , resolver_(std::make_unique<StreamResolver>(request))
{
    connect(resolver_.get(), &StreamResolver::streamFound, this, &StreamLoad::take);
    connect(resolver_.get(), &StreamResolver::streamDropped, this, &StreamLoad::drop);
    connect(resolver_.get(), &StreamResolver::failed, this, &StreamLoad::failed);
    memoryTimer_.setInterval(memoryCheckTime);
    connect(&memoryTimer_, &QTimer::timeout, this, &StreamLoad::checkMemory);
    reportTimer_.setSingleShot(true);
    reportTimer_.setInterval(reportTime);
    connect(&reportTimer_, &QTimer::timeout, this, &StreamLoad::giveUp);
}

StreamLoad::~StreamLoad() = default;

/// Which stages may follow each other. A stream may end, be given up, or be replaced in any of them.
bool StreamLoad::mayFollow(Stage from, Stage to)
{
    switch (to) {
    case Stage::None:
    case Stage::Requested:
        return true;
    case Stage::Opening:
        return from == Stage::Requested;
    case Stage::Opened:
        return from == Stage::Opening;
    }
    return false;
}

void StreamLoad::enter(Stage stage)
{
    Q_ASSERT(mayFollow(stage_, stage));
    stage_ = stage;
    if (stage == Stage::None || stage == Stage::Opened) {
        memoryTimer_.stop();
    }
}

void StreamLoad::start()
{
    load(false);
    resolver_->start();
}

void StreamLoad::settle()
{
    resolver_.reset();
    if (source_) {
        source_->settle();
    }
    if (stage_ == Stage::Opening) {
        enter(Stage::Opened);
    }
}

/// An empty pipe in place of what there was, of which libmpv may still report something. Its options are
/// those of the one stream: libmpv forgets them with it, and has let go of the one before when it takes them.
void StreamLoad::load(bool isRepeated)
{
    isRepeated_ = isRepeated;
    pipe_ = std::make_shared<BytePipe>();
    allowance_ = {};
    pipe_->limit(allowance_.bytes());
    reportTimer_.stop();
    MpvHandle::Options options;
    if (isRepeated) {
        // It was taken for a format that it hardly resembled.
        options.emplace_back("demuxer-lavf-probescore", QByteArray::number(surerProbeScore));
    }
    enter(Stage::Requested);
    handle_.load(pipe_, options, ++request_);
}

void StreamLoad::take(StreamSource *stream)
{
    if (stage_ == Stage::None) {
        load(false);
    }
    source_.reset(stream);
    connect(stream, &StreamSource::titleRead, this,
            [this](quint64 position, const QByteArray &title) { titles_.add(position, title); });
    connect(stream, &StreamSource::factsChanged, this, [this] { Q_EMIT factsChanged(source_->facts()); });
    connect(stream, &StreamSource::finished, this, &StreamLoad::sourceFinished);
    connect(stream, &StreamSource::readerHeld, this, &StreamLoad::readerHeld);
    titles_ = {};
    attach();
    stream->start();
}

/// The next one is looked for.
void StreamLoad::drop()
{
    source_.reset();
    load(false);
}

void StreamLoad::attach()
{
    source_->attach(pipe_);
    memory_.begin();
    memoryTimer_.start();
}

void StreamLoad::replied(const mpv_event &reply)
{
    if (stage_ == Stage::Requested && reply.reply_userdata == request_ && reply.error >= 0) {
        enter(Stage::Opening);
        entry_ = numberAt(static_cast<const mpv_event_command *>(reply.data)->result, "playlist_entry_id");
    }
}

void StreamLoad::opened()
{
    if (stage_ == Stage::Opening) {
        enter(Stage::Opened);
        if (resolver_) {
            resolver_->accepted();
        }
    }
}

void StreamLoad::cacheChanged(const CacheState &state)
{
    if (stage_ != Stage::Opened || !pipe_ || !state.end) {
        return;
    }
    const quint64 read = pipe_->bytesRead();
    allowance_.update(*state.end, state.bytesAhead, read);
    titles_.loaded(read, *state.end);
    if (reportTimer_.isActive()) {
        extendAllowance();
    }
    if (const auto title = titles_.heardAt(state.reader)) {
        Q_EMIT titleHeard(*title);
    }
}

bool StreamLoad::ended(const mpv_event_end_file &end)
{
    // The end of one that has been given up already must not be taken for the end of its successor.
    const bool isCurrent =
        (stage_ == Stage::Opening || stage_ == Stage::Opened) && end.playlist_entry_id == entry_;
    if (!isCurrent || (end.reason != MPV_END_FILE_REASON_EOF && end.reason != MPV_END_FILE_REASON_ERROR)) {
        return false;
    }
    enter(Stage::None);
    if (resolver_) {
        repeat();
    }
    return true;
}

/// A stream that is joined in the middle is sometimes taken for something else.
void StreamLoad::repeat()
{
    if (source_ && source_->isBeginningKept() && !isRepeated_) {
        load(true);
        attach();
    } else {
        resolver_->refused();
    }
}

void StreamLoad::checkMemory()
{
    if (resolver_ && memory_.grownBytes() > mostOpeningBytes) {
        qCWarning(lcLoad) << "a stream takes too much memory before it begins";
        // It may have been something else, and not a second time.
        repeat();
    }
}

void StreamLoad::readerHeld()
{
    if (!reportTimer_.isActive()) {
        extendAllowance();
    }
}

void StreamLoad::extendAllowance()
{
    if (!pipe_->isHeld()) {
        return;
    }
    if (allowance_.extend(pipe_->bytesRead())) {
        reportTimer_.stop();
        pipe_->limit(allowance_.bytes());
    } else if (!reportTimer_.isActive()) {
        reportTimer_.start();
    }
}

void StreamLoad::giveUp()
{
    qCWarning(lcLoad) << "a stream takes too much memory; it is not played any further";
    if (resolver_) {
        resolver_->refused();
    } else {
        Q_EMIT sourceFinished();
        source_.reset();
    }
}

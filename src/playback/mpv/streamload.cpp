#include "playback/mpv/streamload.h"

#include "playback/backend.h"
#include "playback/mpv/mpvhandle.h"
#include "playback/mpv/mpvnode.h"

#include <QLoggingCategory>
#include <algorithm>
#include <chrono>
#include <utility>

namespace {
Q_LOGGING_CATEGORY(lcLoad, "plumtide.playback")

/// libmpv's own demand on the likeness to a format, out of 100.
constexpr int surerProbeScore = 26;
/// What this process may take while a stream is opened, whatever for: libmpv takes 10 MiB for every one.
/// FFmpeg reads the tags in front of the sound as a whole, and a tag of 256 MB is a valid one.
constexpr qint64 mostOpeningBytes = 24LL * 1024 * 1024;
constexpr std::chrono::milliseconds memoryCheckTime{10};

/// libmpv takes whole seconds, and 0 for its own default.
QByteArray networkTimeout(double seconds)
{
    constexpr double longest = 24.0 * 60 * 60;
    return QByteArray::number(static_cast<int>(std::clamp(seconds, 1.0, longest)));
}

/// Options of the one stream: libmpv forgets them with it, so that they reach no other, and has let go of the
/// one before when it takes them. `isRepeated` where the same stream was loaded just before.
MpvHandle::Options loadOptions(double timeout, const HttpHeaders &headers, bool isRepeated)
{
    MpvHandle::Options options{{"network-timeout", networkTimeout(timeout)}};
    for (const auto &[name, value] : headers) {
        if (name.compare("User-Agent", Qt::CaseInsensitive) == 0) {
            options.emplace_back("user-agent", value);
        } else {
            options.emplace_back("http-header-fields-append", name + ": " + value);
            // What is meant for one server only goes to one that has shown that it is that server.
            options.emplace_back("tls-verify", "yes");
        }
    }
    if (isRepeated) {
        // It was taken for a format that it hardly resembled.
        options.emplace_back("demuxer-lavf-probescore", QByteArray::number(surerProbeScore));
    }
    return options;
}
} // namespace

StreamLoad::StreamLoad(MpvHandle &handle, const StreamRequest &request)
    : handle_(handle)
    , headers_(request)
    , timeout_(request.timeout)
    , resolver_(std::make_unique<StreamResolver>(request))
{
    connect(resolver_.get(), &StreamResolver::streamFound, this, &StreamLoad::load);
    connect(resolver_.get(), &StreamResolver::streamDropped, this, &StreamLoad::unload);
    connect(resolver_.get(), &StreamResolver::failed, this, &StreamLoad::failed);
    memoryTimer_.setInterval(memoryCheckTime);
    connect(&memoryTimer_, &QTimer::timeout, this, &StreamLoad::checkMemory);
}

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
    if (stage == Stage::Requested) {
        memory_.begin();
        memoryTimer_.start();
    } else if (stage != Stage::Opening) {
        memoryTimer_.stop();
    }
}

void StreamLoad::start()
{
    resolver_->start();
}

void StreamLoad::settle()
{
    resolver_.reset();
    if (stage_ == Stage::Opening) {
        enter(Stage::Opened);
    }
}

void StreamLoad::load(const QUrl &stream)
{
    const bool isRepeated = stream == std::exchange(stream_, stream);
    enter(Stage::Requested);
    handle_.load(stream.toEncoded(), loadOptions(timeout_, headers_.forUrl(stream), isRepeated), ++request_);
}

/// What libmpv still reports of the stream is not the next one's.
void StreamLoad::unload()
{
    enter(Stage::None);
    handle_.command({"stop"});
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
        resolver_->refused();
    }
    return true;
}

void StreamLoad::checkMemory()
{
    if (resolver_ && memory_.grownBytes() > mostOpeningBytes) {
        qCWarning(lcLoad) << "a stream takes too much memory before it begins; it is not played";
        resolver_->reject();
    }
}

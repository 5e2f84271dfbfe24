#include "playback/stream/streamresolver.h"

#include "http/address.h"
#include "playback/stream/hlsstream.h"
#include "playback/stream/icyreader.h"
#include "playback/stream/livestream.h"
#include "playback/stream/streamrequest.h"

#include <algorithm>
#include <array>
#include <chrono>

namespace {
/// The time-out of the start ends it before.
constexpr std::chrono::milliseconds beyondTimeout = std::chrono::seconds(1);

/// What servers say that have no place for another listener: Forbidden, Too Many Requests, Service
/// Unavailable (RFC 9110, RFC 6585).
bool isBusy(int status)
{
    constexpr std::array<int, 3> statuses{403, 429, 503};
    return std::find(statuses.begin(), statuses.end(), status) != statuses.end();
}
} // namespace

StreamResolver::StreamResolver(const StreamRequest &request, QObject *parent)
    : QObject(parent)
    , access_(request)
    , candidates_(request.url)
    , time_(std::chrono::milliseconds(static_cast<qint64>(request.timeout * 1000)))
{
    connect(&time_, &TimeShares::shareOver, this, &StreamResolver::next);
    wait_.setSingleShot(true);
    connect(&wait_, &QTimer::timeout, this, &StreamResolver::ask);
}

StreamResolver::~StreamResolver() = default;

/// Which stages may follow each other. A candidate may be given up in any of them.
bool StreamResolver::mayFollow(Stage from, Stage to)
{
    switch (to) {
    case Stage::None:
        return true;
    case Stage::Waiting:
        return from == Stage::None;
    case Stage::Asking:
        return from == Stage::None || from == Stage::Waiting;
    case Stage::Offered:
        return from == Stage::Asking;
    }
    return false;
}

void StreamResolver::enter(Stage stage)
{
    Q_ASSERT(mayFollow(stage_, stage));
    stage_ = stage;
    wait_.stop();
}

void StreamResolver::start()
{
    time_.begin();
    next();
}

void StreamResolver::refused()
{
    if (stage_ == Stage::Offered) {
        next();
    }
}

void StreamResolver::accepted()
{
    if (stage_ == Stage::Offered) {
        // A server without a burst needs a while until there is enough to begin with.
        time_.extendShare();
    }
}

void StreamResolver::next()
{
    const bool wasOffered = stage_ == Stage::Offered;
    enter(Stage::None);
    connection_.reset();
    if (wasOffered) {
        Q_EMIT streamDropped();
    }
    const auto candidate = candidates_.takeNext();
    if (!candidate) {
        time_.endShare();
        Q_EMIT failed();
        return;
    }
    current_ = *candidate;
    time_.beginShare(candidates_.waiting());
    if (!current_.rest.hasExpired()) {
        enter(Stage::Waiting);
        wait_.start(std::chrono::milliseconds(current_.rest.remainingTime()));
    } else {
        ask();
    }
}

void StreamResolver::ask()
{
    enter(Stage::Asking);
    connection_.reset(new StreamConnection(this));
    connect(connection_.get(), &StreamConnection::found, this, &StreamResolver::evaluate);
    HttpRequest request = access_.requestFor(current_.url, time_.total() + beyondTimeout);
    request.headers.emplaceBack(IcyReader::requestHeader, "1");
    connection_->start(request);
}

void StreamResolver::evaluate(StreamConnection::Finding finding)
{
    switch (finding) {
    case StreamConnection::Finding::NoAnswer:
        if (isBusy(connection_->response().status)) {
            candidates_.postpone(current_);
        }
        next();
        break;
    case StreamConnection::Finding::NoStream:
        next();
        break;
    case StreamConnection::Finding::Playlist:
        candidates_.insertEntries(current_, connection_->take(), connection_->response().url);
        next();
        break;
    case StreamConnection::Finding::Segments:
        offer(std::make_unique<HlsStream>(access_, current_.url, *connection_));
        break;
    case StreamConnection::Finding::Sound:
        offer(std::make_unique<LiveStream>(access_, current_.url, std::move(connection_)));
        break;
    }
}

void StreamResolver::offer(std::unique_ptr<StreamSource> stream)
{
    enter(Stage::Offered);
    Q_EMIT streamFound(stream.release());
}

#include "playback/streamresolver.h"

#include <QHostAddress>
#include <chrono>

namespace {
/// A server that is slow to send the first bytes takes most of a second.
constexpr std::chrono::milliseconds responseTime = std::chrono::seconds(1);
/// How often one stream is offered.
constexpr int attempts = 2;
} // namespace

StreamResolver::StreamResolver(const StreamRequest &request, QObject *parent)
    : QObject(parent)
    , headers_(request)
    , candidates_(request)
    , time_(std::chrono::milliseconds(static_cast<qint64>(request.timeout * 1000)))
{
    connect(&time_, &TimeShares::shareOver, this, &StreamResolver::next);
    connect(&nameLookup_, &NameLookup::found, this, &StreamResolver::offerUnprobed);
    connect(&nameLookup_, &NameLookup::notFound, this, &StreamResolver::next);
    connect(&probe_, &StreamProbe::playlistBegun, &responseTimer_, &QTimer::stop);
    connect(&probe_, &StreamProbe::finished, this, &StreamResolver::evaluate);
    responseTimer_.setSingleShot(true);
    responseTimer_.setInterval(responseTime);
    connect(&responseTimer_, &QTimer::timeout, this, &StreamResolver::noResponse);
}

/// Which stages may follow each other. A candidate may be given up in any of them.
bool StreamResolver::mayFollow(Stage from, Stage to)
{
    if (to == Stage::None) {
        return true;
    }
    switch (from) {
    case Stage::None:
        return to == Stage::ResolvingName || to == Stage::Probing;
    case Stage::ResolvingName:
        return to == Stage::OfferedUnprobed;
    case Stage::Probing:
        return to == Stage::ProbingSlowServer || to == Stage::OfferedProbed;
    case Stage::ProbingSlowServer:
        return to == Stage::ResolvingName || to == Stage::OfferedWhileProbing || to == Stage::OfferedProbed;
    case Stage::OfferedUnprobed:
        return to == Stage::OfferedWhileProbing || to == Stage::ProbingRefused;
    case Stage::OfferedWhileProbing:
        return to == Stage::OfferedUnprobed || to == Stage::ProbingRefused || to == Stage::OfferedProbed;
    case Stage::ProbingRefused:
    case Stage::OfferedProbed:
        return to == Stage::OfferedProbed;
    }
    return false;
}

bool StreamResolver::resolvesName(Stage stage)
{
    return stage == Stage::ResolvingName || stage == Stage::ProbingSlowServer;
}

bool StreamResolver::probes(Stage stage)
{
    return stage == Stage::Probing || stage == Stage::ProbingSlowServer ||
           stage == Stage::OfferedWhileProbing || stage == Stage::ProbingRefused;
}

bool StreamResolver::hasOffered(Stage stage)
{
    return stage == Stage::OfferedUnprobed || stage == Stage::OfferedWhileProbing ||
           stage == Stage::ProbingRefused || stage == Stage::OfferedProbed;
}

/// Ends what the new stage has no use for. A probed connection is so closed before the player opens its own.
void StreamResolver::enter(Stage stage)
{
    Q_ASSERT(mayFollow(stage_, stage));
    stage_ = stage;
    responseTimer_.stop();
    if (!resolvesName(stage)) {
        nameLookup_.cancel();
    }
    if (!probes(stage)) {
        probe_.cancel();
    }
}

void StreamResolver::start()
{
    time_.begin();
    next();
}

void StreamResolver::refused()
{
    switch (stage_) {
    case Stage::OfferedUnprobed:
        enter(Stage::ProbingRefused);
        probe();
        break;
    case Stage::OfferedWhileProbing:
        // The probe goes on: the server may be slow to answer another.
        enter(Stage::ProbingRefused);
        break;
    case Stage::OfferedProbed:
        offerProbed(offered_);
        break;
    default:
        break;
    }
}

void StreamResolver::reject()
{
    if (hasOffered(stage_)) {
        next();
    }
}

void StreamResolver::accepted()
{
    if (stage_ == Stage::OfferedWhileProbing) {
        enter(Stage::OfferedUnprobed);
    }
    if (stage_ == Stage::OfferedUnprobed || stage_ == Stage::OfferedProbed) {
        responseTimer_.stop();
        // A server without a burst needs a while until there is enough to begin with.
        time_.extendShare();
    }
}

void StreamResolver::next()
{
    const bool isOffered = hasOffered(stage_);
    enter(Stage::None);
    offered_.clear();
    timesOffered_ = 0;
    if (isOffered) {
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
    if (current_.approach == StreamCandidate::Approach::Offer) {
        resolveName();
        return;
    }
    enter(Stage::Probing);
    if (current_.approach == StreamCandidate::Approach::Probe) {
        responseTimer_.start();
    }
    probe();
}

void StreamResolver::resolveName()
{
    enter(stage_ == Stage::Probing ? Stage::ProbingSlowServer : Stage::ResolvingName);
    const QString name = current_.url.host();
    if (QHostAddress(name).isNull()) {
        nameLookup_.start(name);
    } else {
        offerUnprobed();
    }
}

void StreamResolver::offerUnprobed()
{
    if (stage_ == Stage::ProbingSlowServer) {
        enter(Stage::OfferedWhileProbing);
    } else {
        enter(Stage::OfferedUnprobed);
        responseTimer_.start();
    }
    offered_ = current_.url;
    timesOffered_ = 1;
    Q_EMIT streamFound(offered_);
}

void StreamResolver::offerProbed(const QUrl &stream)
{
    timesOffered_ = stream == offered_ ? timesOffered_ + 1 : 1;
    if (timesOffered_ > attempts) {
        next();
        return;
    }
    enter(Stage::OfferedProbed);
    offered_ = stream;
    Q_EMIT streamFound(stream);
}

void StreamResolver::probe()
{
    probe_.start(current_.url, headers_, time_.total());
}

void StreamResolver::evaluate(const StreamProbe::Result &result)
{
    // Whether the address counts as a stream whatever the probe finds, unless that is something else.
    const bool isTrusted = stage_ == Stage::ProbingSlowServer || stage_ == Stage::OfferedWhileProbing;
    switch (result.finding) {
    case StreamProbe::Finding::NotHttp:
        // An old stream server does not begin its answer as HTTP does. The player understands such a server,
        // and finds out where it was no such server.
        if (isTrusted) {
            disregardProbe();
        } else {
            offerProbed(current_.url);
        }
        break;
    case StreamProbe::Finding::NoAnswer:
        // Some servers have nothing for a second connection: what they answer to a probe counts only while
        // there is no stream that the player may still accept.
        if (isTrusted) {
            disregardProbe();
        } else {
            next();
        }
        break;
    case StreamProbe::Finding::NoStream:
        // Also while the address is offered: a server that turns a second connection away says so by its
        // status.
        next();
        break;
    case StreamProbe::Finding::Playlist:
        candidates_.insertEntries(current_, result.body, result.url);
        next();
        break;
    case StreamProbe::Finding::Sound:
        // The player follows no redirect.
        if (isTrusted && result.url == current_.url) {
            disregardProbe();
        } else {
            offerProbed(result.url);
        }
        break;
    }
}

/// Goes on as without a probe.
void StreamResolver::disregardProbe()
{
    enter(stage_ == Stage::OfferedWhileProbing ? Stage::OfferedUnprobed : Stage::ResolvingName);
}

/// The player has not begun to read what is offered, or the server has not answered the probe.
void StreamResolver::noResponse()
{
    if (stage_ == Stage::OfferedUnprobed) {
        enter(Stage::OfferedWhileProbing);
        probe();
    } else {
        resolveName();
    }
}

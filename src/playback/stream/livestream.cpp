#include "playback/stream/livestream.h"

#include "base/leadinginteger.h"
#include "playback/stream/attemptspacing.h"

#include <algorithm>
#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace {
/// How long an open connection may bring nothing until another one is tried beside it.
constexpr std::chrono::milliseconds longestSilence = 3s;
/// What a connection has to bring for the attempts to begin anew.
constexpr quint64 worthwhileBytes = 8 * 1024;
/// How many attempts a stream is worth that nobody has heard yet.
constexpr int earlyAttempts = 2;
/// After how many refusals a silent connection is given up: it may be what the server refuses another for.
constexpr int refusalsBesideSilence = 2;
} // namespace

LiveStream::LiveStream(const StreamAccess &access, QUrl address, StreamConnection::Pointer connection,
                       QObject *parent)
    : StreamSource(parent)
    , access_(access)
    , address_(std::move(address))
    , next_(std::move(connection))
{
    next_->setParent(this);
    silence_.setSingleShot(true);
    silence_.setInterval(longestSilence);
    connect(&silence_, &QTimer::timeout, this, &LiveStream::scheduleAttempt);
    pause_.setSingleShot(true);
    connect(&pause_, &QTimer::timeout, this, &LiveStream::attempt);
}

void LiveStream::start()
{
    adopt();
}

void LiveStream::moreWanted()
{
    rest(false);
}

void LiveStream::rest(bool isResting)
{
    if (isResting == std::exchange(isResting_, isResting) || !current_) {
        return;
    }
    current_->rest(isResting);
    if (isResting) {
        silence_.stop();
    } else {
        silence_.start();
    }
}

/// What has been asked for goes on in place of what there was.
void LiveStream::adopt()
{
    current_ = std::move(next_);
    current_->disconnect(this);
    connect(current_.get(), &StreamConnection::received, this, &LiveStream::receive);
    connect(current_.get(), &StreamConnection::ended, this, &LiveStream::lost);
    const HttpResponse &response = current_->response();
    target_ = response.url;
    icy_.emplace(response);
    oggTitles_.emplace();
    receivedBefore_ = bytesSent();
    isResting_ = false;
    setFacts({.bitrate = static_cast<int>(std::clamp<qint64>(
                  leadingInteger(QString::fromLatin1(response.header("icy-br"))), 0, 100'000)),
              .isUnverified = current_->isUnverified()});
    receive();
}

void LiveStream::receive()
{
    // It was only silent, if another one has been asked for.
    next_.reset();
    pause_.stop();
    const QByteArray sound = icy_->take(current_->take(), [this](qsizetype before, const QByteArray &title) {
        oggTitles_.reset();
        Q_EMIT titleRead(bytesSent() + static_cast<quint64>(before), title);
    });
    if (oggTitles_) {
        oggTitles_->read(sound, [this](quint64 position, const QByteArray &title) {
            Q_EMIT titleRead(receivedBefore_ + position, title);
        });
    }
    send(sound);
    if (bytesSent() - receivedBefore_ >= worthwhileBytes) {
        attempts_ = 0;
    }
    silence_.start();
    rest(!hasRoom());
}

void LiveStream::lost(bool isComplete)
{
    const bool hasLength = !current_->response().header("Content-Length").isEmpty();
    silence_.stop();
    current_.reset();
    if (isComplete && hasLength) {
        finish();
    } else {
        scheduleAttempt();
    }
}

/// One at a time, and each a while after the one before.
void LiveStream::scheduleAttempt()
{
    if (next_ != nullptr || pause_.isActive()) {
        return;
    }
    if (!isSettled() && attempts_ >= earlyAttempts) {
        finish();
        return;
    }
    pause_.start(AttemptSpacing::waitFor(attempts_, sinceAttempt_));
}

void LiveStream::attempt()
{
    ++attempts_;
    sinceAttempt_.start();
    next_.reset(new StreamConnection(this));
    connect(next_.get(), &StreamConnection::found, this, &LiveStream::answered);
    HttpRequest request = access_.requestFor(target_, AttemptSpacing::answerTime);
    request.headers.emplaceBack(IcyReader::requestHeader, "1");
    next_->start(request);
}

void LiveStream::answered(StreamConnection::Finding finding)
{
    if (finding == StreamConnection::Finding::Sound) {
        adopt();
    } else {
        refused();
    }
}

/// Where redirects led before may be good for once only.
void LiveStream::refused()
{
    next_.reset();
    if (target_ != address_) {
        target_ = address_;
        attempt();
        return;
    }
    if (current_ && attempts_ > refusalsBesideSilence) {
        silence_.stop();
        current_.reset();
    }
    scheduleAttempt();
}

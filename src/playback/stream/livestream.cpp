#include "playback/stream/livestream.h"

#include "base/leadinginteger.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace {
/// How long an open connection may bring nothing until another one is tried beside it.
constexpr std::chrono::milliseconds longestSilence = 3s;
/// How long a server may take to answer with sound.
constexpr std::chrono::milliseconds answerTime = 5s;
/// How long after an attempt the next one begins, at least.
constexpr std::array<std::chrono::milliseconds, 4> pauses{250ms, 500ms, 1s, 2s};
/// What a connection has to bring for the attempts to begin anew.
constexpr quint64 worthwhileBytes = 8 * 1024;
/// How many attempts a stream is worth that nobody has heard yet.
constexpr int earlyAttempts = 2;
/// After how many refusals a silent connection is given up: it may be what the server refuses another for.
constexpr int refusalsBesideSilence = 2;
} // namespace

LiveStream::LiveStream(const StreamAccess &access, QUrl address, std::unique_ptr<StreamConnection> connection,
                       QObject *parent)
    : StreamSource(parent)
    , access_(access)
    , address_(std::move(address))
    , next_(connection.release())
{
    next_->setParent(this);
    silence_.setSingleShot(true);
    silence_.setInterval(longestSilence);
    connect(&silence_, &QTimer::timeout, this, &LiveStream::silent);
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
    resolved_ = response.url;
    target_ = resolved_;
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
    if (next_ != nullptr) {
        // It was only silent.
        next_.reset();
    }
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

void LiveStream::silent()
{
    scheduleAttempt();
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
    const auto index = std::min(static_cast<std::size_t>(attempts_), pauses.size() - 1);
    const auto passed =
        sinceAttempt_.isValid() ? std::chrono::milliseconds(sinceAttempt_.elapsed()) : pauses.back();
    pause_.start(std::max(0ms, pauses.at(index) - passed));
}

void LiveStream::attempt()
{
    ++attempts_;
    sinceAttempt_.start();
    next_.reset(new StreamConnection(this));
    connect(next_.get(), &StreamConnection::found, this, &LiveStream::answered);
    HttpRequest request = access_.requestFor(target_, answerTime);
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

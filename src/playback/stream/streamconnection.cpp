#include "playback/stream/streamconnection.h"

#include "http/httpexchange.h"
#include "playback/stream/playlist.h"

#include <algorithm>

namespace {
constexpr qsizetype maximumPlaylistBytes = 256 * 1024;
/// What is shorter is no stream.
constexpr qsizetype leastSoundBytes = 1024;
/// More than may come before it is taken: a transfer hands over a megabyte at a time.
constexpr qint64 mostUntaken = 4LL * 1024 * 1024;
} // namespace

StreamConnection::StreamConnection(QObject *parent)
    : QObject(parent)
    , exchange_(new HttpExchange(this))
{
    connect(exchange_, &HttpExchange::bodyReceived, this, [this] { inspect(false); });
    connect(exchange_, &HttpExchange::finished, this, [this] { inspect(true); });
    connect(exchange_, &HttpExchange::failed, this, [this] { end(false); });
}

void StreamConnection::start(const HttpRequest &request)
{
    HttpRequest limited = request;
    limited.maximumBytes = mostUntaken;
    exchange_->start(limited);
}

const HttpResponse &StreamConnection::response() const
{
    return exchange_->response();
}

bool StreamConnection::isUnverified() const
{
    return exchange_->isUnverified();
}

QByteArray StreamConnection::take()
{
    return exchange_->takeBody();
}

void StreamConnection::rest(bool isResting)
{
    exchange_->rest(isResting);
}

void StreamConnection::inspect(bool isComplete)
{
    if (isFound_) {
        Q_EMIT received();
        if (isComplete) {
            end(true);
        }
        return;
    }
    const int status = exchange_->response().status;
    const QByteArray &body = exchange_->body();
    if (status < 200 || status >= 300 || (isComplete && body.isEmpty())) {
        conclude(Finding::NoAnswer);
        return;
    }
    if (!isComplete && body.size() < Playlist::headBytes) {
        return;
    }
    switch (Playlist::kindOf(QByteArrayView(body).first(std::min(body.size(), Playlist::headBytes)))) {
    case Playlist::Kind::Playlist:
        if (body.size() > maximumPlaylistBytes) {
            conclude(Finding::NoAnswer);
        } else if (isComplete) {
            conclude(Playlist::isSegmented(body) ? Finding::Segments : Finding::Playlist);
        }
        break;
    case Playlist::Kind::Text:
        conclude(Finding::NoStream);
        break;
    case Playlist::Kind::Media:
        if (body.size() >= leastSoundBytes) {
            exchange_->endDeadline();
            conclude(Finding::Sound);
            if (isComplete) {
                end(true);
            }
        } else if (isComplete) {
            conclude(Finding::NoStream);
        }
        break;
    }
}

void StreamConnection::conclude(Finding finding)
{
    isFound_ = true;
    if (finding != Finding::Sound) {
        exchange_->cancel();
    }
    Q_EMIT found(finding);
}

void StreamConnection::end(bool isComplete)
{
    if (isFound_) {
        Q_EMIT ended(isComplete);
    } else {
        conclude(Finding::NoAnswer);
    }
}

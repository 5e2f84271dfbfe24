#include "playback/streamprobe.h"

#include "http/httpexchange.h"
#include "playback/playlist.h"
#include "playback/streamheaders.h"

#include <algorithm>

namespace {
constexpr qint64 maximumPlaylistBytes = 256LL * 1024;
/// What is shorter is no stream: FFmpeg would ask for it again and again, without a rest.
constexpr qsizetype leastSoundBytes = 1024;
} // namespace

void StreamProbe::start(const QUrl &url, const StreamHeaders &headers, std::chrono::milliseconds deadline)
{
    cancel();
    exchange_ = new HttpExchange(this);
    connect(exchange_, &HttpExchange::bodyReceived, this, [this] { inspect(false); });
    connect(exchange_, &HttpExchange::finished, this, [this] { inspect(true); });
    connect(exchange_, &HttpExchange::failed, this, [this](const HttpError &error) {
        conclude(error.code == HttpExchange::NotHttp ? Finding::NotHttp : Finding::NoAnswer);
    });
    exchange_->start({.url = url,
                      .headers = {{"User-Agent", StreamHeaders::userAgent()}},
                      .ownerHeaders = headers.forUrl(headers.owner()),
                      .owner = headers.owner(),
                      .deadline = deadline,
                      .maximumBytes = maximumPlaylistBytes});
}

void StreamProbe::cancel()
{
    if (exchange_ != nullptr) {
        exchange_->cancel();
        exchange_->deleteLater();
        exchange_ = nullptr;
    }
}

void StreamProbe::inspect(bool complete)
{
    const int status = exchange_->response().status;
    const QByteArray &body = exchange_->body();
    if (status < 200 || status >= 300 || (complete && body.isEmpty())) {
        conclude(Finding::NoAnswer);
        return;
    }
    if (!complete && body.size() < Playlist::headBytes) {
        return;
    }
    switch (Playlist::kindOf(QByteArrayView(body).first(std::min(body.size(), Playlist::headBytes)))) {
    case Playlist::Kind::Playlist:
        if (complete) {
            conclude(Finding::Playlist);
        } else {
            Q_EMIT playlistBegun();
        }
        break;
    case Playlist::Kind::Text:
        conclude(Finding::NoStream);
        break;
    case Playlist::Kind::Media:
        if (body.size() >= leastSoundBytes) {
            conclude(Finding::Sound);
        } else if (complete) {
            conclude(Finding::NoStream);
        }
        break;
    }
}

void StreamProbe::conclude(Finding finding)
{
    const Result result{.finding = finding, .url = exchange_->response().url, .body = exchange_->body()};
    cancel();
    Q_EMIT finished(result);
}

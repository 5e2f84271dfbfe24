#include "playback/streamresolver.h"

#include "http/address.h"
#include "http/httpexchange.h"
#include "playback/playlist.h"

#include <QCoreApplication>
#include <QHostAddress>
#include <QHostInfo>
#include <algorithm>
#include <iterator>
#include <utility>

namespace {
constexpr qint64 maximumPlaylistBytes = 256LL * 1024;
/// What a candidate gets however many others wait behind it.
constexpr std::chrono::milliseconds shortestShare = std::chrono::seconds(1);
/// A server that is slow to send the first bytes takes most of a second.
constexpr std::chrono::milliseconds doubtTime = std::chrono::seconds(1);
/// What is shorter is no stream: FFmpeg would ask for it again and again, without a rest.
constexpr qsizetype leastSoundBytes = 1024;
/// How often one stream is handed out.
constexpr int attempts = 2;
constexpr int noLookup = -1;

/// Whether a header can be sent without making up further lines.
bool fitsInALine(const QPair<QByteArray, QByteArray> &header)
{
    const QByteArray line = header.first + header.second;
    return !line.contains('\r') && !line.contains('\n') && !line.contains('\0');
}

bool isUserAgent(const QPair<QByteArray, QByteArray> &header)
{
    return header.first.compare("User-Agent", Qt::CaseInsensitive) == 0;
}

bool isNamedLikeAPlaylist(const QUrl &address)
{
    const QString path = address.path();
    return path.endsWith(QLatin1StringView(".m3u"), Qt::CaseInsensitive) ||
           path.endsWith(QLatin1StringView(".pls"), Qt::CaseInsensitive);
}
} // namespace

QByteArray StreamResolver::userAgent()
{
    // Some servers answer anything that begins like a browser's agent with a web page.
    return QByteArrayLiteral("Plumtide/") + QCoreApplication::applicationVersion().toUtf8();
}

StreamResolver::StreamResolver(const StreamRequest &request, QObject *parent)
    : QObject(parent)
    , address_(request.url)
    , timeout_(static_cast<qint64>(request.timeout * 1000))
{
    std::copy_if(request.headers.begin(), request.headers.end(), std::back_inserter(ownHeaders_),
                 fitsInALine);
    waiting_.push_back(
        {.url = address_, .trusted = !request.headers.isEmpty() && !isNamedLikeAPlaylist(address_)});
    share_.setSingleShot(true);
    connect(&share_, &QTimer::timeout, this, &StreamResolver::next);
    doubt_.setSingleShot(true);
    doubt_.setInterval(doubtTime);
    connect(&doubt_, &QTimer::timeout, this, &StreamResolver::doubt);
}

StreamResolver::~StreamResolver()
{
    dropName();
}

HttpHeaders StreamResolver::headersFor(const QUrl &url) const
{
    HttpHeaders headers;
    if (isSameOrigin(url, address_)) {
        headers = ownHeaders_;
    }
    if (std::none_of(headers.cbegin(), headers.cend(), isUserAgent)) {
        headers.prepend({"User-Agent", userAgent()});
    }
    return headers;
}

void StreamResolver::start()
{
    elapsed_.start();
    next();
}

void StreamResolver::refused()
{
    if (handedOut_.isEmpty()) {
        return;
    }
    doubt_.stop();
    if (current_.trusted) {
        current_.trusted = false;
        // A look beside goes on: the server may be slow to answer another.
        if (exchange_ == nullptr) {
            look();
        }
    } else {
        handOut(handedOut_);
    }
}

void StreamResolver::reject()
{
    if (!handedOut_.isEmpty()) {
        next();
    }
}

void StreamResolver::accepted()
{
    if (handedOut_.isEmpty()) {
        return;
    }
    doubt_.stop();
    endLook();
    if (share_.isActive()) {
        // A server without a burst needs a while until there is enough to begin with.
        share_.start(std::max(shortestShare, timeLeft() / 2));
    }
}

void StreamResolver::next()
{
    endLook();
    dropName();
    doubt_.stop();
    if (!handedOut_.isEmpty()) {
        Q_EMIT streamDropped();
    }
    handedOut_.clear();
    timesHandedOut_ = 0;
    if (waiting_.empty() || tried_ == maximumCandidates) {
        share_.stop();
        Q_EMIT failed();
        return;
    }
    ++tried_;
    current_ = waiting_.front();
    waiting_.pop_front();
    shareTime();
    if (current_.trusted) {
        lookUpName();
    } else {
        look();
    }
}

void StreamResolver::lookUpName()
{
    const QString name = current_.url.host();
    if (!QHostAddress(name).isNull()) {
        handOut(current_.url);
        return;
    }
    lookup_ = QHostInfo::lookupHost(name, this, [this](const QHostInfo &info) {
        // An answer that is on its way when its lookup is dropped still comes.
        if (info.lookupId() != lookup_) {
            return;
        }
        lookup_ = noLookup;
        if (info.error() == QHostInfo::NoError) {
            handOut(current_.url);
        } else {
            next();
        }
    });
}

void StreamResolver::dropName()
{
    if (lookup_ != noLookup) {
        QHostInfo::abortHostLookup(std::exchange(lookup_, noLookup));
    }
}

void StreamResolver::shareTime()
{
    if (waiting_.empty()) {
        // The last one may take all the time that the start has.
        share_.stop();
        return;
    }
    share_.start(std::max(shortestShare, timeLeft() / static_cast<int>(waiting_.size() + 1)));
}

std::chrono::milliseconds StreamResolver::timeLeft() const
{
    return timeout_ - std::chrono::milliseconds(elapsed_.elapsed());
}

void StreamResolver::doubt()
{
    if (exchange_ == nullptr) {
        look();
    } else {
        current_.trusted = true;
        lookUpName();
    }
}

void StreamResolver::look()
{
    endLook();
    if (!current_.trusted && handedOut_.isEmpty() && !isNamedLikeAPlaylist(current_.url)) {
        doubt_.start();
    }
    exchange_ = new HttpExchange(this);
    connect(exchange_, &HttpExchange::bodyReceived, this, [this] { judge(false); });
    connect(exchange_, &HttpExchange::finished, this, [this] { judge(true); });
    connect(exchange_, &HttpExchange::failed, this,
            [this](const HttpError &error) { lookFailed(error.code); });
    exchange_->start({.url = current_.url,
                      .headers = {{"User-Agent", userAgent()}},
                      .ownerHeaders = headersFor(address_),
                      .owner = address_,
                      .deadline = timeout_,
                      .maximumBytes = maximumPlaylistBytes});
}

void StreamResolver::judge(bool complete)
{
    const HttpResponse response = exchange_->response();
    if (response.status < 200 || response.status >= 300 || (complete && exchange_->body().isEmpty())) {
        dismiss();
        return;
    }
    const QByteArray &body = exchange_->body();
    if (!complete && body.size() < Playlist::headBytes) {
        return;
    }
    switch (Playlist::kindOf(QByteArrayView(body).first(std::min(body.size(), Playlist::headBytes)))) {
    case Playlist::Kind::Playlist:
        doubt_.stop();
        if (complete) {
            const QList<QUrl> entries =
                current_.depth < maximumDepth ? Playlist::entries(body, response.url) : QList<QUrl>();
            for (auto entry = entries.crbegin(); entry != entries.crend(); ++entry) {
                waiting_.push_front(
                    {.url = *entry, .depth = current_.depth + 1, .trusted = !isNamedLikeAPlaylist(*entry)});
            }
            next();
        }
        break;
    case Playlist::Kind::Text:
        // Also beside a stream that the player has not taken yet: a server that turns a second connection
        // away says so by its status.
        next();
        break;
    case Playlist::Kind::Media:
        if (body.size() < leastSoundBytes) {
            if (complete) {
                next();
            }
            break;
        }
        // Whoever was handed an address that redirects does not follow.
        if (current_.trusted && response.url == current_.url) {
            endLook();
        } else {
            current_.trusted = false;
            handOut(response.url);
        }
        break;
    }
}

/// Some servers have nothing for a second connection: what they say to a look counts only while there is no
/// stream that the player may yet come to like.
void StreamResolver::dismiss()
{
    if (current_.trusted) {
        endLook();
    } else {
        next();
    }
}

/// An old stream server does not begin its answer as HTTP does, which the network library takes for the end
/// of the connection. The player understands such a server, and finds out where it was no such server.
void StreamResolver::lookFailed(int code)
{
    if (code == HttpExchange::NotHttp && !current_.trusted) {
        handOut(current_.url);
    } else {
        dismiss();
    }
}

void StreamResolver::handOut(const QUrl &stream)
{
    if (!current_.trusted) {
        // The connection that was looked at is closed before the player opens its own.
        endLook();
        dropName();
        doubt_.stop();
    }
    timesHandedOut_ = stream == handedOut_ ? timesHandedOut_ + 1 : 1;
    if (timesHandedOut_ > attempts) {
        next();
        return;
    }
    handedOut_ = stream;
    if (current_.trusted && exchange_ == nullptr) {
        doubt_.start();
    }
    Q_EMIT streamFound(stream);
}

void StreamResolver::endLook()
{
    if (exchange_ != nullptr) {
        exchange_->cancel();
        exchange_->deleteLater();
        exchange_ = nullptr;
    }
}

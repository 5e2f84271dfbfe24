#include "directory/httpexchange.h"

#include "directory/address.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <algorithm>

namespace {
/// Whether the exchange itself went wrong, as against a server that answered with an error status: those
/// codes begin at 201.
bool isTransportError(QNetworkReply::NetworkError error)
{
    return error != QNetworkReply::NoError &&
           (error < QNetworkReply::ContentAccessDenied || error == QNetworkReply::ProtocolFailure);
}

bool isRedirect(const HttpResponse &response)
{
    const int status = response.status;
    return (status == 301 || status == 302 || status == 303 || status == 307 || status == 308) &&
           !response.header("Location").isEmpty();
}

/// How much waits unread while the thread is busy; the rest waits at the server.
constexpr qint64 readBufferBytes = 1024LL * 1024;
} // namespace

QByteArray HttpResponse::header(QByteArrayView name) const
{
    for (const auto &[candidate, value] : headers) {
        if (candidate.compare(name, Qt::CaseInsensitive) == 0) {
            return value;
        }
    }
    return {};
}

HttpExchange::HttpExchange(QObject *parent)
    : QObject(parent)
    , network_(new QNetworkAccessManager(this))
{
    deadline_.setSingleShot(true);
    connect(&deadline_, &QTimer::timeout, this,
            [this] { fail(QNetworkReply::TimeoutError, QStringLiteral("the server took too long")); });
}

HttpExchange::~HttpExchange()
{
    dropReply();
}

void HttpExchange::start(const HttpRequest &request)
{
    request_ = request;
    deadline_.start(request.deadline);
    send(request.url);
}

void HttpExchange::cancel()
{
    deadline_.stop();
    dropReply();
}

void HttpExchange::send(const QUrl &url)
{
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setRawHeader("Cache-Control", "no-cache");
    // A compressed answer can be larger than anything that was counted on its way in.
    request.setRawHeader("Accept-Encoding", "identity");
    for (const auto &[name, value] : std::as_const(request_.headers)) {
        const bool credential = name.compare("Authorization", Qt::CaseInsensitive) == 0;
        if (!credential || isSameOrigin(url, request_.url)) {
            request.setRawHeader(name, value);
        }
    }
    if (isSameOrigin(url, request_.owner)) {
        for (const auto &[name, value] : std::as_const(request_.ownerHeaders)) {
            request.setRawHeader(name, value);
        }
    }

    reply_ = request_.method == "GET" ? network_->get(request)
                                      : network_->sendCustomRequest(request, request_.method, request_.body);
    reply_->setReadBufferSize(readBufferBytes);
    connect(reply_, &QNetworkReply::metaDataChanged, this, &HttpExchange::readHead);
    connect(reply_, &QNetworkReply::readyRead, this, &HttpExchange::readBody);
    connect(reply_, &QNetworkReply::finished, this, &HttpExchange::end);
    // Some transport faults end in this signal and never in the other.
    connect(reply_, &QNetworkReply::errorOccurred, this, [this](QNetworkReply::NetworkError error) {
        if (isTransportError(error)) {
            end();
        }
    });
}

/// A redirect is followed as soon as it is known: its body may be long, or never end.
void HttpExchange::readHead()
{
    response_.url = reply_->url();
    response_.status = reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    response_.headers = reply_->rawHeaderPairs();
    if (isRedirect(response_)) {
        redirect();
    }
}

/// Whoever listens may have seen enough after what fits, and cancel.
void HttpExchange::readBody()
{
    const qint64 room = request_.maximumBytes - body_.size();
    const QByteArray more = reply_->read(std::min(room, reply_->bytesAvailable()));
    if (!more.isEmpty()) {
        body_ += more;
        Q_EMIT bodyReceived();
    }
    if (reply_ != nullptr && body_.size() == request_.maximumBytes && reply_->bytesAvailable() > 0) {
        fail(QNetworkReply::UnknownContentError, QStringLiteral("the answer is too long"));
    }
}

void HttpExchange::end()
{
    if (isTransportError(reply_->error())) {
        fail(reply_->error(), reply_->errorString());
        return;
    }
    // What the last signal of new data left behind.
    while (reply_ != nullptr && reply_->bytesAvailable() > 0) {
        readBody();
    }
    if (reply_ != nullptr) {
        cancel();
        Q_EMIT finished();
    }
}

void HttpExchange::redirect()
{
    const QUrl target = reply_->url().resolved(QUrl::fromEncoded(response_.header("Location")));
    if (!isHttpUrl(target)) {
        fail(QNetworkReply::InsecureRedirectError, QStringLiteral("redirected to something else than http"));
        return;
    }
    if (++redirects_ > maximumRedirects) {
        fail(QNetworkReply::TooManyRedirectsError, QStringLiteral("redirected too often"));
        return;
    }
    if (response_.status != 307 && response_.status != 308) {
        request_.method = QByteArrayLiteral("GET");
        request_.body.clear();
    }
    dropReply();
    send(target);
}

void HttpExchange::fail(int code, const QString &description)
{
    cancel();
    Q_EMIT failed({QStringLiteral("network"), code, description});
}

void HttpExchange::dropReply()
{
    if (reply_ != nullptr) {
        reply_->disconnect(this);
        reply_->deleteLater();
        reply_ = nullptr;
    }
}

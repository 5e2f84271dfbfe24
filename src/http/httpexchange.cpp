#include "http/httpexchange.h"

#include "http/address.h"
#include "http/httptransfer.h"

#include <utility>

namespace {
/// What tells a user that a connection was not made to the server itself: the variable that libcurl takes the
/// proxy for `url` from, unless no_proxy has an exception.
QString proxyNote(const QUrl &url)
{
    const bool isEncrypted = url.scheme() == QLatin1StringView("https");
    for (const char *name : {isEncrypted ? "https_proxy" : "http_proxy", isEncrypted ? "HTTPS_PROXY" : "",
                             "all_proxy", "ALL_PROXY"}) {
        if (!qEnvironmentVariableIsEmpty(name)) {
            return QStringLiteral(" (the environment sets %1)").arg(QLatin1StringView(name));
        }
    }
    return {};
}
} // namespace

HttpExchange::HttpExchange(QObject *parent)
    : QObject(parent)
    , transfer_(new HttpTransfer(this))
{
    deadline_.setSingleShot(true);
    connect(&deadline_, &QTimer::timeout, this,
            [this] { fail(TookTooLong, QStringLiteral("the server took too long")); });
    connect(transfer_, &HttpTransfer::bodyReceived, this, &HttpExchange::bodyReceived);
    connect(transfer_, &HttpTransfer::ended, this, &HttpExchange::proceed);
}

HttpExchange::~HttpExchange() = default;

void HttpExchange::start(const HttpRequest &request)
{
    request_ = request;
    deadline_.start(request.deadline);
    HttpClient::instance().whenOpened(this, [this] {
        if (!deadline_.isActive()) {
            return;
        }
        if (HttpClient::instance().library() == nullptr) {
            fail(NoConnection, QStringLiteral("libcurl cannot be used"));
            return;
        }
        transfer_->send(request_, request_.url, HttpTransfer::Certificate::Verified);
    });
}

void HttpExchange::cancel()
{
    deadline_.stop();
    transfer_->cancel();
}

void HttpExchange::endDeadline()
{
    deadline_.stop();
}

QByteArray HttpExchange::takeBody()
{
    return transfer_->takeBody();
}

void HttpExchange::rest(bool isResting)
{
    transfer_->rest(isResting);
}

const HttpResponse &HttpExchange::response() const
{
    return transfer_->response();
}

const QByteArray &HttpExchange::body() const
{
    return transfer_->body();
}

void HttpExchange::proceed(TransferEnd end)
{
    switch (end) {
    case TransferEnd::Complete:
        cancel();
        Q_EMIT finished();
        break;
    case TransferEnd::Redirected:
        redirect();
        break;
    case TransferEnd::Unverified:
        distrust();
        break;
    case TransferEnd::NoConnection:
        fail(NoConnection, transfer_->errorText() + proxyNote(response().url));
        break;
    case TransferEnd::NotHttp:
        fail(NotHttp,
             QStringLiteral("the server's answer is not HTTP, or incomplete: ") + transfer_->errorText());
        break;
    case TransferEnd::TooLong:
        fail(TooLong, QStringLiteral("the answer is too long"));
        break;
    }
}

void HttpExchange::redirect()
{
    const QUrl target = response().redirectTarget();
    if (!isHttpUrl(target)) {
        fail(BadRedirect, QStringLiteral("redirected to something else than http"));
        return;
    }
    if (++redirects_ > maximumRedirects) {
        fail(BadRedirect, QStringLiteral("redirected too often"));
        return;
    }
    request_.followRedirect(response().status);
    transfer_->send(request_, target, HttpTransfer::Certificate::Verified);
}

/// The server has not been asked anything yet.
void HttpExchange::distrust()
{
    const QUrl server = response().url;
    if (!request_.acceptsUnverified || request_.isConfidential(server)) {
        fail(NoConnection, transfer_->errorText());
        return;
    }
    isUnverified_ = true;
    transfer_->send(request_, server, HttpTransfer::Certificate::Any);
}

void HttpExchange::fail(Fault fault, const QString &description)
{
    cancel();
    Q_EMIT failed({QStringLiteral("network"), fault, description});
}

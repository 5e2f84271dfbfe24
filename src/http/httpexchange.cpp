#include "http/httpexchange.h"

#include "http/address.h"
#include "http/serverconnection.h"

#include <algorithm>

namespace {
bool isRedirect(const HttpResponse &response)
{
    const int status = response.status;
    return (status == 301 || status == 302 || status == 303 || status == 307 || status == 308) &&
           !response.header("Location").isEmpty();
}

/// Sets a header, in the place of one of the same name.
void setHeader(HttpHeaders &headers, const QByteArray &name, const QByteArray &value)
{
    headers.removeIf(
        [&name](const auto &header) { return header.first.compare(name, Qt::CaseInsensitive) == 0; });
    headers.emplaceBack(name, value);
}

/// As a request names it: RFC 9112, 3.2 and 3.2.1.
QByteArray hostOf(const QUrl &url)
{
    return url
        .toEncoded(QUrl::RemoveScheme | QUrl::RemoveUserInfo | QUrl::RemovePath | QUrl::RemoveQuery |
                   QUrl::RemoveFragment)
        .mid(2);
}

QByteArray targetOf(const QUrl &url)
{
    const QByteArray target =
        url.toEncoded(QUrl::RemoveScheme | QUrl::RemoveAuthority | QUrl::RemoveFragment);
    return target.startsWith('/') ? target : '/' + target;
}
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
{
    deadline_.setSingleShot(true);
    connect(&deadline_, &QTimer::timeout, this,
            [this] { fail(TookTooLong, QStringLiteral("the server took too long")); });
}

HttpExchange::~HttpExchange()
{
    dropConnection();
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
    dropConnection();
}

void HttpExchange::send(const QUrl &url)
{
    response_.url = url;
    parser_ = std::make_unique<HttpAnswerParser>();
    connection_ = new ServerConnection(this);
    connect(connection_, &ServerConnection::opened, this, [this] { connection_->write(requestBytes()); });
    connect(connection_, &ServerConnection::received, this, &HttpExchange::receive);
    connect(connection_, &ServerConnection::closed, this, [this] {
        receive();
        if (connection_ != nullptr) {
            proceed(parser_->close());
        }
    });
    connect(connection_, &ServerConnection::failed, this,
            [this](const QString &description) { fail(NoConnection, description); });
    connection_->open(url);
}

QByteArray HttpExchange::requestBytes() const
{
    const QUrl &url = response_.url;
    HttpHeaders headers{
        {"Host", hostOf(url)},
        {"Connection", "close"},
        {"Accept", "*/*"},
        {"Cache-Control", "no-cache"},
        // A compressed answer can be larger than anything that was counted on its way in.
        {"Accept-Encoding", "identity"},
    };
    for (const auto &[name, value] : request_.headers) {
        setHeader(headers, name, value);
    }
    if (isSameOrigin(url, request_.owner)) {
        for (const auto &[name, value] : request_.ownerHeaders) {
            setHeader(headers, name, value);
        }
    }
    if (!request_.body.isEmpty() || request_.method == "POST" || request_.method == "PUT") {
        setHeader(headers, "Content-Length", QByteArray::number(request_.body.size()));
    }
    QByteArray bytes = request_.method + ' ' + targetOf(url) + " HTTP/1.1\r\n";
    for (const auto &[name, value] : std::as_const(headers)) {
        bytes += name + ": " + value + "\r\n";
    }
    return bytes + "\r\n" + request_.body;
}

void HttpExchange::receive()
{
    proceed(parser_->feed(connection_->read()));
}

/// Each step may end the exchange, or begin it anew elsewhere.
void HttpExchange::proceed(HttpAnswerParser::State state)
{
    using State = HttpAnswerParser::State;
    if (state == State::Body || state == State::Complete) {
        response_.status = parser_->status();
        response_.headers = parser_->headers();
        if (isRedirect(response_)) {
            // As soon as it is known: its body may be long, or never end.
            redirect();
            return;
        }
    }
    if (state != State::Head) {
        readBody();
    }
    if (connection_ == nullptr) {
        return;
    }
    if (state == State::Malformed) {
        fail(NotHttp, QStringLiteral("the server's answer is not HTTP, or incomplete"));
    } else if (state == State::Complete) {
        cancel();
        Q_EMIT finished();
    }
}

/// Whoever listens may have seen enough after what fits, and cancel.
void HttpExchange::readBody()
{
    const QByteArray more = parser_->takeBody();
    const qint64 room = request_.maximumBytes - body_.size();
    if (!more.isEmpty() && room > 0) {
        body_ += QByteArrayView(more).first(std::min<qsizetype>(room, more.size()));
        Q_EMIT bodyReceived();
    }
    if (connection_ != nullptr && more.size() > room) {
        fail(TooLong, QStringLiteral("the answer is too long"));
    }
}

void HttpExchange::redirect()
{
    const QUrl target = response_.url.resolved(QUrl::fromEncoded(response_.header("Location")));
    if (!isHttpUrl(target)) {
        fail(BadRedirect, QStringLiteral("redirected to something else than http"));
        return;
    }
    if (++redirects_ > maximumRedirects) {
        fail(BadRedirect, QStringLiteral("redirected too often"));
        return;
    }
    if (response_.status != 307 && response_.status != 308) {
        request_.method = QByteArrayLiteral("GET");
        request_.body.clear();
    }
    dropConnection();
    send(target);
}

void HttpExchange::fail(Fault fault, const QString &description)
{
    cancel();
    Q_EMIT failed({QStringLiteral("network"), fault, description});
}

void HttpExchange::dropConnection()
{
    if (connection_ != nullptr) {
        connection_->disconnect(this);
        connection_->abort();
        connection_->deleteLater();
        connection_ = nullptr;
    }
}

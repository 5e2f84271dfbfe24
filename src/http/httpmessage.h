#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>
#include <QUrl>
#include <chrono>

using HttpHeaders = QList<QPair<QByteArray, QByteArray>>;

/// What is asked of a server, and how much of an answer is taken. Each header fits in a line.
///
/// What `ownerHeaders` says and a user name or password in an address are for one server alone: they are sent
/// encrypted to none but a verified one, and unencrypted past any proxy.
struct HttpRequest
{
    QUrl url;
    QByteArray method = QByteArrayLiteral("GET");
    HttpHeaders headers = {};
    /// Sent to the scheme, host and port of `owner` only, wherever redirects lead; each in the place of one
    /// of the same name in `headers`.
    HttpHeaders ownerHeaders = {};
    QUrl owner = {};
    QByteArray body = {};
    /// Whether a server whose certificate cannot be verified is asked all the same, unless something is for
    /// it alone.
    bool acceptsUnverified = false;
    /// Whether the server may compress its answer.
    bool isCompressible = false;
    /// From the start to the last byte received, redirects included.
    std::chrono::milliseconds deadline = std::chrono::seconds(60);
    /// The longest body that is kept, as it is when nothing compresses it; a longer one is an error.
    qint64 maximumBytes = 32LL * 1024 * 1024;

    /// All that is sent to `target`, where this request or its redirects lead.
    HttpHeaders headersFor(const QUrl &target) const;
    /// Whether some of that is for the server of `target` alone.
    bool isConfidential(const QUrl &target) const;
    /// Whether it has a body, be it an empty one.
    bool hasBody() const;
    /// Makes this the request that a redirect with `status` asks for, but for its address: any but 307 and
    /// 308 asks for a GET (RFC 9110, 15.4).
    void followRedirect(int status);
};

/// How a server answered; status 0 where no answer came.
struct HttpResponse
{
    QUrl url;
    int status = 0;
    HttpHeaders headers;

    /// The first header of that name, compared without case; empty where there is none.
    QByteArray header(QByteArrayView name) const;
    /// Whether it sends whoever asked somewhere else.
    bool isRedirect() const;
    /// Where to: an absolute address, which may be none that is followed.
    QUrl redirectTarget() const;
    /// Whether its body comes in codings that may be taken: one at most, of those that a request which is or
    /// is not compressible asks for.
    bool isReadable(bool isCompressible) const;
};

/// Why an exchange gave no answer.
struct HttpError
{
    QString domain;
    int code = 0;
    QString description;
};

/// The value of an Authorization header for the user name and password in an address (RFC 7617), in UTF-8.
QByteArray userInfoAuthorization(const QUrl &url);

/// The address of a request as the network library is given it, without what is not sent: user info and
/// fragment.
QByteArray requestAddress(const QUrl &url);

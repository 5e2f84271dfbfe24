#pragma once

#include "base/atomicfield.h"
#include "http/httpexchange.h"

#include <QJsonValue>
#include <functional>
#include <memory>
#include <optional>
#include <variant>

/// What a fetch hands to its completion step: bytes are data, anything else is an error.
using FetchOutcome = std::variant<QByteArray, HttpError>;

/// One asynchronous HTTP request whose outcome is handed to a completion step. Requests are started, and
/// their outcome is delivered, on the main thread.
///
/// An object serves one request. It may be released as soon as the request has been started: the request
/// keeps it alive until the completion step has run for the last time. Its properties are atomic.
class JSonFecther : public std::enable_shared_from_this<JSonFecther>
{
public:
    /// Run once for an error, twice with the same bytes for an answer that has text.
    using Completion = std::function<void(const FetchOutcome &outcome)>;

    static std::shared_ptr<JSonFecther> create();
    /// With the two set, requests carry Basic authentication.
    static std::shared_ptr<JSonFecther> initWithUsernamePassword(const QString &username,
                                                                 const QString &password);

    /// The value of the Authorization header that the two make; see basicAuthorization().
    static QString standardBasicAuthWithUsername(const QString &username, const QString &password);

    /// Starts the request and returns at once. A null `method` means GET. `body` goes out as JSON, and only
    /// with exactly "POST" or "PUT".
    void asynchRequest(const QUrl &url, const QString &method, const std::optional<QJsonValue> &body,
                       Completion completion);

    /// "The request was successful, but there is no result."
    static HttpError generateUnknownError();

    /// Null where there is none.
    QString username() const { return username_.get(); }
    void setUsername(const QString &username) { username_.set(username); }
    QString password() const { return password_.get(); }
    void setPassword(const QString &password) { password_.set(password); }
    /// Status and headers of the latest answer; nothing before the first.
    std::optional<HttpResponse> dpResponse() const { return dpResponse_.get(); }
    void setDpResponse(const std::optional<HttpResponse> &response) { dpResponse_.set(response); }

private:
    JSonFecther() = default;

    AtomicField<QString> username_;
    AtomicField<QString> password_;
    AtomicField<std::optional<HttpResponse>> dpResponse_;
};

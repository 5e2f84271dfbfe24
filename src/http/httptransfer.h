#pragma once

#include "http/httpclient.h"
#include "http/httpmessage.h"

#include <QPointer>
#include <array>
#include <cstddef>
#include <optional>
#include <utility>

/// How a request ended.
enum class TransferEnd {
    Complete,
    Redirected,   ///< the head says so; what body there is has not been taken
    Unverified,   ///< the server's certificate does not stand the test; nothing has been sent
    NoConnection, ///< to the server, or to the proxy on the way to it
    NotHttp,      ///< what came is no answer, or ended before the answer did
    TooLong,      ///< beyond the longest body
};

/// One request after another on one handle of libcurl, which keeps cookies from one to the next. Collects
/// what is answered, head and body, within their limits. Needs an HttpClient that is open.
class HttpTransfer : public QObject
{
    Q_OBJECT

public:
    /// Whose certificate is good enough, where a connection is encrypted.
    enum class Certificate { Verified, Any };

    /// More than any server sends, informational answers and trailers included; RFC 9110, 5.4 leaves the
    /// limit to the recipient. libcurl hands over whole lines, of 100 KiB at most.
    static constexpr qsizetype maximumHeadBytes = 64 * 1024;

    explicit HttpTransfer(QObject *parent = nullptr);
    ~HttpTransfer() override;

    /// Sends what `request` sends to `url`. Nothing is reported before this returns.
    void send(const HttpRequest &request, const QUrl &url, Certificate certificate);
    /// Closes the connection and forgets the cookies; nothing is reported any more.
    void cancel();

    /// The answer's head; from the first bodyReceived() on.
    const HttpResponse &response() const { return response_; }
    /// What has been received of the body so far, but for what has been taken.
    const QByteArray &body() const { return body_; }
    /// Hands it over; only what is left counts against the request's maximum.
    QByteArray takeBody() { return std::exchange(body_, {}); }
    /// Whether nothing is read, so that the server has to wait. Ends with the request.
    void rest(bool isResting);
    /// Why it ended as it did, in libcurl's words; for a log.
    QString errorText() const;

Q_SIGNALS:
    void bodyReceived();
    void ended(TransferEnd end);

private:
    void open();
    void chooseCertificates();
    void setRequest(const HttpRequest &request);
    void setRoute(const HttpRequest &request, Certificate certificate);
    bool takeHeadLine(QByteArrayView line);
    bool endHead();
    /// How much of it has been taken, or what libcurl is to do instead.
    std::size_t takeBody(QByteArrayView piece);
    void tellBody();
    void goOn();
    void finish(CURLcode result);
    TransferEnd endOf(CURLcode result) const;
    /// What libcurl is told when it shall not go on.
    bool stopFor(TransferEnd end);

    /// Numbers are long, texts are copied; others stay the caller's.
    template <class Value>
    void set(CURLoption option, Value value)
    {
        client_->library()->easySetopt(easy_, option, value);
    }

    QPointer<HttpClient> client_;
    CURL *easy_ = nullptr;
    curl_slist *aliases_ = nullptr;
    curl_slist *headers_ = nullptr; // of the request under way, as its body
    QByteArray sent_;
    std::array<char, CURL_ERROR_SIZE> errorText_{};
    bool isCompressible_ = false;
    qint64 maximumBytes_ = 0;
    HttpResponse response_;
    QByteArray body_;
    qsizetype headBytes_ = 0;
    bool isHeadComplete_ = false;
    qsizetype untold_ = 0; // of the body
    bool isPaused_ = false;
    bool isResting_ = false;
    std::optional<TransferEnd> stop_; // what libcurl has been stopped for
    CURLcode result_ = CURLE_OK;
};

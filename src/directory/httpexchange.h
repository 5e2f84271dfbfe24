#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QPair>
#include <QTimer>
#include <QUrl>
#include <chrono>

class QNetworkAccessManager;
class QNetworkReply;

using HttpHeaders = QList<QPair<QByteArray, QByteArray>>;

/// What is asked of a server, and how much of an answer is taken.
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
    /// From the first byte sent to the last one received, redirects included.
    std::chrono::milliseconds deadline = std::chrono::seconds(60);
    /// The longest body that is taken; a longer one is an error.
    qint64 maximumBytes = 32LL * 1024 * 1024;
};

/// How a server answered; status 0 where no answer came.
struct HttpResponse
{
    QUrl url;
    int status = 0;
    HttpHeaders headers;

    /// The first header of that name, compared without case; empty where there is none.
    QByteArray header(QByteArrayView name) const;
};

/// Why an exchange gave no answer.
struct HttpError
{
    QString domain;
    int code = 0;
    QString description;
};

/// One HTTP exchange on the thread that it lives in: a request, redirects, an answer of bounded length within
/// a bounded time. Ends with exactly one of finished() and failed(), unless it is cancelled before. Inside a
/// slot of its signals it may be cancelled, but deleted only with deleteLater().
///
/// Redirects are followed at most five times, and to http and https only. The "Authorization" header goes to
/// the request's own scheme, host and port and nowhere else. Nothing is cached, kept or decompressed. An
/// error status is an answer like any other.
class HttpExchange : public QObject
{
    Q_OBJECT

public:
    static constexpr int maximumRedirects = 5;

    explicit HttpExchange(QObject *parent = nullptr);
    ~HttpExchange() override;

    /// To be called once. The outcome is never reported before this returns.
    void start(const HttpRequest &request);

    /// Closes the connection; nothing is reported any more.
    void cancel();

    /// The answer's head; valid from the first bodyReceived() on.
    const HttpResponse &response() const { return response_; }
    /// What has been received of the body so far.
    const QByteArray &body() const { return body_; }

Q_SIGNALS:
    /// More of the body has come.
    void bodyReceived();
    /// The answer is complete.
    void finished();
    /// No answer came, or one beyond the limits.
    void failed(const HttpError &error);

private:
    void send(const QUrl &url);
    void readHead();
    void readBody();
    void end();
    void redirect();
    void fail(int code, const QString &description);
    void dropReply();

    QNetworkAccessManager *network_;
    QNetworkReply *reply_ = nullptr;
    QTimer deadline_;
    HttpRequest request_;
    HttpResponse response_;
    QByteArray body_;
    int redirects_ = 0;
};

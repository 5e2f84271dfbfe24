#pragma once

#include "http/httpanswerparser.h"

#include <QObject>
#include <QTimer>
#include <QUrl>
#include <chrono>
#include <memory>

class ServerConnection;

/// What is asked of a server, and how much of an answer is taken. Each header fits in a line.
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
    /// From the start to the last byte received, redirects included.
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
/// Redirects are followed at most five times, and to http and https only. Nothing is cached, kept or
/// decompressed. An error status is an answer like any other.
class HttpExchange : public QObject
{
    Q_OBJECT

public:
    static constexpr int maximumRedirects = 5;

    /// What HttpError::code tells of an exchange.
    enum Fault {
        NoConnection = 1,
        NotHttp,     ///< what came is no answer, or ended before the answer did
        TookTooLong, ///< beyond the deadline
        TooLong,     ///< beyond the longest body
        BadRedirect, ///< to something else than http and https, or once too often
    };

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
    QByteArray requestBytes() const;
    void receive();
    void proceed(HttpAnswerParser::State state);
    void readBody();
    void redirect();
    void fail(Fault fault, const QString &description);
    void dropConnection();

    ServerConnection *connection_ = nullptr;
    std::unique_ptr<HttpAnswerParser> parser_; // of the connection's answer
    QTimer deadline_;
    HttpRequest request_;
    HttpResponse response_;
    QByteArray body_;
    int redirects_ = 0;
};

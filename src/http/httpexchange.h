#pragma once

#include "http/httpmessage.h"

#include <QObject>
#include <QTimer>

class HttpTransfer;
enum class TransferEnd;

/// One HTTP exchange on the main thread: a request, redirects, an answer of bounded length within a bounded
/// time. Ends with exactly one of finished() and failed(), unless it is cancelled before. Inside a slot of
/// its signals it may be cancelled, but deleted only with deleteLater().
///
/// Redirects are followed at most five times, and to http and https only; cookies last as long as the
/// exchange. Nothing is cached, and an error status is an answer like any other. Proxies are those that the
/// environment names. Certificates are verified with those of the system, or of SSL_CERT_FILE and
/// SSL_CERT_DIR.
///
/// An answer without an end is taken piece by piece: by takeBody(), at the pace of rest(), and with a
/// deadline for its beginning alone.
class HttpExchange : public QObject
{
    Q_OBJECT

public:
    static constexpr int maximumRedirects = 5;

    /// What HttpError::code tells of an exchange.
    enum Fault {
        NoConnection = 1, ///< to the server, or to the proxy on the way to it
        NotHttp,          ///< what came is no answer, or ended before the answer did
        TookTooLong,      ///< beyond the deadline
        TooLong,          ///< beyond the longest body
        BadRedirect,      ///< to something else than http and https, or once too often
    };

    explicit HttpExchange(QObject *parent = nullptr);
    ~HttpExchange() override;

    /// To be called once. The outcome is never reported before this returns.
    void start(const HttpRequest &request);

    /// Closes the connection; nothing is reported any more.
    void cancel();

    /// From now on the answer may take as long as it likes.
    void endDeadline();
    /// What has been received of the body and not been taken yet.
    QByteArray takeBody();
    /// Whether nothing is read, so that the server has to wait.
    void rest(bool isResting);

    /// The answer's head; valid from the first bodyReceived() on.
    const HttpResponse &response() const;
    /// What has been received of the body so far, but for what has been taken.
    const QByteArray &body() const;
    /// Whether a server on the way to the answer was one whose certificate could not be verified.
    bool isUnverified() const { return isUnverified_; }

Q_SIGNALS:
    /// More of the body has come.
    void bodyReceived();
    /// The answer is complete.
    void finished();
    /// No answer came, or one beyond the limits.
    void failed(const HttpError &error);

private:
    void proceed(TransferEnd end);
    void redirect();
    void distrust();
    void fail(Fault fault, const QString &description);

    HttpTransfer *transfer_; // a child
    QTimer deadline_;        // runs as long as the exchange does
    HttpRequest request_;
    int redirects_ = 0;
    bool isUnverified_ = false;
};

#pragma once

#include <QHash>
#include <QList>
#include <QSslConfiguration>
#include <QTcpServer>
#include <optional>

class QTcpSocket;

/// A server on a loopback port that answers each path with bytes that a test has written, status line and
/// all, and keeps what it was asked.
class ScriptedServer : public QTcpServer
{
    Q_OBJECT

public:
    enum class After { Close, StayOpen };

    ScriptedServer();

    /// A certificate of its own making for "localhost", that no system trusts; null where there is no
    /// openssl.
    static QSslConfiguration makeCertificate();

    /// "http://127.0.0.1:PORT" and `path`, or "https://localhost:PORT" and that.
    QString address(const QString &path = {}) const;

    /// From now on it speaks TLS, as "localhost", by that certificate. The first handshake waits for `hold`
    /// milliseconds.
    void encrypt(const QSslConfiguration &certificate, int hold = 0);

    /// The raw answer to requests for `path`, without its query; any other path is accepted and never
    /// answered.
    void script(const QByteArray &path, const QByteArray &rawAnswer, After after = After::Close);
    /// An answer with a status line, a length and `body`.
    void scriptBody(const QByteArray &path, const QByteArray &body, const QByteArray &status = "200 OK");

    /// How long every answer waits for, in milliseconds.
    void setDelay(int delay) { delay_ = delay; }

    /// The request heads received so far, in order.
    const QList<QByteArray> &requests() const { return requests_; }
    /// The request targets, in order.
    QList<QByteArray> targets() const;
    /// Connections that are still open.
    int openConnections() const { return openConnections_; }
    /// Closes them, as a server does that has no more to say.
    void closeConnections();

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    struct Answer
    {
        QByteArray bytes;
        After after = After::Close;
    };

    void accept();
    void answer(QTcpSocket *socket);

    QHash<QByteArray, Answer> answers_;
    QList<QByteArray> requests_;
    int openConnections_ = 0;
    int delay_ = 0;
    std::optional<QSslConfiguration> certificate_;
    int hold_ = 0;
};

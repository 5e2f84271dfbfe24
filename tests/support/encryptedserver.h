#pragma once

#include <QByteArray>
#include <QSslConfiguration>
#include <QSslServer>

/// A server on a loopback port, over TLS, that answers every request alike. It says that it is "localhost",
/// by a certificate of its own making that no system trusts.
class EncryptedServer : public QSslServer
{
    Q_OBJECT

public:
    enum class After { Close, StayOpen };

    explicit EncryptedServer(const QByteArray &rawAnswer, After after = After::Close);

    /// Whether there is a certificate and it listens.
    bool isReady() const { return isListening() && !certificate().isNull(); }
    QSslCertificate certificate() const { return sslConfiguration().localCertificate(); }
    /// All that it has been sent.
    const QByteArray &requests() const { return requests_; }

private:
    void answer(QTcpSocket *socket);

    QByteArray rawAnswer_;
    After after_;
    QByteArray requests_;
};

#include "localradio/http/tlsserver.h"

#include <QFile>
#include <QSslCertificate>
#include <QSslKey>
#include <QSslSocket>
#include <QTimer>

#include <stdexcept>
#include <utility>

using namespace std::chrono_literals;

namespace localradio {

namespace {

constexpr auto handshakeDeadline = 60s; // after the wait, if there is one

QSslKey readKey(const QString &fileName)
{
    QFile file(fileName);
    if (file.open(QIODevice::ReadOnly)) {
        const QByteArray pem = file.readAll();
        for (const auto algorithm : {QSsl::Rsa, QSsl::Ec}) {
            if (QSslKey key(pem, algorithm); !key.isNull()) {
                return key;
            }
        }
    }
    throw std::runtime_error(fileName.toStdString() + ": no key of a certificate");
}

} // namespace

TlsServer::TlsServer(const QString &certificateFile, const QString &keyFile, std::chrono::milliseconds hold,
                     QObject *parent)
    : QTcpServer(parent)
    , configuration_(QSslConfiguration::defaultConfiguration())
    , hold_(hold)
{
    const auto certificates = QSslCertificate::fromPath(certificateFile);
    if (certificates.isEmpty()) {
        throw std::runtime_error(certificateFile.toStdString() + ": no certificate");
    }
    configuration_.setLocalCertificateChain(certificates);
    configuration_.setPrivateKey(readKey(keyFile));
    configuration_.setPeerVerifyMode(QSslSocket::VerifyNone);
}

void TlsServer::incomingConnection(qintptr descriptor)
{
    auto *socket = new QSslSocket(this);
    if (!socket->setSocketDescriptor(descriptor)) {
        delete socket;
        return;
    }
    socket->setSslConfiguration(configuration_);
    const auto hold = std::exchange(hold_, 0ms);
    QTimer::singleShot(hold, socket, [socket] { socket->startServerEncryption(); });
    auto *deadline = new QTimer(socket);
    connect(deadline, &QTimer::timeout, socket, &QSslSocket::abort);
    deadline->start(hold + handshakeDeadline);
    // Whoever does not like the certificate is never pending.
    connect(socket, &QSslSocket::disconnected, socket, &QObject::deleteLater);
    connect(socket, &QSslSocket::encrypted, this, [this, socket, deadline] {
        delete deadline;
        disconnect(socket, &QSslSocket::disconnected, socket, &QObject::deleteLater);
        addPendingConnection(socket);
        Q_EMIT newConnection();
    });
}

} // namespace localradio

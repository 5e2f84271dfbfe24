#include "support/encryptedserver.h"

#include <QFile>
#include <QProcess>
#include <QSslCertificate>
#include <QSslKey>
#include <QTcpSocket>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {
QSslConfiguration madeByItself()
{
    const QTemporaryDir folder;
    const QString key = folder.filePath(u"key"_s);
    const QString certificate = folder.filePath(u"certificate"_s);
    QProcess openssl;
    openssl.start(u"openssl"_s,
                  {u"req"_s, u"-x509"_s, u"-newkey"_s, u"ec"_s, u"-pkeyopt"_s, u"ec_paramgen_curve:P-256"_s,
                   u"-nodes"_s, u"-keyout"_s, key, u"-out"_s, certificate, u"-days"_s, u"2"_s, u"-subj"_s,
                   u"/CN=localhost"_s, u"-addext"_s, u"subjectAltName=DNS:localhost"_s});
    QSslConfiguration configuration;
    QFile keyFile(key);
    if (openssl.waitForFinished() && keyFile.open(QIODevice::ReadOnly)) {
        configuration.setPrivateKey(QSslKey(&keyFile, QSsl::Ec));
        configuration.setLocalCertificate(QSslCertificate::fromPath(certificate).value(0));
    }
    return configuration;
}
} // namespace

EncryptedServer::EncryptedServer(const QByteArray &rawAnswer, After after)
    : rawAnswer_(rawAnswer)
    , after_(after)
{
    connect(this, &QTcpServer::pendingConnectionAvailable, this, [this] {
        QTcpSocket *socket = nextPendingConnection();
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { answer(socket); });
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    });
    setSslConfiguration(madeByItself());
    listen(QHostAddress::LocalHost);
}

void EncryptedServer::answer(QTcpSocket *socket)
{
    requests_ += socket->readAll();
    socket->write(rawAnswer_);
    if (after_ == After::Close) {
        socket->disconnectFromHost();
    }
}

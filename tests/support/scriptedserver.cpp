#include "support/scriptedserver.h"

#include <QFile>
#include <QProcess>
#include <QSslCertificate>
#include <QSslKey>
#include <QSslSocket>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTimer>
#include <utility>

using namespace Qt::StringLiterals;

namespace {
QByteArray targetOf(const QByteArray &head)
{
    return head.split(' ').value(1);
}
} // namespace

ScriptedServer::ScriptedServer()
{
    connect(this, &QTcpServer::newConnection, this, &ScriptedServer::accept);
    listen(QHostAddress::LocalHost);
}

QString ScriptedServer::address(const QString &path) const
{
    const QString server =
        certificate_ ? QStringLiteral("https://localhost:%1%2") : QStringLiteral("http://127.0.0.1:%1%2");
    return server.arg(serverPort()).arg(path);
}

QSslConfiguration ScriptedServer::makeCertificate()
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

void ScriptedServer::encrypt(const QSslConfiguration &certificate, int hold)
{
    certificate_ = certificate;
    hold_ = hold;
}

void ScriptedServer::incomingConnection(qintptr descriptor)
{
    if (!certificate_) {
        QTcpServer::incomingConnection(descriptor);
        return;
    }
    auto *socket = new QSslSocket(this);
    socket->setSslConfiguration(*certificate_);
    socket->setSocketDescriptor(descriptor);
    QTimer::singleShot(std::exchange(hold_, 0), socket, [socket] { socket->startServerEncryption(); });
    addPendingConnection(socket);
}

void ScriptedServer::script(const QByteArray &path, const QByteArray &rawAnswer, After after)
{
    answers_.insert(path, {rawAnswer, after});
}

void ScriptedServer::scriptBody(const QByteArray &path, const QByteArray &body, const QByteArray &status)
{
    script(path, "HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(body.size()) +
                     "\r\n\r\n" + body);
}

QList<QByteArray> ScriptedServer::targets() const
{
    QList<QByteArray> list;
    for (const QByteArray &head : requests_) {
        list.append(targetOf(head));
    }
    return list;
}

void ScriptedServer::closeConnections()
{
    for (QTcpSocket *socket : findChildren<QTcpSocket *>()) {
        socket->disconnectFromHost();
    }
}

void ScriptedServer::accept()
{
    while (QTcpSocket *socket = nextPendingConnection()) {
        ++openConnections_;
        connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
            --openConnections_;
            socket->deleteLater();
        });
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { answer(socket); });
    }
}

void ScriptedServer::answer(QTcpSocket *socket)
{
    const QByteArray received = socket->peek(64 * 1024);
    if (!received.contains("\r\n\r\n")) {
        return;
    }
    requests_.append(socket->readAll());
    const auto found = answers_.constFind(targetOf(received).split('?').first());
    if (found != answers_.constEnd()) {
        QTimer::singleShot(delay_, socket, [socket, answer = *found] {
            socket->write(answer.bytes);
            if (answer.after == After::Close) {
                socket->disconnectFromHost();
            }
        });
    }
}

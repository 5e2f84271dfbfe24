#include "support/scriptedserver.h"

#include <QTcpSocket>
#include <QTimer>

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
    return QStringLiteral("http://127.0.0.1:%1%2").arg(serverPort()).arg(path);
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

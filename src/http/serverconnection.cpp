#include "http/serverconnection.h"

#include "http/address.h"

#include <QHostInfo>
#include <QNetworkProxy>
#include <QSslSocket>
#include <QTcpSocket>
#include <algorithm>
#include <utility>

namespace {
/// RFC 8305, section 5: the Connection Attempt Delay that it recommends.
constexpr int attemptDelay = 250;
constexpr int noLookup = -1;

bool isEncrypted(const QUrl &url)
{
    return url.scheme() == QLatin1StringView("https");
}

/// IPv6 and IPv4 in turn, so that a network without one of them costs a single delay (RFC 8305, section 4).
QList<QHostAddress> inTurn(QList<QHostAddress> addresses)
{
    const auto sameProtocol = [&addresses](const QHostAddress &address) {
        return address.protocol() == addresses.constFirst().protocol();
    };
    const auto others = addresses.empty()
                            ? addresses.begin()
                            : std::stable_partition(addresses.begin(), addresses.end(), sameProtocol);
    QList<QHostAddress> turns;
    for (auto first = addresses.begin(), other = others; first != others || other != addresses.end();) {
        if (first != others) {
            turns.append(*first++);
        }
        if (other != addresses.end()) {
            turns.append(*other++);
        }
    }
    return turns;
}

/// One that may be telling something just now.
void dropSocket(QTcpSocket &socket, QObject &listener)
{
    socket.disconnect(&listener);
    socket.abort();
    socket.deleteLater();
}
} // namespace

ServerConnection::ServerConnection(QObject *parent)
    : QObject(parent)
{
    nextAttempt_.setSingleShot(true);
    nextAttempt_.setInterval(attemptDelay);
    connect(&nextAttempt_, &QTimer::timeout, this, &ServerConnection::tryNext);
}

void ServerConnection::open(const QUrl &url)
{
    url_ = url;
    if (const QHostAddress literal(url.host()); !literal.isNull()) {
        addresses_ = {literal};
        QMetaObject::invokeMethod(this, &ServerConnection::tryNext, Qt::QueuedConnection);
        return;
    }
    lookup_ = QHostInfo::lookupHost(url.host(), this, &ServerConnection::lookedUp);
}

void ServerConnection::lookedUp(const QHostInfo &info)
{
    // An answer that is on its way when its lookup is given up still comes.
    if (info.lookupId() == lookup_) {
        lookup_ = noLookup;
        addresses_ = inTurn(info.addresses());
        lastError_ = info.errorString();
        tryNext();
    }
}

void ServerConnection::write(const QByteArray &bytes)
{
    socket_->write(bytes);
}

QByteArray ServerConnection::read()
{
    return socket_->readAll();
}

void ServerConnection::abort()
{
    if (lookup_ != noLookup) {
        QHostInfo::abortHostLookup(std::exchange(lookup_, noLookup));
    }
    nextAttempt_.stop();
    addresses_.clear();
    if (socket_ != nullptr) {
        attempts_.append(std::exchange(socket_, nullptr));
    }
    for (QTcpSocket *socket : std::exchange(attempts_, {})) {
        dropSocket(*socket, *this);
    }
}

void ServerConnection::tryNext()
{
    if (addresses_.isEmpty()) {
        if (attempts_.isEmpty()) {
            Q_EMIT failed(lastError_);
        }
        return;
    }
    // Without https nothing of TLS is loaded.
    QTcpSocket *socket = isEncrypted(url_) ? new QSslSocket(this) : new QTcpSocket(this);
    attempts_.append(socket);
    socket->setProxy(QNetworkProxy::NoProxy);
    socket->setReadBufferSize(readBufferBytes);
    connect(socket, &QTcpSocket::connected, this, [this, socket] { take(socket); });
    connect(socket, &QTcpSocket::errorOccurred, this, [this, socket] { giveUp(socket); });
    nextAttempt_.start();
    socket->connectToHost(addresses_.takeFirst(), effectivePort(url_));
}

void ServerConnection::take(QTcpSocket *socket)
{
    nextAttempt_.stop();
    addresses_.clear();
    attempts_.removeOne(socket);
    for (QTcpSocket *other : std::exchange(attempts_, {})) {
        dropSocket(*other, *this);
    }
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    auto *encrypted = qobject_cast<QSslSocket *>(socket);
    if (encrypted == nullptr) {
        use(socket);
        return;
    }
    attempts_.append(socket);
    connect(encrypted, &QSslSocket::encrypted, this, [this, socket] {
        attempts_.removeOne(socket);
        use(socket);
    });
    encrypted->setPeerVerifyName(url_.host(QUrl::EncodeUnicode));
    encrypted->startClientEncryption();
}

void ServerConnection::giveUp(QTcpSocket *socket)
{
    if (socket == socket_) {
        Q_EMIT closed();
        return;
    }
    lastError_ = socket->errorString();
    attempts_.removeOne(socket);
    dropSocket(*socket, *this);
    tryNext();
}

void ServerConnection::use(QTcpSocket *socket)
{
    socket_ = socket;
    connect(socket, &QTcpSocket::readyRead, this, &ServerConnection::received);
    Q_EMIT opened();
}

#include "localradio/http/httpconnection.h"

#include "localradio/http/ports.h"

#include <QSslSocket>

#include <linux/sockios.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <utility>

using namespace std::chrono_literals;

namespace localradio {

namespace {

// Left alone, the system takes minutes of audio for a client that has stopped reading.
constexpr int systemBufferSize = 128 * 1024;

constexpr auto headDeadline = 10s;
constexpr auto sendDeadline = 30s; // without a byte taken by the client
constexpr auto closeDeadline = 2s; // for the client to close its side
constexpr auto resetPoll = 5ms;

} // namespace

HttpConnection::HttpConnection(QTcpSocket *socket, QObject *parent)
    : QObject(parent)
    , socket_(socket)
    , port_(socket->localPort())
{
    socket_->setParent(this);
    socket_->setReadBufferSize(maxHeadSize);
    socket_->setSocketOption(QAbstractSocket::SendBufferSizeSocketOption, systemBufferSize);
    // An encrypted socket does not bear being closed while it tells of something.
    const auto way = isEncrypted() ? Qt::QueuedConnection : Qt::AutoConnection;
    if (auto *const encrypted = qobject_cast<QSslSocket *>(socket)) {
        const auto taken = [this] { onBytesWritten(0); };
        connect(encrypted, &QSslSocket::encryptedBytesWritten, this, taken, way);
    }
    hold_.setSingleShot(true);
    connect(&hold_, &QTimer::timeout, this, &HttpConnection::release);
    deadline_.setSingleShot(true);
    connect(socket_, &QTcpSocket::readyRead, this, &HttpConnection::readHead, way);
    connect(socket_, &QTcpSocket::bytesWritten, this, &HttpConnection::onBytesWritten, way);
    connect(socket_, &QTcpSocket::disconnected, this, [this] {
        Q_EMIT closed();
        state_ = State::Closing;
        deleteLater();
    });
    connect(&deadline_, &QTimer::timeout, this, &HttpConnection::onDeadline);
    deadline_.start(headDeadline);
}

bool HttpConnection::isEncrypted() const
{
    return qobject_cast<QSslSocket *>(socket_) != nullptr;
}

QByteArray HttpConnection::origin() const
{
    return originOf(port_, isEncrypted()).toUtf8();
}

void HttpConnection::readHead()
{
    const QByteArray bytes = socket_->readAll();
    if (state_ == State::Streaming) {
        Q_EMIT received(bytes);
    }
    if (state_ != State::ReadingHead) {
        return; // nothing more is wanted from this client
    }
    head_ += bytes;
    const qsizetype crlf = head_.indexOf("\r\n\r\n");
    const qsizetype lf = head_.indexOf("\n\n");
    const qsizetype end = crlf < 0 || (lf >= 0 && lf < crlf) ? lf : crlf;
    if (end > maxHeadSize || (end < 0 && head_.size() > maxHeadSize)) {
        answer(Answer::plain(431));
        return;
    }
    if (end < 0) {
        return;
    }
    const auto request = HttpRequest::parse(head_.first(end));
    head_.clear();
    state_ = State::Waiting;
    if (!request) {
        answer(Answer::plain(400));
        return;
    }
    request_ = *request;
    deadline_.start(sendDeadline);
    Q_EMIT requestReceived();
}

void HttpConnection::answer(const Answer &answer)
{
    put(request_.method == "HEAD" ? answer.head() : answer.head() + answer.body);
    Q_EMIT answered(answer.status);
    closeWhenSent();
}

void HttpConnection::beginStream(int status, const QByteArray &head)
{
    put(head);
    Q_EMIT answered(status);
    if (request_.method == "HEAD") {
        closeWhenSent();
        return;
    }
    state_ = State::Streaming;
    streamed_ = true;
    deadline_.start(sendDeadline);
}

void HttpConnection::send(const QByteArray &bytes)
{
    if (state_ == State::Streaming) {
        put(bytes);
    }
}

void HttpConnection::put(const QByteArray &bytes)
{
    if (hold_.isActive()) {
        held_ += bytes;
    } else {
        socket_->write(bytes);
    }
}

void HttpConnection::hold(std::chrono::milliseconds duration)
{
    if (hold_.remainingTimeAsDuration() < duration) {
        hold_.start(duration);
    }
}

qint64 HttpConnection::unsentBytes() const
{
    const auto *const encrypted = qobject_cast<QSslSocket *>(socket_);
    return held_.size() + socket_->bytesToWrite() +
           (encrypted == nullptr ? 0 : encrypted->encryptedBytesToWrite());
}

void HttpConnection::release()
{
    socket_->write(std::exchange(held_, {}));
    if (state_ == State::Closing) {
        shutWhenSent();
    }
}

void HttpConnection::closeWhenSent()
{
    state_ = State::Closing;
    deadline_.start(sendDeadline);
    shutWhenSent();
}

void HttpConnection::resetWhenSent()
{
    state_ = State::Resetting;
    deadline_.start(sendDeadline);
    resetWhenReceived();
}

void HttpConnection::reset()
{
    const linger atOnce{1, 0};
    ::setsockopt(static_cast<int>(socket_->socketDescriptor()), SOL_SOCKET, SO_LINGER, &atOnce,
                 sizeof(atOnce));
    socket_->abort();
}

/// Closing at once would make the system reset the connection when the client has sent more than was read,
/// and a reset can overtake the answer: so only the sending side is shut, and the client closes. What is
/// encrypted says that it ends.
void HttpConnection::shutWhenSent()
{
    if (hold_.isActive() || unsentBytes() > 0) {
        return;
    }
    if (isEncrypted()) {
        socket_->disconnectFromHost();
    } else {
        ::shutdown(static_cast<int>(socket_->socketDescriptor()), SHUT_WR);
        deadline_.start(closeDeadline);
    }
}

/// A reset throws away what the client's system has not acknowledged, and nothing reports that it has.
void HttpConnection::resetWhenReceived()
{
    int unacknowledged = 0;
    ::ioctl(static_cast<int>(socket_->socketDescriptor()), SIOCOUTQ, &unacknowledged);
    if (!hold_.isActive() && unsentBytes() == 0 && unacknowledged == 0) {
        reset();
    } else {
        QTimer::singleShot(resetPoll, this, &HttpConnection::resetWhenReceived);
    }
}

void HttpConnection::onBytesWritten(qint64 bytes)
{
    sent_ += bytes;
    deadline_.start(sendDeadline);
    if (state_ == State::Closing) {
        shutWhenSent();
    }
    Q_EMIT bytesTaken();
}

void HttpConnection::onDeadline()
{
    if (hold_.isActive() || (state_ == State::Streaming && unsentBytes() == 0)) {
        deadline_.start(sendDeadline); // a stream with nothing to say; the client is not at fault
        return;
    }
    socket_->abort();
}

} // namespace localradio

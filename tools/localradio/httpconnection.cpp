#include "localradio/httpconnection.h"

#include <sys/socket.h>

#include <chrono>

using namespace std::chrono_literals;

namespace localradio {

namespace {

// Left alone, the system takes minutes of audio for a client that has stopped reading.
constexpr int systemBufferSize = 128 * 1024;

constexpr auto headDeadline = 10s;
constexpr auto sendDeadline = 30s; // without a byte taken by the client
constexpr auto closeDeadline = 2s; // for the client to close its side

QByteArray reasonFor(int status)
{
    switch (status) {
    case 200:
        return "OK";
    case 400:
        return "Bad Request";
    case 401:
        return "Unauthorized";
    case 404:
        return "Not Found";
    case 405:
        return "Method Not Allowed";
    case 431:
        return "Request Header Fields Too Large";
    case 503:
        return "Service Unavailable";
    default:
        return "Status";
    }
}

Answer plainAnswer(int status)
{
    return {status, "text/plain; charset=utf-8", reasonFor(status) + '\n'};
}

} // namespace

HttpConnection::HttpConnection(QTcpSocket *socket, qint64 number, QObject *parent)
    : QObject(parent)
    , socket_(socket)
    , number_(number)
{
    socket_->setParent(this);
    socket_->setReadBufferSize(maxHeadSize);
    socket_->setSocketOption(QAbstractSocket::SendBufferSizeSocketOption, systemBufferSize);
    deadline_.setSingleShot(true);
    connect(socket_, &QTcpSocket::readyRead, this, &HttpConnection::readHead);
    connect(socket_, &QTcpSocket::bytesWritten, this, &HttpConnection::onBytesWritten);
    connect(socket_, &QTcpSocket::disconnected, this, [this] {
        Q_EMIT closed();
        state_ = State::Closing;
        deleteLater();
    });
    connect(&deadline_, &QTimer::timeout, this, &HttpConnection::onDeadline);
    deadline_.start(headDeadline);
}

void HttpConnection::readHead()
{
    const QByteArray bytes = socket_->readAll();
    if (state_ != State::ReadingHead) {
        return; // nothing more is wanted from this client
    }
    head_ += bytes;
    const qsizetype crlf = head_.indexOf("\r\n\r\n");
    const qsizetype lf = head_.indexOf("\n\n");
    const qsizetype end = crlf < 0 || (lf >= 0 && lf < crlf) ? lf : crlf;
    if (end > maxHeadSize || (end < 0 && head_.size() > maxHeadSize)) {
        answer(plainAnswer(431));
        return;
    }
    if (end < 0) {
        return;
    }
    const auto request = HttpRequest::parse(head_.first(end));
    head_.clear();
    state_ = State::Waiting;
    if (!request) {
        answer(plainAnswer(400));
        return;
    }
    request_ = *request;
    deadline_.start(sendDeadline);
    Q_EMIT requestReceived();
}

void HttpConnection::answer(const Answer &answer)
{
    QByteArray bytes = "HTTP/1.1 " + QByteArray::number(answer.status) + ' ' + reasonFor(answer.status) +
                       "\r\nServer: localradio\r\nContent-Type: " + answer.contentType +
                       "\r\nContent-Length: " + QByteArray::number(answer.body.size()) +
                       "\r\nConnection: close\r\n\r\n";
    if (request_.method != "HEAD") {
        bytes += answer.body;
    }
    socket_->write(bytes);
    Q_EMIT answered(answer.status);
    closeWhenSent();
}

void HttpConnection::beginStream(int status, const QByteArray &head)
{
    socket_->write(head);
    Q_EMIT answered(status);
    if (request_.method == "HEAD") {
        closeWhenSent();
        return;
    }
    state_ = State::Streaming;
    deadline_.start(sendDeadline);
}

void HttpConnection::send(const QByteArray &bytes)
{
    if (state_ == State::Streaming) {
        socket_->write(bytes);
    }
}

/// Closing at once would make the system reset the connection when the client has sent more than was read,
/// and a reset can overtake the answer: so only the sending side is shut, and the client closes.
void HttpConnection::closeWhenSent()
{
    state_ = State::Closing;
    deadline_.start(sendDeadline);
}

void HttpConnection::onBytesWritten(qint64 bytes)
{
    sent_ += bytes;
    deadline_.start(sendDeadline);
    if (state_ == State::Closing && socket_->bytesToWrite() == 0) {
        ::shutdown(static_cast<int>(socket_->socketDescriptor()), SHUT_WR);
        deadline_.start(closeDeadline);
    }
}

void HttpConnection::onDeadline()
{
    if (state_ == State::Streaming && socket_->bytesToWrite() == 0) {
        deadline_.start(sendDeadline); // a stream with nothing to say; the client is not at fault
        return;
    }
    socket_->abort();
}

} // namespace localradio

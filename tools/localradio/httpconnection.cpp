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
    , m_socket(socket)
    , m_number(number)
{
    m_socket->setParent(this);
    m_socket->setReadBufferSize(maxHeadSize);
    m_socket->setSocketOption(QAbstractSocket::SendBufferSizeSocketOption, systemBufferSize);
    m_deadline.setSingleShot(true);
    connect(m_socket, &QTcpSocket::readyRead, this, &HttpConnection::readHead);
    connect(m_socket, &QTcpSocket::bytesWritten, this, &HttpConnection::onBytesWritten);
    connect(m_socket, &QTcpSocket::disconnected, this, [this] {
        Q_EMIT closed();
        m_state = State::Closing;
        deleteLater();
    });
    connect(&m_deadline, &QTimer::timeout, this, &HttpConnection::onDeadline);
    m_deadline.start(headDeadline);
}

void HttpConnection::readHead()
{
    const QByteArray bytes = m_socket->readAll();
    if (m_state != State::ReadingHead) {
        return; // nothing more is wanted from this client
    }
    m_head += bytes;
    const qsizetype crlf = m_head.indexOf("\r\n\r\n");
    const qsizetype lf = m_head.indexOf("\n\n");
    const qsizetype end = crlf < 0 || (lf >= 0 && lf < crlf) ? lf : crlf;
    if (end > maxHeadSize || (end < 0 && m_head.size() > maxHeadSize)) {
        answer(plainAnswer(431));
        return;
    }
    if (end < 0) {
        return;
    }
    const auto request = HttpRequest::parse(m_head.first(end));
    m_head.clear();
    m_state = State::Waiting;
    if (!request) {
        answer(plainAnswer(400));
        return;
    }
    m_request = *request;
    m_deadline.start(sendDeadline);
    Q_EMIT requestReceived();
}

void HttpConnection::answer(const Answer &answer)
{
    QByteArray bytes = "HTTP/1.1 " + QByteArray::number(answer.status) + ' ' + reasonFor(answer.status) +
                       "\r\nServer: localradio\r\nContent-Type: " + answer.contentType +
                       "\r\nContent-Length: " + QByteArray::number(answer.body.size()) +
                       "\r\nConnection: close\r\n\r\n";
    if (m_request.method != "HEAD") {
        bytes += answer.body;
    }
    m_socket->write(bytes);
    Q_EMIT answered(answer.status);
    closeWhenSent();
}

void HttpConnection::beginStream(int status, const QByteArray &head)
{
    m_socket->write(head);
    Q_EMIT answered(status);
    if (m_request.method == "HEAD") {
        closeWhenSent();
        return;
    }
    m_state = State::Streaming;
    m_deadline.start(sendDeadline);
}

void HttpConnection::send(const QByteArray &bytes)
{
    if (m_state == State::Streaming) {
        m_socket->write(bytes);
    }
}

/// Closing at once would make the system reset the connection when the client has sent more than was read,
/// and a reset can overtake the answer: so only the sending side is shut, and the client closes.
void HttpConnection::closeWhenSent()
{
    m_state = State::Closing;
    m_deadline.start(sendDeadline);
}

void HttpConnection::onBytesWritten(qint64 bytes)
{
    m_sent += bytes;
    m_deadline.start(sendDeadline);
    if (m_state == State::Closing && m_socket->bytesToWrite() == 0) {
        ::shutdown(static_cast<int>(m_socket->socketDescriptor()), SHUT_WR);
        m_deadline.start(closeDeadline);
    }
}

void HttpConnection::onDeadline()
{
    if (m_state == State::Streaming && m_socket->bytesToWrite() == 0) {
        m_deadline.start(sendDeadline); // a stream with nothing to say; the client is not at fault
        return;
    }
    m_socket->abort();
}

} // namespace localradio

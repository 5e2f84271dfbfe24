#pragma once

#include "localradio/answer.h"
#include "localradio/httprequest.h"

#include <QObject>
#include <QTcpSocket>
#include <QTimer>

namespace localradio {

/// One client: reads one request and carries its answer, whole or as a stream without end. Clients that
/// are slow to ask, send too much or stop reading are dropped. Lives on the thread of its server.
class HttpConnection : public QObject
{
    Q_OBJECT

public:
    static constexpr qsizetype maxHeadSize = qsizetype{16} * 1024;

    /// Takes \a socket over. \a number tells connections apart in a log.
    HttpConnection(QTcpSocket *socket, qint64 number, QObject *parent);

    qint64 number() const { return m_number; }

    /// The request; empty until requestReceived().
    const HttpRequest &request() const { return m_request; }

    /// Sends \a answer, without its body to a HEAD request, and closes.
    void answer(const Answer &answer);

    /// Sends \a head, a status line and headers up to and with the blank line, and stays open for send();
    /// after a HEAD request it closes instead. \a status is the one in \a head.
    void beginStream(int status, const QByteArray &head);

    /// Adds \a bytes to the stream. Without effect unless the connection is streaming.
    void send(const QByteArray &bytes);

    bool isStreaming() const { return m_state == State::Streaming; }

    /// Bytes handed to send() or answer() that the system has not taken yet.
    qint64 unsentBytes() const { return m_socket->bytesToWrite(); }

    /// Bytes that the system has taken for this client, head included.
    qint64 sentBytes() const { return m_sent; }

Q_SIGNALS:
    /// A whole, well-formed request has come in: to be answered now or later.
    void requestReceived();

    /// An answer has begun.
    void answered(int status);

    /// The client is gone, isStreaming() still tells from what; the connection deletes itself afterwards.
    void closed();

private:
    enum class State { ReadingHead, Waiting, Streaming, Closing };

    void readHead();
    void closeWhenSent();
    void onBytesWritten(qint64 bytes);
    void onDeadline();

    QTcpSocket *m_socket; // a child
    qint64 m_number;
    State m_state = State::ReadingHead;
    QByteArray m_head;
    HttpRequest m_request;
    qint64 m_sent = 0;
    QTimer m_deadline;
};

} // namespace localradio

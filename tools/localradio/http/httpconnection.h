#pragma once

#include "localradio/http/answer.h"
#include "localradio/http/httprequest.h"

#include <QObject>
#include <QTcpSocket>
#include <QTimer>

#include <chrono>

namespace localradio {

/// One client: reads one request and carries its answer, whole or as a stream without end. Clients that
/// are slow to ask, send too much or stop reading are dropped. Lives on the thread of its server.
class HttpConnection : public QObject
{
    Q_OBJECT

public:
    static constexpr qsizetype maxHeadSize = qsizetype{16} * 1024;

    /// Takes `socket` over, a connected one.
    HttpConnection(QTcpSocket *socket, QObject *parent);

    /// The port of this machine that the client has reached.
    quint16 port() const { return port_; }

    bool isEncrypted() const;

    /// "http://127.0.0.1:PORT", or "https" where it is encrypted, of that port.
    QByteArray origin() const;

    /// The request; empty until requestReceived().
    const HttpRequest &request() const { return request_; }

    /// Sends `answer`, without its body to a HEAD request, and closes.
    void answer(const Answer &answer);

    /// Sends `head`, a status line and headers up to and with the blank line, and stays open for send();
    /// after a HEAD request it closes instead. `status` is the one in `head`.
    void beginStream(int status, const QByteArray &head);

    /// Adds `bytes` to the stream. Without effect unless the connection is streaming.
    void send(const QByteArray &bytes);

    bool isStreaming() const { return state_ == State::Streaming; }

    /// Whether the answer is or was a stream, whoever ended it.
    bool hasStreamed() const { return streamed_; }

    /// Ends a stream: the client gets everything sent so far and then the end.
    void closeWhenSent();

    /// Ends a stream by a reset as soon as the client's system has everything sent so far.
    void resetWhenSent();

    /// Resets the connection now; what is on its way may be lost.
    void reset();

    /// What is to be sent is kept back until `duration` is over, or longer if that has been said before: the
    /// connection stays open, and silent.
    void hold(std::chrono::milliseconds duration);

    /// Bytes handed to send() or answer() that the system has not taken yet.
    qint64 unsentBytes() const;

    /// Bytes that the system has taken for this client, head included.
    qint64 sentBytes() const { return sent_; }

Q_SIGNALS:
    /// A whole, well-formed request has come in: to be answered now or later.
    void requestReceived();

    /// More bytes have come from the client of a stream.
    void received(const QByteArray &bytes);

    /// An answer has begun.
    void answered(int status);

    /// The system has taken bytes for the client: unsentBytes() has become less.
    void bytesTaken();

    /// The client is gone, hasStreamed() still tells from what; the connection deletes itself afterwards.
    void closed();

private:
    enum class State { ReadingHead, Waiting, Streaming, Closing, Resetting };

    void readHead();
    void shutWhenSent();
    void resetWhenReceived();
    void onBytesWritten(qint64 bytes);
    void onDeadline();
    void release();
    void put(const QByteArray &bytes);

    QTcpSocket *socket_; // a child
    quint16 port_;       // kept here, since a socket forgets it when it closes
    State state_ = State::ReadingHead;
    QByteArray head_;
    HttpRequest request_;
    qint64 sent_ = 0;
    bool streamed_ = false;
    QTimer deadline_;
    QTimer hold_;     // runs while the connection is silent
    QByteArray held_; // meanwhile
};

} // namespace localradio

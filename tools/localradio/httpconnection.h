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

    /// Takes `socket` over. `number` tells connections apart in a log.
    HttpConnection(QTcpSocket *socket, qint64 number, QObject *parent);

    qint64 number() const { return number_; }

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

    /// Bytes handed to send() or answer() that the system has not taken yet.
    qint64 unsentBytes() const { return socket_->bytesToWrite(); }

    /// Bytes that the system has taken for this client, head included.
    qint64 sentBytes() const { return sent_; }

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

    QTcpSocket *socket_; // a child
    qint64 number_;
    State state_ = State::ReadingHead;
    QByteArray head_;
    HttpRequest request_;
    qint64 sent_ = 0;
    QTimer deadline_;
};

} // namespace localradio

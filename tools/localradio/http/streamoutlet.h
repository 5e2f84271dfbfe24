#pragma once

#include "localradio/http/delivery.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

namespace localradio {

struct Answer;
class HttpConnection;

/// The way of an answer into its connection, and the one place where a fault slows it down or cuts it off.
/// A child of its connection.
class StreamOutlet : public QObject
{
    Q_OBJECT

public:
    /// The most that waits for the client, here and in the connection.
    static constexpr qint64 maxUnsentBytes = qint64{256} * 1024;

    StreamOutlet(HttpConnection &connection, const Delivery &delivery);

    /// Sends a whole answer.
    void answer(const Answer &answer);

    /// Begins a stream with `head`, as HttpConnection::beginStream() does. To a HEAD request the head goes
    /// out at once, whatever the delivery.
    void begin(int status, const QByteArray &head);

    /// Adds `body` to the stream that has begun; nothing beyond a cut.
    void send(const QByteArray &body);

    /// Ends the stream that has begun: it closes when everything has gone, unless it was cut off before.
    void finish();

    /// Body bytes that send() should get at most for now, never negative; 0 for ever beyond a cut.
    qint64 room() const;

Q_SIGNALS:
    /// Bytes have left: there may be room.
    void bytesLeft();

private:
    void misbehaveWhenDue();
    void flush();

    HttpConnection &connection_;
    Delivery delivery_;
    std::optional<Delivery::End> end_; // what comes once nothing is pending
    QByteArray pending_;               // until the rate lets it go
    qint64 bodyBytes_ = 0;             // taken by send()
    qint64 dripped_ = 0;
    QElapsedTimer elapsed_;
    QTimer drip_; // runs if there is a rate
};

} // namespace localradio

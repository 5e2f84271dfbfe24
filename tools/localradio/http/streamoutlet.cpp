#include "localradio/http/streamoutlet.h"

#include "localradio/http/httpconnection.h"

#include <algorithm>
#include <chrono>

using namespace std::chrono_literals;

namespace localradio {

StreamOutlet::StreamOutlet(HttpConnection &connection, const Delivery &delivery)
    : QObject(&connection)
    , connection_(connection)
    , delivery_(delivery)
{
    connect(&connection_, &HttpConnection::bytesTaken, this, &StreamOutlet::bytesLeft);
    connect(&drip_, &QTimer::timeout, this, &StreamOutlet::flush);
}

void StreamOutlet::answer(const Answer &answer)
{
    if (delivery_.isPlain()) {
        connection_.answer(answer);
        return;
    }
    begin(answer.status, answer.head());
    send(answer.body);
    finish();
}

void StreamOutlet::begin(int status, const QByteArray &head)
{
    const bool slow = delivery_.bytesPerSecond && delivery_.slowAfterBytes == 0;
    if (slow && connection_.request().method != "HEAD") {
        connection_.beginStream(status, {});
        pending_ = head;
    } else {
        connection_.beginStream(status, head);
    }
    misbehaveWhenDue();
    send({}); // a cut may come before the first byte
}

void StreamOutlet::send(const QByteArray &body)
{
    if (end_) {
        return;
    }
    QByteArrayView rest(body);
    if (delivery_.cut) {
        rest.truncate(std::min(rest.size(), delivery_.cut->afterBytes - bodyBytes_));
    }
    while (!rest.isEmpty()) {
        qsizetype part = rest.size();
        for (const qint64 border :
             {delivery_.slowAfterBytes, delivery_.pause ? delivery_.pause->afterBytes : 0}) {
            part = border > bodyBytes_ ? std::min(part, border - bodyBytes_) : part;
        }
        pending_ += rest.first(part);
        bodyBytes_ += part;
        rest = rest.sliced(part);
        flush();
        misbehaveWhenDue();
    }
    if (delivery_.cut && bodyBytes_ == delivery_.cut->afterBytes) {
        end_ = delivery_.cut->end;
    }
    flush();
}

void StreamOutlet::misbehaveWhenDue()
{
    if (delivery_.pause && bodyBytes_ >= delivery_.pause->afterBytes) {
        connection_.hold(delivery_.pause->duration);
        delivery_.pause.reset();
    }
    if (delivery_.bytesPerSecond && bodyBytes_ >= delivery_.slowAfterBytes && !drip_.isActive()) {
        dripped_ = 0;
        elapsed_.start();
        drip_.start(50ms);
    }
}

void StreamOutlet::finish()
{
    if (!end_) {
        end_ = Delivery::End::Close;
        flush();
    }
}

qint64 StreamOutlet::room() const
{
    const qint64 unsent = pending_.size() + connection_.unsentBytes();
    return end_ ? 0 : std::max(qint64{0}, maxUnsentBytes - unsent);
}

void StreamOutlet::flush()
{
    qsizetype due = pending_.size();
    if (drip_.isActive()) {
        due = std::min(due, elapsed_.elapsed() * *delivery_.bytesPerSecond / 1000 - dripped_);
    }
    connection_.send(pending_.first(due));
    pending_.remove(0, due);
    dripped_ += due;
    if (!end_ || !pending_.isEmpty()) {
        return;
    }
    drip_.stop();
    if (end_ == Delivery::End::Close) {
        connection_.closeWhenSent();
    } else if (end_ == Delivery::End::Reset) {
        connection_.resetWhenSent();
    }
}

} // namespace localradio

#include "localradio/faults/answerfaults.h"

#include "localradio/faults/faultyanswer.h"
#include "localradio/http/httpconnection.h"
#include "localradio/http/redirect.h"
#include "localradio/http/streamoutlet.h"

namespace localradio {

namespace {

constexpr QLatin1StringView prefix("fault:");
constexpr QLatin1StringView redirect("redirect=");
constexpr char cookie[] = "fault=1";

} // namespace

AnswerFaults::AnswerFaults(int station, const Ports &ports)
    : station_(station)
    , ports_(ports)
{
}

bool AnswerFaults::serve(HttpConnection &connection, const RequestTarget &target) const
{
    const QString search =
        target.path() == u"/legacy/stationsearch" ? target.parameter(QLatin1StringView("search")) : QString();
    if (!search.startsWith(prefix)) {
        return false;
    }
    const QString order = search.sliced(prefix.size());
    if (order.startsWith(redirect)) {
        // Escaped: bytes beyond ASCII and blanks would break the header.
        const QByteArray wanted = order.sliced(redirect.size()).toUtf8().toPercentEncoding(":/?&=@#[]%+,;");
        const QByteArray top =
            "/legacy/Top500/?k=" + target.parameter(QLatin1StringView("k")).toUtf8().toPercentEncoding();
        Answer answer = Answer::plain(302);
        answer.headers = "Location: " + redirectLocation(wanted, connection, ports_, top) + "\r\n";
        connection.answer(answer);
        return true;
    }
    const HttpRequest &request = connection.request();
    if (order == u"cookie" && request.header("Cookie") != cookie) {
        Answer answer = Answer::plain(302);
        answer.headers = "Location: " + request.target + "\r\nSet-Cookie: " + cookie + "\r\n";
        connection.answer(answer);
        return true;
    }
    const FaultyAnswer answer = FaultyAnswer::make(order, station_);
    auto *outlet = new StreamOutlet(connection, answer.delivery);
    outlet->begin(answer.status, answer.head);
    new LongTextSender(*outlet, answer.body);
    return true;
}

} // namespace localradio

#include "localradio/services/faultservice.h"

#include "localradio/faults/orderedplaylist.h"
#include "localradio/http/httpserver.h"
#include "localradio/http/parameters.h"
#include "localradio/http/ports.h"
#include "localradio/http/streamoutlet.h"
#include "localradio/services/listener.h"
#include "localradio/sound/byteloop.h"

#include <chrono>
#include <cmath>

namespace localradio {

namespace {

std::chrono::milliseconds durationIn(const RequestTarget &target)
{
    const auto seconds = positiveNumber(target, QLatin1StringView("seconds"), 60);
    if (!seconds) {
        throw BadParameter("seconds must be given");
    }
    return std::chrono::milliseconds(std::lround(std::ceil(*seconds * 1000)));
}

QByteArray secondsOf(std::chrono::milliseconds duration)
{
    return QByteArray::number(static_cast<double>(duration.count()) / 1000);
}

} // namespace

FaultService::FaultService(HttpServer &server)
    : server_(server)
{
    refusing_.bind(QHostAddress::LocalHost);
}

bool FaultService::serve(HttpConnection &connection, const RequestTarget &target)
{
    if (target.path() == u"/outage") {
        beginOutage(connection, target);
    } else if (target.path() == u"/silence") {
        beginSilence(connection, target);
    } else if (target.path() == u"/playlist") {
        sendPlaylist(connection, target);
    } else if (target.path() == u"/refused") {
        const QByteArray address = originOf(refusing_.localPort()).toUtf8() + "/";
        connection.answer(
            {200, "audio/x-scpls", "[playlist]\nnumberofentries=1\nFile1=" + address + "\nVersion=2\n"});
    } else {
        return false;
    }
    return true;
}

void FaultService::beginOutage(HttpConnection &connection, const RequestTarget &target)
{
    const auto duration = durationIn(target);
    connection.answer(Answer::plain(200, "Nobody listens for " + secondsOf(duration) + " s"));
    server_.interrupt(duration, &connection);
}

void FaultService::beginSilence(HttpConnection &connection, const RequestTarget &target)
{
    const auto duration = durationIn(target);
    connection.answer(Answer::plain(200, "Nothing is said for " + secondsOf(duration) + " s"));
    server_.silence(duration, &connection);
}

void FaultService::sendPlaylist(HttpConnection &connection, const RequestTarget &target)
{
    const auto playlist = OrderedPlaylist::make(target, connection.request().target, connection.origin());
    auto *outlet = new StreamOutlet(connection, Delivery::read(target));
    if (playlist.filler.isEmpty()) {
        outlet->answer({200, playlist.contentType, playlist.text});
        return;
    }
    outlet->begin(200, "HTTP/1.0 200 OK\r\nServer: localradio\r\nContent-Type: " + playlist.contentType +
                           "\r\n\r\n");
    outlet->send(playlist.text);
    auto *listener = new Listener(*outlet, std::make_unique<ByteLoop>(playlist.filler, 0), {}, {});
    listener->pump();
}

} // namespace localradio

#pragma once

#include "localradio/http/requesttarget.h"

#include <QTcpSocket>

namespace localradio {

class HttpConnection;
class HttpServer;

/// The faults that belong to no station: outages, silences, a port where nobody listens, and playlists made
/// to order.
class FaultService
{
public:
    /// `server` is the one whose outages and silences it makes, and must outlive the service.
    explicit FaultService(HttpServer &server);

    /// Answers the request of `connection` for `target`: "/outage", "/silence", "/refused" or "/playlist".
    /// False, and nothing is answered, if it is for anything else. Throws BadParameter.
    bool serve(HttpConnection &connection, const RequestTarget &target);

private:
    void beginOutage(HttpConnection &connection, const RequestTarget &target);
    void beginSilence(HttpConnection &connection, const RequestTarget &target);
    static void sendPlaylist(HttpConnection &connection, const RequestTarget &target);

    HttpServer &server_;
    QTcpSocket refusing_; // holds a port without listening, so that nobody else does either
};

} // namespace localradio

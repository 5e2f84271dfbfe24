#pragma once

#include "localradio/http/ports.h"

#include <QObject>
#include <QTcpSocket>

namespace localradio {

class HttpConnection;

/// What a proxy does for CONNECT: bytes both ways, unread, between a client and a port of this machine, until
/// one of them closes. A child of the client's connection.
class Tunnel : public QObject
{
    Q_OBJECT

public:
    /// Answers the request of `connection`: with a tunnel to the port that it names if that is on this
    /// machine, and else to the encrypted one of `ports`, whatever the host. False, and nothing is answered,
    /// if the request is no CONNECT.
    static bool serve(HttpConnection &connection, const Ports &ports);

private:
    Tunnel(HttpConnection &client, quint16 port);
    void carry();

    HttpConnection &client_;
    QTcpSocket server_;
};

} // namespace localradio

#include "localradio/services/tunnel.h"

#include "localradio/http/httpconnection.h"
#include "localradio/http/streamoutlet.h"

#include <QHostAddress>

namespace localradio {

bool Tunnel::serve(HttpConnection &connection, const Ports &ports)
{
    const HttpRequest &request = connection.request();
    if (request.method != "CONNECT") {
        return false;
    }
    const qsizetype colon = request.target.lastIndexOf(':');
    const QByteArray host = request.target.left(colon);
    const bool isHere = host == "127.0.0.1" || host == "localhost";
    if (const quint16 port = isHere ? request.target.mid(colon + 1).toUShort() : ports.encrypted; port != 0) {
        new Tunnel(connection, port);
    } else {
        connection.answer(Answer::plain(502));
    }
    return true;
}

Tunnel::Tunnel(HttpConnection &client, quint16 port)
    : QObject(&client)
    , client_(client)
{
    connect(&server_, &QTcpSocket::connected, this, [this] {
        client_.beginStream(200, "HTTP/1.1 200 Connection established\r\n\r\n");
        connect(&client_, &HttpConnection::received, this,
                [this](const QByteArray &bytes) { server_.write(bytes); });
        connect(&client_, &HttpConnection::bytesTaken, this, &Tunnel::carry);
        connect(&server_, &QTcpSocket::readyRead, this, &Tunnel::carry);
    });
    connect(&server_, &QTcpSocket::disconnected, this, [this] {
        client_.send(server_.readAll());
        client_.closeWhenSent();
    });
    connect(&server_, &QTcpSocket::errorOccurred, this, [this] {
        if (!client_.hasStreamed()) {
            client_.answer(Answer::plain(502));
        }
    });
    server_.setReadBufferSize(StreamOutlet::maxUnsentBytes);
    server_.connectToHost(QHostAddress::LocalHost, port);
}

void Tunnel::carry()
{
    if (client_.unsentBytes() < StreamOutlet::maxUnsentBytes && server_.bytesAvailable() > 0) {
        client_.send(server_.readAll());
    }
}

} // namespace localradio

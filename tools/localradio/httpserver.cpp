#include "localradio/httpserver.h"

#include "localradio/requestlog.h"

namespace localradio {

HttpServer::HttpServer(RequestLog *log, QObject *parent)
    : QObject(parent)
    , m_log(log)
{
    connect(&m_server, &QTcpServer::newConnection, this, &HttpServer::accept);
}

bool HttpServer::listen(quint16 port)
{
    return m_server.listen(QHostAddress::LocalHost, port);
}

QString HttpServer::origin() const
{
    return QStringLiteral("http://127.0.0.1:%1").arg(m_server.serverPort());
}

void HttpServer::accept()
{
    while (QTcpSocket *socket = m_server.nextPendingConnection()) {
        if (m_open == maxConnections) {
            delete socket;
            continue;
        }
        ++m_open;
        auto *connection = new HttpConnection(socket, ++m_accepted, this);
        if (m_log != nullptr) {
            m_log->follow(*connection); // first, so that requests stand before their answers
        }
        connect(connection, &HttpConnection::requestReceived, this,
                [this, connection] { onRequest(*connection); });
        connect(connection, &HttpConnection::closed, this, [this] { --m_open; });
    }
}

void HttpServer::onRequest(HttpConnection &connection)
{
    const QByteArray &method = connection.request().method;
    if (method != "GET" && method != "HEAD") {
        connection.answer({405, "text/plain; charset=utf-8", "Only GET and HEAD are understood here\n"});
    } else if (m_handler) {
        m_handler(connection);
    }
}

} // namespace localradio

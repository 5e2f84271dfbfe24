#include "localradio/httpserver.h"

#include "localradio/requestlog.h"

namespace localradio {

HttpServer::HttpServer(RequestLog *log, QObject *parent)
    : QObject(parent)
    , log_(log)
{
    connect(&server_, &QTcpServer::newConnection, this, &HttpServer::accept);
}

bool HttpServer::listen(quint16 port)
{
    return server_.listen(QHostAddress::LocalHost, port);
}

QString HttpServer::origin() const
{
    return QStringLiteral("http://127.0.0.1:%1").arg(server_.serverPort());
}

void HttpServer::accept()
{
    while (QTcpSocket *socket = server_.nextPendingConnection()) {
        if (open_ == maxConnections) {
            delete socket;
            continue;
        }
        ++open_;
        auto *connection = new HttpConnection(socket, ++accepted_, this);
        if (log_ != nullptr) {
            log_->follow(*connection); // first, so that requests stand before their answers
        }
        connect(connection, &HttpConnection::requestReceived, this,
                [this, connection] { onRequest(*connection); });
        connect(connection, &HttpConnection::closed, this, [this] { --open_; });
    }
}

void HttpServer::onRequest(HttpConnection &connection)
{
    const QByteArray &method = connection.request().method;
    if (method != "GET" && method != "HEAD") {
        connection.answer({405, "text/plain; charset=utf-8", "Only GET and HEAD are understood here\n"});
    } else if (handler_) {
        handler_(connection);
    }
}

} // namespace localradio

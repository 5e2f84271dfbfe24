#include "localradio/http/httpserver.h"

#include "localradio/http/parameters.h"
#include "localradio/http/ports.h"
#include "localradio/http/requestlog.h"
#include "localradio/http/tlsserver.h"

using namespace std::chrono_literals;

namespace localradio {

HttpServer::HttpServer(RequestLog *log, std::unique_ptr<QTcpServer> server, QObject *parent)
    : QObject(parent)
    , server_(std::move(server))
    , log_(log)
{
    outage_.setSingleShot(true);
    connect(&outage_, &QTimer::timeout, this, &HttpServer::resume);
    connect(server_.get(), &QTcpServer::newConnection, this, &HttpServer::accept);
}

bool HttpServer::listen(quint16 port)
{
    const bool listens = server_->listen(QHostAddress::LocalHost, port);
    port_ = server_->serverPort();
    return listens;
}

QString HttpServer::origin() const
{
    return originOf(port_, qobject_cast<TlsServer *>(server_.get()) != nullptr);
}

void HttpServer::interrupt(std::chrono::milliseconds duration, const HttpConnection *spared)
{
    if (log_ != nullptr && server_->isListening()) {
        log_->write("outage-begin", port_, {});
    }
    server_->close();
    outage_.start(duration);
    for (HttpConnection *connection : findChildren<HttpConnection *>()) {
        if (connection != spared) {
            connection->reset();
        }
    }
}

void HttpServer::silence(std::chrono::milliseconds duration, const HttpConnection *spared)
{
    if (log_ != nullptr) {
        log_->write("silence", port_, {{QStringLiteral("ms"), static_cast<qint64>(duration.count())}});
    }
    for (HttpConnection *connection : findChildren<HttpConnection *>()) {
        if (connection != spared) {
            connection->hold(duration);
        }
    }
}

void HttpServer::resume()
{
    if (!server_->listen(QHostAddress::LocalHost, port_)) {
        outage_.start(100ms); // another program has the port: until it lets go
    } else if (log_ != nullptr) {
        log_->write("outage-end", port_, {});
    }
}

void HttpServer::accept()
{
    while (QTcpSocket *socket = server_->nextPendingConnection()) {
        if (open_ == maxConnections) {
            delete socket;
            continue;
        }
        ++open_;
        auto *connection = new HttpConnection(socket, this);
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
    if (method != "GET" && method != "HEAD" && method != "CONNECT") {
        connection.answer({405, "text/plain; charset=utf-8", "Only GET and HEAD are understood here\n"});
    } else if (handler_) {
        try {
            handler_(connection);
        } catch (const BadParameter &error) {
            connection.answer(Answer::plain(400, error.what()));
        }
    }
}

} // namespace localradio

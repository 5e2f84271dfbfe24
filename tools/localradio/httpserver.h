#pragma once

#include "localradio/httpconnection.h"

#include <QTcpServer>

#include <functional>

namespace localradio {

class RequestLog;

/// Accepts clients on the loopback interface and hands each request to a handler.
class HttpServer : public QObject
{
    Q_OBJECT

public:
    static constexpr int maxConnections = 512; ///< clients beyond it are closed at once

    /// Answers the connection's request, now or later: the connection may be gone by then.
    using Handler = std::function<void(HttpConnection &)>;

    /// `log`, which may be null, must outlive the server.
    explicit HttpServer(RequestLog *log = nullptr, QObject *parent = nullptr);

    /// Starts to listen on 127.0.0.1; port 0 picks a free one. False if that cannot be: see errorString().
    bool listen(quint16 port);
    QString errorString() const { return server_.errorString(); }

    /// "http://127.0.0.1:PORT" of a listening server.
    QString origin() const;

    /// Sets what answers GET and HEAD requests; other methods are refused before it.
    void setHandler(Handler handler) { handler_ = std::move(handler); }

private:
    void accept();
    void onRequest(HttpConnection &connection);

    QTcpServer server_;
    RequestLog *log_;
    Handler handler_;
    qint64 accepted_ = 0;
    int open_ = 0;
};

} // namespace localradio

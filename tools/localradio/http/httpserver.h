#pragma once

#include "localradio/http/httpconnection.h"

#include <QTcpServer>
#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>

namespace localradio {

class RequestLog;

/// Accepts clients on the loopback interface and hands each request to a handler.
class HttpServer : public QObject
{
    Q_OBJECT

public:
    static constexpr int maxConnections = 512; ///< clients beyond it are closed at once

    /// Answers the connection's request, now or later: the connection may be gone by then. Where it throws
    /// BadParameter instead, the answer is status 400 with what that says.
    using Handler = std::function<void(HttpConnection &)>;

    /// `log`, which may be null, must outlive the server. `server` accepts the clients.
    explicit HttpServer(RequestLog *log = nullptr,
                        std::unique_ptr<QTcpServer> server = std::make_unique<QTcpServer>(),
                        QObject *parent = nullptr);

    /// Starts to listen on 127.0.0.1; port 0 picks a free one. False if that cannot be: see errorString().
    bool listen(quint16 port);
    QString errorString() const { return server_->errorString(); }

    /// The port that it listens on, during an outage as well; 0 before listen().
    quint16 port() const { return port_; }

    /// "http://127.0.0.1:PORT" of that port, or "https" if its clients are encrypted.
    QString origin() const;

    /// Simulates an outage: resets all connections but `spared`, which may be null, and refuses new ones
    /// until `duration`, counted from the latest call, is over. Then it listens on the same port again.
    void interrupt(std::chrono::milliseconds duration, const HttpConnection *spared);

    /// Makes all connections but `spared`, which may be null, silent for `duration`: they stay open. New ones
    /// are served at once.
    void silence(std::chrono::milliseconds duration, const HttpConnection *spared);

    /// Sets what answers GET, HEAD and CONNECT requests; other methods are refused before it.
    void setHandler(Handler handler) { handler_ = std::move(handler); }

private:
    void accept();
    void onRequest(HttpConnection &connection);
    void resume();

    std::unique_ptr<QTcpServer> server_;
    quint16 port_ = 0;
    QTimer outage_; // until the end of one
    RequestLog *log_;
    Handler handler_;
    int open_ = 0;
};

} // namespace localradio

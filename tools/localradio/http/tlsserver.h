#pragma once

#include <QSslConfiguration>
#include <QTcpServer>

#include <chrono>

namespace localradio {

/// Accepts encrypted connections; each is pending once its handshake is over.
class TlsServer : public QTcpServer
{
    Q_OBJECT

public:
    /// With the PEM files of a certificate, with those that vouch for it behind it, and of its RSA or EC key.
    /// The first client waits `hold` for the server's part of the handshake. Throws std::runtime_error for
    /// files that cannot be read.
    TlsServer(const QString &certificateFile, const QString &keyFile, std::chrono::milliseconds hold,
              QObject *parent = nullptr);

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    QSslConfiguration configuration_;
    std::chrono::milliseconds hold_; // for the next client
};

} // namespace localradio

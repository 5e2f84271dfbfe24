#pragma once

#include <QHostAddress>
#include <QList>
#include <QObject>
#include <QTimer>
#include <QUrl>

class QHostInfo;
class QTcpSocket;

/// A connection to the server that a URL names, over TLS with a verified certificate where its scheme is
/// https. Of the server's several addresses the next one is tried beside those before it when they take long
/// (RFC 8305), and the first that answers is taken. Lives on one thread and never blocks it.
class ServerConnection : public QObject
{
    Q_OBJECT

public:
    /// How much is read ahead of whoever reads.
    static constexpr qint64 readBufferBytes = 256LL * 1024;

    explicit ServerConnection(QObject *parent = nullptr);

    /// To be called once. The outcome is never reported before this returns.
    void open(const QUrl &url);

    void write(const QByteArray &bytes);
    /// What has come since the last reading.
    QByteArray read();
    /// Closes the connection, or gives up opening it; nothing is reported any more.
    void abort();

Q_SIGNALS:
    void opened();
    /// There is something to read.
    void received();
    /// Nothing more will come: the server has closed the connection, or it is lost. What has come is still
    /// there to be read.
    void closed();
    /// It could not be opened; `description` is for a log.
    void failed(const QString &description);

private:
    void lookedUp(const QHostInfo &info);
    void tryNext();
    void take(QTcpSocket *socket);
    void giveUp(QTcpSocket *socket);
    void use(QTcpSocket *socket);

    QUrl url_;
    int lookup_ = -1;               // -1 while no name is being looked up
    QList<QHostAddress> addresses_; // still to be tried
    QList<QTcpSocket *> attempts_;
    QTimer nextAttempt_;
    QString lastError_;
    QTcpSocket *socket_ = nullptr; // the one that is used
};

#pragma once

#include <QFile>
#include <QJsonObject>

namespace localradio {

class HttpConnection;

/// A log of requests, answers, the ends of streams and outages, one JSON object a line, each written at
/// once and with the port of this machine that it is about. Times are milliseconds since 1970; bytes from
/// clients are written as Latin-1, so that each can be told, but of credentials and cookies only a digest.
class RequestLog
{
public:
    /// Appends to `fileName`; "-" is standard output. False if that cannot be: see errorString().
    bool open(const QString &fileName);
    QString errorString() const { return file_.errorString(); }

    /// Logs what happens on `connection`; to be called before it has read anything.
    void follow(HttpConnection &connection);

    /// Logs `object` as what has happened to `port`, under the name `event`.
    void write(const char *event, quint16 port, QJsonObject object);

private:
    QFile file_;
    qint64 followed_ = 0; // tells connections apart
};

} // namespace localradio

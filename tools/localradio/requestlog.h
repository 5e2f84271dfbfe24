#pragma once

#include <QFile>
#include <QJsonObject>

namespace localradio {

class HttpConnection;

/// A log of requests, answers and the ends of streams, one JSON object a line, each written at once. Times
/// are milliseconds since 1970; bytes from clients are written as Latin-1, so that each can be told.
class RequestLog
{
public:
    /// Appends to `fileName`; "-" is standard output. False if that cannot be: see errorString().
    bool open(const QString &fileName);
    QString errorString() const { return file_.errorString(); }

    /// Logs what happens on `connection`; to be called before it has read anything.
    void follow(HttpConnection &connection);

private:
    void write(const char *event, const HttpConnection &connection, QJsonObject object);

    QFile file_;
};

} // namespace localradio

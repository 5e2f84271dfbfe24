#include "localradio/requestlog.h"

#include "localradio/httpconnection.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>

#include <unistd.h>

namespace localradio {

bool RequestLog::open(const QString &fileName)
{
    if (fileName == u"-") {
        return file_.open(STDOUT_FILENO, QIODevice::WriteOnly | QIODevice::Unbuffered);
    }
    file_.setFileName(fileName);
    return file_.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered);
}

void RequestLog::follow(HttpConnection &connection)
{
    // The connection is the context object: once it is gone, nothing is left to log.
    QObject::connect(&connection, &HttpConnection::requestReceived, &connection, [this, &connection] {
        const HttpRequest &request = connection.request();
        QJsonArray headers;
        for (const auto &[name, value] : request.headers) {
            headers.append(QJsonArray{QString::fromLatin1(name), QString::fromLatin1(value)});
        }
        write("request", connection,
              {{QStringLiteral("method"), QString::fromLatin1(request.method)},
               {QStringLiteral("target"), QString::fromLatin1(request.target)},
               {QStringLiteral("headers"), headers}});
    });
    QObject::connect(&connection, &HttpConnection::answered, &connection, [this, &connection](int status) {
        write("answer", connection, {{QStringLiteral("status"), status}});
    });
    QObject::connect(&connection, &HttpConnection::closed, &connection, [this, &connection] {
        if (connection.isStreaming()) {
            write("closed", connection,
                  {{QStringLiteral("target"), QString::fromLatin1(connection.request().target)},
                   {QStringLiteral("bytes"), connection.sentBytes()}});
        }
    });
}

void RequestLog::write(const char *event, const HttpConnection &connection, QJsonObject object)
{
    object[QStringLiteral("event")] = QLatin1StringView(event);
    object[QStringLiteral("connection")] = connection.number();
    object[QStringLiteral("time_ms")] = QDateTime::currentMSecsSinceEpoch();
    file_.write(QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n');
}

} // namespace localradio

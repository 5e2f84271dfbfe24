#include "localradio/http/requestlog.h"

#include "localradio/http/httpconnection.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>

#include <unistd.h>

namespace localradio {

namespace {

/// What is logged of a header's value: of a secret only what tells it from another.
QString loggable(const QByteArray &name, const QByteArray &value)
{
    const bool isSecret = name.compare("Authorization", Qt::CaseInsensitive) == 0 ||
                          name.compare("Proxy-Authorization", Qt::CaseInsensitive) == 0 ||
                          name.compare("Cookie", Qt::CaseInsensitive) == 0;
    return isSecret ? QLatin1StringView("sha256:") +
                          QString::fromLatin1(
                              QCryptographicHash::hash(value, QCryptographicHash::Sha256).toHex().left(16))
                    : QString::fromLatin1(value);
}

} // namespace

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
    const qint64 number = ++followed_;
    const auto writeFor = [this, &connection, number](const char *event, QJsonObject object) {
        object[QStringLiteral("connection")] = number;
        write(event, connection.port(), object);
    };
    QObject::connect(&connection, &HttpConnection::requestReceived, &connection, [writeFor, &connection] {
        const HttpRequest &request = connection.request();
        QJsonArray headers;
        for (const auto &[name, value] : request.headers) {
            headers.append(QJsonArray{QString::fromLatin1(name), loggable(name, value)});
        }
        const auto has = [&request](const char *name) { return !request.header(name).isNull(); };
        writeFor("request", {{QStringLiteral("method"), QString::fromLatin1(request.method)},
                             {QStringLiteral("proxied"), QString::fromLatin1(request.proxied)},
                             {QStringLiteral("target"), QString::fromLatin1(request.target)},
                             {QStringLiteral("encrypted"), connection.isEncrypted()},
                             {QStringLiteral("authorization"), has("Authorization")},
                             {QStringLiteral("cookie"), has("Cookie")},
                             {QStringLiteral("headers"), headers}});
    });
    QObject::connect(
        &connection, &HttpConnection::answered, &connection, [writeFor, &connection](int status) {
            writeFor("answer",
                     {{QStringLiteral("status"), status},
                      {QStringLiteral("target"), QString::fromLatin1(connection.request().target)}});
        });
    QObject::connect(&connection, &HttpConnection::closed, &connection, [writeFor, &connection] {
        if (connection.hasStreamed()) {
            writeFor("closed", {{QStringLiteral("target"), QString::fromLatin1(connection.request().target)},
                                {QStringLiteral("bytes"), connection.sentBytes()}});
        }
    });
}

void RequestLog::write(const char *event, quint16 port, QJsonObject object)
{
    object[QStringLiteral("event")] = QLatin1StringView(event);
    object[QStringLiteral("port")] = port;
    object[QStringLiteral("time_ms")] = QDateTime::currentMSecsSinceEpoch();
    file_.write(QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n');
}

} // namespace localradio

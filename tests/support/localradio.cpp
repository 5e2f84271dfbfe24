#include "support/localradio.h"

#include <QFile>
#include <QJsonDocument>
#include <QTcpSocket>
#include <QUrl>
#include <csignal>

namespace {
constexpr int startTime = 10'000;

QString program()
{
    return qEnvironmentVariable("LOCALRADIO");
}

/// Empty where that takes too long.
QJsonArray listed(const QString &option)
{
    QProcess list;
    list.start(program(), {option});
    return list.waitForFinished(startTime) ? QJsonDocument::fromJson(list.readAllStandardOutput()).array()
                                           : QJsonArray();
}
} // namespace

LocalRadio::LocalRadio(const QStringList &arguments)
{
    stations_ = listed(QStringLiteral("--list"));
    if (stations_.isEmpty()) {
        return;
    }
    process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process_.start(program(),
                   QStringList{QStringLiteral("--log"), folder_.filePath(QStringLiteral("log"))} + arguments);
    address_ = readAddress();
    secondAddress_ = readAddress();
    if (arguments.contains(u"--tls-certificate")) {
        encryptedAddress_ = readAddress();
    }
}

LocalRadio::~LocalRadio()
{
    // A frozen one would not notice.
    signal(SIGCONT);
    process_.terminate();
    process_.waitForFinished(startTime);
}

QString LocalRadio::stream(int row) const
{
    return address_ + stations_.at(row)[QLatin1StringView("streams")][0].toString();
}

QByteArray LocalRadio::beginning(int row, qsizetype bytes) const
{
    const QUrl url(stream(row));
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, static_cast<quint16>(url.port()));
    socket.write("GET " + url.path().toLatin1() + " HTTP/1.0\r\n\r\n");
    while (socket.bytesAvailable() < bytes && socket.waitForReadyRead(startTime)) {
    }
    return socket.read(bytes);
}

QByteArray LocalRadio::get(const QString &target) const
{
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, static_cast<quint16>(QUrl(address_).port()));
    socket.write("GET " + target.toLatin1() + " HTTP/1.0\r\n\r\n");
    socket.waitForDisconnected(startTime);
    return socket.readAll();
}

void LocalRadio::signal(int number) const
{
    ::kill(static_cast<pid_t>(process_.processId()), number);
}

QJsonArray LocalRadio::kinds() const
{
    return listed(QStringLiteral("--list-kinds"));
}

QList<QJsonObject> LocalRadio::logged(const QString &event) const
{
    QFile log(folder_.filePath(QStringLiteral("log")));
    QList<QJsonObject> found;
    if (log.open(QIODevice::ReadOnly)) {
        while (!log.atEnd()) {
            const QJsonObject entry = QJsonDocument::fromJson(log.readLine()).object();
            if (entry.value(QLatin1StringView("event")) == event) {
                found.append(entry);
            }
        }
    }
    return found;
}

/// From the next line of output; empty where that names none.
QString LocalRadio::readAddress()
{
    while (!process_.canReadLine() && process_.waitForReadyRead(startTime)) {
    }
    const QString line = QString::fromUtf8(process_.readLine()).trimmed();
    const qsizetype begin = line.indexOf(QLatin1StringView("http"));
    return begin >= 0 ? line.mid(begin).chopped(1) : QString();
}

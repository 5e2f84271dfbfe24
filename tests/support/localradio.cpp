#include "support/localradio.h"

#include <QFile>
#include <QJsonDocument>

namespace {
constexpr int startTime = 10'000;
} // namespace

LocalRadio::LocalRadio(const QStringList &arguments)
{
    const QString program = qEnvironmentVariable("LOCALRADIO");
    QProcess list;
    list.start(program, {QStringLiteral("--list")});
    if (!list.waitForFinished(startTime)) {
        return;
    }
    stations_ = QJsonDocument::fromJson(list.readAllStandardOutput()).array();

    process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process_.start(program,
                   QStringList{QStringLiteral("--log"), folder_.filePath(QStringLiteral("log"))} + arguments);
    while (!process_.canReadLine() && process_.waitForReadyRead(startTime)) {
    }
    const QString line = QString::fromUtf8(process_.readLine()).trimmed();
    const qsizetype begin = line.indexOf(QLatin1StringView("http://"));
    if (begin >= 0) {
        address_ = line.mid(begin).chopped(1);
    }
}

LocalRadio::~LocalRadio()
{
    process_.terminate();
    process_.waitForFinished(startTime);
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

#include "base/rvobject.h"

#include "base/basicauthorization.h"
#include "base/exception.h"
#include "base/leadinginteger.h"

#include <QDateTime>
#include <QFile>
#include <QJsonDocument>
#include <QLocale>
#include <QTimeZone>
#include <QUtf8StringView>
#include <QUuid>
#include <algorithm>
#include <cmath>

namespace {
/// In seconds; used where the stored settings hold no time-out.
constexpr double defaultTimeout = 15.0;

/// The instant `seconds` after 1970 in milliseconds; what QDateTime cannot hold becomes 1970 itself.
qint64 instant(double seconds)
{
    constexpr double farthest = 1.0e11;
    return std::abs(seconds) < farthest ? static_cast<qint64>(std::floor(seconds)) * 1000 : 0;
}
} // namespace

QString RVObject::airAPIFormatStyle(const QString &text)
{
    QString formatted = text;
    return formatted.replace(QLatin1Char(' '), QLatin1Char('+'));
}

QString RVObject::standardBasicAuthWithUsername(const QString &username, const QString &password)
{
    return basicAuthorization(username, password);
}

double RVObject::rtoToTime(const QVariant &stored)
{
    return stored.isValid() ? static_cast<double>(leadingInteger(stored.toString())) : defaultTimeout;
}

std::optional<double> RVObject::numberFromString(const QString &text)
{
    QLocale plain = QLocale::c();
    plain.setNumberOptions(QLocale::RejectGroupSeparator);
    bool ok = false;
    const double number = plain.toDouble(text, &ok);
    return ok && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

quint64 RVObject::indexFromList(const QStringList &list, double key)
{
    for (const QString &text : list) {
        if (numberFromString(text) == key) {
            return static_cast<quint64>(list.indexOf(text));
        }
    }
    return 0;
}

std::optional<QJsonArray> RVObject::jsonFromBundle(const QString &name)
{
    QFile resource(QStringLiteral(":/%1.json").arg(name));
    if (!resource.open(QIODevice::ReadOnly)) {
        throw Exception(QStringLiteral("no resource %1 of type json").arg(name));
    }
    const QByteArray bytes = resource.readAll();
    if (!QUtf8StringView(bytes).isValidUtf8()) {
        throw Exception(QStringLiteral("the resource %1 is not UTF-8 text").arg(name));
    }
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    return document.isArray() ? std::optional(document.array()) : std::nullopt;
}

QString RVObject::getUUID()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
}

QList<SortDescriptor> RVObject::mysortDescriptor(const QString &key, bool ascending)
{
    return {{key, ascending ? Qt::AscendingOrder : Qt::DescendingOrder}};
}

QString RVObject::showDigitalClock(double seconds)
{
    return QDateTime::fromMSecsSinceEpoch(instant(seconds), QTimeZone::utc())
        .toString(QStringLiteral("HH:mm:ss"));
}

QString RVObject::showClock(double seconds)
{
    const QDateTime now = QDateTime::currentDateTime();
    const QDateTime then = now.addMSecs(instant(seconds));
    const QDateTime begin = std::min(now, then);
    const QDateTime end = std::max(now, then);

    // Whole months, then whole days by the calendar, so that a day on which the clocks change counts as one.
    // The step is added to the beginning each time: the end of January and a month twice is the end of March.
    QDateTime mark = begin;
    for (int months = 1; begin.addMonths(months) <= end; ++months) {
        mark = begin.addMonths(months);
    }
    qint64 days = mark.daysTo(end);
    if (mark.addDays(days) > end) {
        --days;
    }
    const qint64 rest = mark.addDays(days).secsTo(end) / 60;
    const qint64 minutes = now <= then ? rest : -rest;
    return QStringLiteral("%1 h : %2 m").arg(minutes / 60).arg(minutes % 60);
}

QString RVObject::convertTime(double seconds)
{
    const QDateTime local = QDateTime::fromMSecsSinceEpoch(instant(seconds));
    return local.toString(seconds / 60 >= 1 ? QStringLiteral("mm:ss") : QStringLiteral("00:ss"));
}

#include "directory/stationentry.h"

#include "base/leadinginteger.h"

#include <QDataStream>

StationEntry StationEntry::withNumbers() const
{
    StationEntry entry(attributes_);
    entry.listener_ = number(QLatin1StringView("lc"));
    entry.bitrate_ = number(QLatin1StringView("br"));
    return entry;
}

QVariant StationEntry::value(QLatin1StringView key) const
{
    if (listener_ && key == QLatin1StringView("listener")) {
        return QVariant::fromValue(*listener_);
    }
    if (bitrate_ && key == QLatin1StringView("bitrate")) {
        return QVariant::fromValue(*bitrate_);
    }
    const QString value = text(key);
    return value.isNull() ? QVariant() : QVariant(value);
}

QString StationEntry::text(QLatin1StringView key) const
{
    const auto value = attributes_.value(key);
    return value ? QString::fromUtf8(*value) : QString();
}

std::optional<qint64> StationEntry::number(QLatin1StringView attribute) const
{
    const auto value = attributes_.value(attribute);
    return value ? std::optional(leadingInteger(QString::fromUtf8(*value))) : std::nullopt;
}

QDataStream &operator<<(QDataStream &stream, const StationEntry &entry)
{
    return stream << entry.attributes_ << entry.listener_.has_value() << entry.listener_.value_or(0)
                  << entry.bitrate_.has_value() << entry.bitrate_.value_or(0);
}

QDataStream &operator>>(QDataStream &stream, StationEntry &entry)
{
    const auto readNumber = [&stream](std::optional<qint64> &number) {
        bool present = false;
        qint64 value = 0;
        stream >> present >> value;
        number = present ? std::optional(value) : std::nullopt;
    };
    stream >> entry.attributes_;
    readNumber(entry.listener_);
    readNumber(entry.bitrate_);
    return stream;
}

#pragma once

#include "directory/attributemap.h"

#include <QList>
#include <QString>
#include <QVariant>
#include <optional>
#include <utility>

/// One row of the station list: the attributes of a directory "station" element as text, exactly as they
/// arrived, and two numbers that updateReadWriteData() adds. A value type; copies share their text.
class StationEntry
{
public:
    StationEntry() = default;
    explicit StationEntry(AttributeMap attributes)
        : attributes_(std::move(attributes))
    {
    }

    /// A copy with "listener", the leading decimal integer of "lc", and "bitrate", that of "br"; each only
    /// where the element has the attribute.
    StationEntry withNumbers() const;

    /// What the entry holds under `key`: a QString, for "listener" and "bitrate" a qlonglong; an invalid
    /// value where it has no such key.
    QVariant value(QLatin1StringView key) const;

    /// The text under `key`; null where the entry has none.
    QString text(QLatin1StringView key) const;

    friend QDataStream &operator<<(QDataStream &stream, const StationEntry &entry);
    /// Marks the stream as corrupt where it holds no entry.
    friend QDataStream &operator>>(QDataStream &stream, StationEntry &entry);

private:
    std::optional<qint64> number(QLatin1StringView attribute) const;

    AttributeMap attributes_;
    std::optional<qint64> listener_;
    std::optional<qint64> bitrate_;
};

using StationList = QList<StationEntry>;

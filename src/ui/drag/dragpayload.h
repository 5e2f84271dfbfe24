#pragma once

#include "directory/stationentry.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

/// The data of a drag: a station of the table, or which tiles of the rack. A payload carries a random token
/// of this process; one that another process has made is rejected.
namespace DragPayload {
/// The type of a drag of a station table's row.
inline const QString stationType = QStringLiteral("com.ostrel.pboard");
/// The type of a drag of rack tiles.
inline const QString tilesType = QStringLiteral("com.ostrel.pboard.self");

QByteArray ofStation(const StationEntry &station);
/// Nothing where `payload` is not what ofStation() gave in this process.
std::optional<StationEntry> station(const QByteArray &payload);

QByteArray ofTiles(const QList<qsizetype> &indexes);
/// Nothing where `payload` is not what ofTiles() gave in this process, or names no tile.
std::optional<QList<qsizetype>> tiles(const QByteArray &payload);
} // namespace DragPayload

#pragma once

#include "directory/attributemap.h"
#include "directory/stationentry.h"

#include <QList>
#include <QString>

/// The address of a directory station's playlist: `tuneInBaseAddress`, the "base" of the last tune-in record
/// where it has one, "?id=" and the station's "id". Null where there is no tune-in record.
QString tuneInAddress(const QString &tuneInBaseAddress, const QList<AttributeMap> &tuneInRecords,
                      const StationEntry &station);

/// The address that a station keeps which is dropped on the rack: tuneInAddress() where the last tune-in
/// record has a "base", otherwise null.
QString droppedStationAddress(const QString &tuneInBaseAddress, const QList<AttributeMap> &tuneInRecords,
                              const StationEntry &station);

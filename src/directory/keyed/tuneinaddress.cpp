#include "directory/keyed/tuneinaddress.h"

QString tuneInAddress(const QString &tuneInBaseAddress, const QList<AttributeMap> &tuneInRecords,
                      const StationEntry &station)
{
    if (tuneInRecords.isEmpty()) {
        return {};
    }
    const auto base = tuneInRecords.constLast().value("base");
    return tuneInBaseAddress + (base ? QString::fromUtf8(*base) : QString()) + QLatin1StringView("?id=") +
           station.text(QLatin1StringView("id"));
}

QString droppedStationAddress(const QString &tuneInBaseAddress, const QList<AttributeMap> &tuneInRecords,
                              const StationEntry &station)
{
    const bool hasBase = !tuneInRecords.isEmpty() && tuneInRecords.constLast().value("base").has_value();
    return hasBase ? tuneInAddress(tuneInBaseAddress, tuneInRecords, station) : QString();
}

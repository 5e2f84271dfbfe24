#include "localradio/catalogue/catalogue.h"

#include "localradio/sound/loops.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace localradio {

const Station *Catalogue::find(int id) const
{
    const auto &all = stations();
    const auto found = std::ranges::find(all, id, &Station::id);
    return found == all.end() ? nullptr : &*found;
}

QByteArray Catalogue::toJson() const
{
    QJsonArray list;
    for (const Station &station : stations()) {
        QJsonObject object{
            {QStringLiteral("id"), station.id},
            {QStringLiteral("name"), station.name},
            {QStringLiteral("genre"), station.genres.join(u", ")},
            {QStringLiteral("mt"), station.mediaType},
            {QStringLiteral("bitrate"), station.bitrate},
            {QStringLiteral("listeners"), station.listeners},
            {QStringLiteral("ct"), station.currentTrack},
            {QStringLiteral("tunein"), QStringLiteral("/sbin/tunein-station.pls?id=%1").arg(station.id)},
            {QStringLiteral("streams"), QJsonArray::fromStringList(station.streams)},
        };
        if (station.mount) {
            const int loop = station.mount->loop;
            object[QStringLiteral("format")] = QLatin1StringView(factsOf(loopFormat(loop)).name);
            object[QStringLiteral("pitch")] = loopPitch(loop);
            object[QStringLiteral("tracks")] = QJsonArray::fromStringList(station.mount->tracks);
            object[QStringLiteral("icy")] = station.mount->oldStatusLine;
        }
        list.append(object);
    }
    return QJsonDocument(list).toJson();
}

} // namespace localradio

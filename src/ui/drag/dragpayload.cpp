#include "ui/drag/dragpayload.h"

#include <QDataStream>
#include <QIODevice>
#include <QUuid>

namespace {
constexpr auto streamVersion = QDataStream::Qt_6_4;

/// Indexes up to the end of the stream: a stored count could not be trusted.
struct TileIndexes
{
    QList<qsizetype> indexes;

    friend QDataStream &operator<<(QDataStream &stream, const TileIndexes &tiles)
    {
        for (const qsizetype index : tiles.indexes) {
            stream << static_cast<qint64>(index);
        }
        return stream;
    }
    friend QDataStream &operator>>(QDataStream &stream, TileIndexes &tiles)
    {
        while (!stream.atEnd() && stream.status() == QDataStream::Ok) {
            qint64 index = 0;
            stream >> index;
            tiles.indexes.append(index);
        }
        return stream;
    }
};

const QByteArray &token()
{
    static const QByteArray random = QUuid::createUuid().toRfc4122();
    return random;
}

template <class Content>
QByteArray archived(const QString &type, const Content &content)
{
    QByteArray payload;
    QDataStream stream(&payload, QIODevice::WriteOnly);
    stream.setVersion(streamVersion);
    stream << token() << type << content;
    return payload;
}

template <class Content>
std::optional<Content> unarchived(const QString &type, const QByteArray &payload)
{
    QDataStream stream(payload);
    stream.setVersion(streamVersion);
    QByteArray writer;
    QString written;
    stream >> writer >> written;
    if (stream.status() != QDataStream::Ok || writer != token() || written != type) {
        return std::nullopt;
    }
    Content content;
    stream >> content;
    return stream.status() == QDataStream::Ok ? std::optional(content) : std::nullopt;
}
} // namespace

namespace DragPayload {
QByteArray ofStation(const StationEntry &station)
{
    return archived(stationType, station);
}

std::optional<StationEntry> station(const QByteArray &payload)
{
    return unarchived<StationEntry>(stationType, payload);
}

QByteArray ofTiles(const QList<qsizetype> &indexes)
{
    return archived(tilesType, TileIndexes{indexes});
}

std::optional<QList<qsizetype>> tiles(const QByteArray &payload)
{
    const auto tiles = unarchived<TileIndexes>(tilesType, payload);
    return tiles && !tiles->indexes.isEmpty() ? std::optional(tiles->indexes) : std::nullopt;
}
} // namespace DragPayload

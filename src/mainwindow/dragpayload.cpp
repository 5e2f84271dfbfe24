#include "mainwindow/dragpayload.h"

#include <QDataStream>
#include <QIODevice>
#include <QUuid>

namespace {
constexpr auto streamVersion = QDataStream::Qt_6_4;

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
    return archived(tilesType, indexes);
}

std::optional<QList<qsizetype>> tiles(const QByteArray &payload)
{
    auto indexes = unarchived<QList<qsizetype>>(tilesType, payload);
    return indexes && !indexes->isEmpty() ? indexes : std::nullopt;
}
} // namespace DragPayload

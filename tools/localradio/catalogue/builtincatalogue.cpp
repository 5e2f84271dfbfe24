#include "localradio/catalogue/builtincatalogue.h"

#include "localradio/sound/loops.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QSet>

#include <algorithm>
#include <cmath>

// The resource of a static library must be asked for, and that from outside any namespace.
static void initialiseResources()
{
    Q_INIT_RESOURCE(stations);
}

namespace localradio {

namespace {

/// Whether an event of that probability, in percent, happens.
bool happens(QRandomGenerator &random, int percent)
{
    return random.bounded(100) < percent;
}

QStringList texts(const QJsonValue &array)
{
    QStringList list;
    for (const auto &value : array.toArray()) {
        list << value.toString();
    }
    return list;
}

/// A few different tracks that suit the genre.
QStringList pickTracks(const QJsonObject &genre, QRandomGenerator &random)
{
    const QStringList artists = texts(genre[QLatin1StringView("artists")]);
    const QStringList titles = texts(genre[QLatin1StringView("titles")]);
    const int count = 4 + random.bounded(4);
    const auto firstArtist = random.bounded(artists.size());
    const auto firstTitle = random.bounded(titles.size());
    QStringList tracks;
    for (int i = 0; i < count; ++i) {
        tracks << artists[(firstArtist + i) % artists.size()] + QStringLiteral(" - ") +
                      titles[(firstTitle + i) % titles.size()];
    }
    tracks.removeDuplicates();
    return tracks;
}

/// Every name of the resource with its genres and tracks, in random order.
std::vector<Station> readNames(QRandomGenerator &random)
{
    initialiseResources();
    QFile file(QStringLiteral(":/localradio/stations.json"));
    if (!file.open(QIODevice::ReadOnly)) {
        qFatal("the built-in stations are missing");
    }
    std::vector<Station> stations;
    for (const auto &value : QJsonDocument::fromJson(file.readAll()).array()) {
        const QJsonObject genre = value.toObject();
        const QStringList genres = texts(genre[QLatin1StringView("genres")]);
        for (const QString &name : texts(genre[QLatin1StringView("names")])) {
            Station station;
            station.name = name;
            station.genres = genres.first(1 + random.bounded(genres.size()));
            station.mount = Mount{0, pickTracks(genre, random), false};
            stations.push_back(std::move(station));
        }
    }
    std::ranges::shuffle(stations, random);
    return stations;
}

/// A long tail: a handful with thousands of listeners, most with a few dozen.
int listenersAt(std::size_t rank, QRandomGenerator &random)
{
    const double typical = 61000.0 / std::pow(static_cast<double>(rank) + 4.0, 1.28);
    return static_cast<int>(typical * (0.8 + 0.4 * random.generateDouble()));
}

/// The formats take turns at the head of the list, so that a glance shows all three; further down they occur
/// as often as in real directories.
Format formatAt(std::size_t rank, QRandomGenerator &random)
{
    if (rank < 12) {
        return static_cast<Format>(rank % 3);
    }
    const int dice = random.bounded(100);
    return dice < 58 ? Format::Mp3 : dice < 86 ? Format::Aac : Format::Ogg;
}

/// The bit rate that the station advertises: mostly the true one.
int advertisedBitrate(Format format, QRandomGenerator &random)
{
    static constexpr std::array<int, 8> others{32, 48, 96, 160, 192, 192, 256, 320};
    return happens(random, 9) ? others[random.bounded(quint32{others.size()})] : factsOf(format).bitrate;
}

int unusedId(QSet<int> &used, QRandomGenerator &random)
{
    int id = 0;
    do {
        id = happens(random, 25) ? random.bounded(104000, 999999) : random.bounded(1200000, 1999999);
    } while (used.contains(id));
    used.insert(id);
    return id;
}

} // namespace

BuiltinCatalogue::BuiltinCatalogue()
{
    QRandomGenerator random(20110); // any number will do, as long as it stays
    stations_ = readNames(random);

    std::vector<int> listeners;
    listeners.reserve(stations_.size());
    for (std::size_t rank = 0; rank < stations_.size(); ++rank) {
        listeners.push_back(listenersAt(rank, random));
    }
    std::ranges::sort(listeners, std::ranges::greater());

    QSet<int> ids;
    std::array<int, 3> counts{}; // stations of each format so far
    for (std::size_t rank = 0; rank < stations_.size(); ++rank) {
        Station &station = stations_[rank];
        const Format format = formatAt(rank, random);
        const int number = counts[static_cast<std::size_t>(format)]++;
        // Five is coprime to the sixteen loops of a format: neighbours differ widely, and all come up.
        station.mount->loop = 3 * (5 * number % (loopCount / 3)) + static_cast<int>(format);
        station.mount->oldStatusLine = format == Format::Mp3 && number % 40 == 39;
        station.id = unusedId(ids, random);
        station.mediaType = QLatin1StringView(factsOf(format).mediaType);
        station.bitrate = advertisedBitrate(format, random);
        station.listeners = listeners[rank];
        if (!happens(random, 12)) {
            station.currentTrack = station.mount->tracks.first();
        }
        if (happens(random, 45)) {
            station.logo = QStringLiteral("http://logos.example/%1.png").arg(station.id);
        }
        const int entries = happens(random, 80) ? 1 : 2 + random.bounded(2);
        for (int entry = 1; entry <= entries; ++entry) {
            const QString path = QStringLiteral("/stream/%1").arg(station.id);
            station.streams << (entry == 1 ? path : path + QStringLiteral(";relay%1").arg(entry));
        }
        station.crlfPlaylist = happens(random, 40);
    }
}

} // namespace localradio

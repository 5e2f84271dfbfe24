#include "localradio/services/directoryservice.h"

#include <QRandomGenerator>
#include <QXmlStreamWriter>

#include <algorithm>
#include <array>
#include <optional>
#include <span>

namespace localradio {

namespace {

constexpr qsizetype defaultLimit = 500;
constexpr qsizetype defaultRandomLimit = 20;
constexpr char xmlDeclaration[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

/// The part of `stations` that a "limit" parameter asks for: "N" for the first N, "X,Y" for Y after
/// skipping X. Anything else means `fallback`.
std::span<const Station *const> limited(std::span<const Station *const> stations, const QString &limit,
                                        qsizetype fallback)
{
    const auto size = static_cast<qlonglong>(stations.size());
    const QStringList numbers = limit.split(u',');
    bool countGiven = false;
    bool skipGiven = true;
    qlonglong count = numbers.last().toLongLong(&countGiven);
    qlonglong skip = numbers.size() == 2 ? numbers.first().toLongLong(&skipGiven) : 0;
    if (!countGiven || !skipGiven || count < 0 || skip < 0 || numbers.size() > 2) {
        count = fallback;
        skip = 0;
    }
    skip = std::min(skip, size);
    count = std::min(count, size - skip);
    return stations.subspan(static_cast<std::size_t>(skip), static_cast<std::size_t>(count));
}

void writeStation(QXmlStreamWriter &xml, const Station &station)
{
    xml.writeEmptyElement(QStringLiteral("station"));
    const auto write = [&xml](QLatin1StringView name, const QString &value) {
        if (!value.isEmpty()) {
            xml.writeAttribute(name, value);
        }
    };
    write(QLatin1StringView("name"), station.name);
    write(QLatin1StringView("mt"), station.mediaType);
    write(QLatin1StringView("id"), QString::number(station.id));
    write(QLatin1StringView("br"), QString::number(station.bitrate));
    for (qsizetype i = 0; i < std::min<qsizetype>(5, station.genres.size()); ++i) {
        xml.writeAttribute(i == 0 ? QStringLiteral("genre") : QStringLiteral("genre%1").arg(i + 1),
                           station.genres[i]);
    }
    write(QLatin1StringView("logo"), station.logo);
    write(QLatin1StringView("ct"), station.currentTrack);
    write(QLatin1StringView("lc"), QString::number(station.listeners));
}

void writeStationList(QXmlStreamWriter &xml, std::span<const Station *const> stations)
{
    xml.writeStartElement(QStringLiteral("stationlist"));
    xml.writeEmptyElement(QStringLiteral("tunein"));
    xml.writeAttribute(QStringLiteral("base"), QStringLiteral("/sbin/tunein-station.pls"));
    xml.writeAttribute(QStringLiteral("base-m3u"), QStringLiteral("/sbin/tunein-station.m3u"));
    xml.writeAttribute(QStringLiteral("base-xspf"), QStringLiteral("/sbin/tunein-station.xspf"));
    for (const Station *station : stations) {
        writeStation(xml, *station);
    }
    xml.writeEndElement();
}

/// The newer interface's frame, which also carries its errors.
QByteArray response(int status, const QString &text, std::optional<std::span<const Station *const>> stations)
{
    QByteArray body;
    QXmlStreamWriter xml(&body);
    xml.writeStartElement(QStringLiteral("response"));
    xml.writeTextElement(QStringLiteral("statusCode"), QString::number(status));
    xml.writeTextElement(QStringLiteral("statusText"), text);
    if (stations) {
        xml.writeStartElement(QStringLiteral("data"));
        writeStationList(xml, *stations);
        xml.writeEndElement();
    }
    xml.writeEndElement();
    return xmlDeclaration + body;
}

QByteArray pls(const Station &station, const QStringList &addresses)
{
    QStringList lines{QStringLiteral("[playlist]"),
                      QStringLiteral("numberofentries=%1").arg(addresses.size())};
    for (qsizetype i = 0; i < addresses.size(); ++i) {
        const QString number = QString::number(i + 1);
        lines << QStringLiteral("File%1=%2").arg(number, addresses[i])
              << QStringLiteral("Title%1=%2").arg(number, station.name)
              << QStringLiteral("Length%1=-1").arg(number);
    }
    lines << QStringLiteral("Version=2") << QString();
    return lines.join(station.crlfPlaylist ? QStringLiteral("\r\n") : QStringLiteral("\n")).toUtf8();
}

QByteArray m3u(const Station &station, const QStringList &addresses)
{
    QStringList lines{QStringLiteral("#EXTM3U")};
    for (const QString &address : addresses) {
        lines << QStringLiteral("#EXTINF:-1,") + station.name << address;
    }
    lines << QString();
    return lines.join(station.crlfPlaylist ? QStringLiteral("\r\n") : QStringLiteral("\n")).toUtf8();
}

QByteArray xspf(const Station &station, const QStringList &addresses)
{
    QByteArray body;
    QXmlStreamWriter xml(&body);
    xml.writeStartElement(QStringLiteral("playlist"));
    xml.writeDefaultNamespace(QStringLiteral("http://xspf.org/ns/0/"));
    xml.writeAttribute(QStringLiteral("version"), QStringLiteral("1"));
    xml.writeTextElement(QStringLiteral("title"), station.name);
    xml.writeStartElement(QStringLiteral("trackList"));
    for (const QString &address : addresses) {
        xml.writeStartElement(QStringLiteral("track"));
        xml.writeTextElement(QStringLiteral("location"), address);
        xml.writeEndElement();
    }
    xml.writeEndElement();
    xml.writeEndElement();
    return xmlDeclaration + body;
}

} // namespace

DirectoryService::DirectoryService(const Catalogue &catalogue, QString key, QString origin)
    : catalogue_(catalogue)
    , key_(std::move(key))
    , origin_(std::move(origin))
{
}

Answer DirectoryService::answer(const RequestTarget &target) const
{
    if (target.path().startsWith(u"/legacy/") || target.path().startsWith(u"/station/")) {
        return stationList(target);
    }
    return playlist(target);
}

Answer DirectoryService::stationList(const RequestTarget &target) const
{
    const QByteArray contentType = "text/xml; charset=utf-8";
    const bool wrapped = target.path() == u"/station/randomstations";
    Stations stations;
    if (target.parameter(QLatin1StringView("k")) != key_) {
        return {401, contentType, response(401, QStringLiteral("Invalid or missing developer key"), {})};
    }
    if (target.path() == u"/legacy/Top500/" || target.path() == u"/legacy/Top500") {
        stations = top();
    } else if (target.path() == u"/legacy/stationsearch") {
        stations = search(target.parameter(QLatin1StringView("search")));
    } else if (wrapped) {
        stations = random();
    } else {
        return {404, contentType, response(404, QStringLiteral("No such method"), {})};
    }

    const auto part = limited(stations, target.parameter(QLatin1StringView("limit")),
                              wrapped ? defaultRandomLimit : defaultLimit);
    if (wrapped) {
        return {200, contentType, response(200, QStringLiteral("Ok"), part)};
    }
    QByteArray body;
    QXmlStreamWriter xml(&body);
    writeStationList(xml, part);
    return {200, contentType, xmlDeclaration + body};
}

DirectoryService::Stations DirectoryService::top() const
{
    Stations all;
    for (const Station &station : catalogue_.stations()) {
        all.push_back(&station);
    }
    return all;
}

/// Every word must occur in the name, a genre or the current track; nothing is found for no word.
DirectoryService::Stations DirectoryService::search(const QString &text) const
{
    const QStringList words = text.split(u' ', Qt::SkipEmptyParts);
    const auto found = [&words](const Station &station) {
        const QString haystack =
            station.name + u'\n' + station.genres.join(u'\n') + u'\n' + station.currentTrack;
        return !words.isEmpty() && std::ranges::all_of(words, [&haystack](const QString &word) {
            return haystack.contains(word, Qt::CaseInsensitive);
        });
    };
    Stations matches;
    for (const Station &station : catalogue_.stations()) {
        if (found(station)) {
            matches.push_back(&station);
        }
    }
    return matches;
}

DirectoryService::Stations DirectoryService::random() const
{
    Stations all = top();
    std::ranges::shuffle(all, *QRandomGenerator::global());
    return all;
}

Answer DirectoryService::playlist(const RequestTarget &target) const
{
    struct Kind
    {
        QLatin1StringView path;
        QByteArray contentType;
        QByteArray (*write)(const Station &, const QStringList &);
    };
    static const std::array<Kind, 3> kinds{{
        {QLatin1StringView("/sbin/tunein-station.pls"), "audio/x-scpls", pls},
        {QLatin1StringView("/sbin/tunein-station.m3u"), "audio/x-mpegurl", m3u},
        {QLatin1StringView("/sbin/tunein-station.xspf"), "application/xspf+xml", xspf},
    }};
    const auto *const kind = std::ranges::find(kinds, target.path(), &Kind::path);
    const Station *station = catalogue_.find(target.parameter(QLatin1StringView("id")).toInt());
    if (kind == kinds.end() || station == nullptr) {
        return {404, "text/plain; charset=utf-8", "Not found\n"};
    }
    QStringList addresses;
    for (const QString &stream : station->streams) {
        addresses << streamAddress(stream);
    }
    return {200, kind->contentType, kind->write(*station, addresses)};
}

QString DirectoryService::streamAddress(const QString &stream) const
{
    return stream.startsWith(u'/') ? origin_ + stream : stream;
}

} // namespace localradio

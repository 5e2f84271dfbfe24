#include "localradio/catalogue/jsoncatalogue.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QUrl>

#include <algorithm>
#include <stdexcept>

namespace localradio {

namespace {

[[noreturn]] void refuse(const QString &reason)
{
    throw std::runtime_error(reason.toStdString());
}

/// Text on one line, without anything that XML or a playlist could not carry.
QString cleanText(const QJsonValue &value)
{
    QString text = value.toString();
    for (QChar &character : text) {
        if (character.category() == QChar::Other_Control || character.unicode() >= 0xfffe) {
            character = u' ';
        }
    }
    return QString::fromUtf8(text.toUtf8()).simplified();
}

int wholeNumber(const QJsonObject &object, QLatin1StringView key)
{
    return std::max(0, object[key].toInt());
}

QStringList readGenres(const QString &text)
{
    QStringList genres;
    for (const QString &genre : text.split(u',', Qt::SkipEmptyParts)) {
        genres.append(genre.trimmed());
    }
    return genres;
}

QStringList readAddresses(const QJsonValue &value)
{
    QStringList addresses;
    for (const auto &entry : value.isArray() ? value.toArray() : QJsonArray{value}) {
        const QUrl url(entry.toString(), QUrl::StrictMode);
        const bool web = url.scheme() == u"http" || url.scheme() == u"https";
        if (!url.isValid() || !web || url.host().isEmpty()) {
            return {};
        }
        addresses.append(url.toString(QUrl::FullyEncoded));
    }
    return addresses;
}

Station readStation(const QJsonObject &object)
{
    Station station;
    station.id = object[QLatin1StringView("id")].toInt();
    station.name = cleanText(object[QLatin1StringView("name")]);
    station.genres = readGenres(cleanText(object[QLatin1StringView("genre")]));
    station.mediaType = cleanText(object[QLatin1StringView("mt")]);
    if (station.mediaType.isEmpty()) {
        station.mediaType = QStringLiteral("audio/mpeg");
    }
    station.bitrate = wholeNumber(object, QLatin1StringView("br"));
    station.listeners = wholeNumber(object, QLatin1StringView("lc"));
    station.currentTrack = cleanText(object[QLatin1StringView("ct")]);
    station.logo = cleanText(object[QLatin1StringView("logo")]);
    station.streams = readAddresses(object[QLatin1StringView("url")]);
    return station;
}

} // namespace

JsonCatalogue::JsonCatalogue(const QByteArray &json)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (document.isNull()) {
        refuse(QStringLiteral("not JSON: %1 at byte %2").arg(error.errorString()).arg(error.offset));
    }
    if (!document.isArray()) {
        refuse(QStringLiteral("not an array of stations"));
    }

    QSet<int> ids;
    int nextId = 1000001;
    for (const auto &value : document.array()) {
        Station station = readStation(value.toObject());
        const QString which = QStringLiteral("station %1").arg(stations_.size() + 1);
        if (station.name.isEmpty()) {
            refuse(which + QStringLiteral(" has no \"name\""));
        }
        if (station.streams.isEmpty()) {
            refuse(which + QStringLiteral(" has no \"url\", or one that is not an http or https address"));
        }
        if (!value.toObject().contains(QLatin1StringView("id"))) {
            station.id = nextId++;
        }
        if (station.id <= 0 || ids.contains(station.id)) {
            refuse(which + QStringLiteral(" has an \"id\" that is not positive or is used twice"));
        }
        ids.insert(station.id);
        stations_.push_back(std::move(station));
    }
    std::ranges::stable_sort(stations_, std::ranges::greater(), &Station::listeners);
}

} // namespace localradio

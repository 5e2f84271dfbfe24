#include "fuzz/targets.h"

#include "base/base64.h"
#include "base/displaytext.h"
#include "directory/keyed/stationdirectory.h"
#include "favourites/archive/keyedarchive.h"
#include "http/address.h"
#include "http/httpmessage.h"
#include "playback/privatestream.h"
#include "playback/stream/hls/hlsplaylist.h"
#include "playback/stream/hls/hlssplicer.h"
#include "playback/stream/hls/hlswindow.h"
#include "playback/stream/oggtitles.h"
#include "playback/stream/playlist.h"
#include "ui/drag/dragpayload.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <curl/curl.h>
#include <memory>
#include <optional>
#include <utility>

namespace {
/// Ends the process where the condition does not hold, so that the fuzzer keeps the input.
void require(bool holds, int line = __builtin_LINE())
{
    if (!holds) {
        std::fprintf(stderr, "SUMMARY: the condition fails in line %d\n", line);
        std::abort();
    }
}

/// Scheme, host and port as the network library takes them from an address; none where it refuses that.
std::optional<QByteArrayList> originOf(const QByteArray &address)
{
    const std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> url(curl_url(), curl_url_cleanup);
    if (curl_url_set(url.get(), CURLUPART_URL, address.constData(), CURLU_PATH_AS_IS) != CURLUE_OK) {
        return std::nullopt;
    }
    QByteArrayList parts;
    for (const CURLUPart part : {CURLUPART_SCHEME, CURLUPART_HOST, CURLUPART_PORT, CURLUPART_USER}) {
        char *text = nullptr;
        curl_url_get(url.get(), part, &text, CURLU_DEFAULT_PORT);
        parts.append(QByteArray(text).toLower());
        curl_free(text);
    }
    require(parts.takeLast().isEmpty());
    return parts;
}
} // namespace

/// What goes to an owner only goes nowhere else, by the network library's understanding of the address.
void fuzzHttpRedirect(const QByteArray &data)
{
    const qsizetype line = std::max(data.indexOf('\n'), qsizetype{0});
    HttpRequest request{.url = QUrl::fromEncoded(data.first(line)), .ownerHeaders = {{"Secret", "x"}}};
    request.owner = request.url;
    const HttpResponse response{.url = request.url,
                                .status = 302,
                                .headers = {{"Location", data.sliced(line).trimmed()},
                                            {"Content-Encoding", data.sliced(line).trimmed()}}};
    response.isReadable(true);
    const QUrl target = response.redirectTarget();
    if (!isHttpUrl(request.url) || !isHttpUrl(target)) {
        return;
    }
    const auto origin = originOf(requestAddress(target));
    const bool isLetInto = request.headersFor(target).contains(request.ownerHeaders.constFirst());
    require(!origin || !isLetInto || origin == originOf(requestAddress(request.url)));
}

void fuzzDirectoryAnswer(const QByteArray &data)
{
    StationDirectory directory({}, [] { return QString(); });
    int reloads = 0;
    QObject::connect(&directory, &StationDirectory::answered, [&reloads] { ++reloads; });
    directory.takeAnswer(FetchOutcome(data), StationDirectory::stationListModel);
    const StationList first = directory.radioData();
    require(reloads == 1);
    require(first.size() <= StationDirectory::maximumStations);
    require(first.isEmpty() || directory.answer().outcome == DirectoryAnswer::Outcome::Read);
    for (const StationEntry &station : first) {
        require(displayText(station.text(QLatin1StringView("name"))).size() <= maximumDisplayLength);
    }
    // Every answer is delivered twice.
    directory.takeAnswer(FetchOutcome(data), StationDirectory::stationListModel);
    require(directory.radioData().size() == first.size());
}

void fuzzFavouritesArchive(const QByteArray &data)
{
    const auto read = KeyedUnarchiver::unarchiveObjectWithData(data);
    if (!read) {
        return;
    }
    require(static_cast<std::size_t>(read->stations.size()) <= KeyedUnarchiver::maximumStations);
    const QByteArray written = KeyedArchiver::archivedDataWithRootObject(read->stations);
    require(!written.isNull());
    const auto again = KeyedUnarchiver::unarchiveObjectWithData(written);
    require(again.has_value() && again->stations.size() == read->stations.size());
    // What was written is all that there was. Its bytes may differ once more: texts have two forms.
    require(again->whole);
}

/// However the bytes are cut, the titles are the same, each of a place that has been read.
void fuzzOggTitles(const QByteArray &data)
{
    const auto titlesOf = [&data](qsizetype piece) {
        QList<std::pair<quint64, QByteArray>> titles;
        OggTitles reader;
        for (qsizetype at = 0; at < data.size(); at += piece) {
            reader.read(QByteArrayView(data).sliced(at, std::min(piece, data.size() - at)),
                        [&](quint64 position, const QByteArray &title) {
                            require(position < static_cast<quint64>(at + piece));
                            require(title.size() <= OggTitles::maximumComments);
                            titles.append({position, title});
                        });
        }
        return titles;
    };
    constexpr qsizetype oddPiece = 7;
    const auto whole = titlesOf(std::max(data.size(), qsizetype{1}));
    require(titlesOf(1) == whole && titlesOf(oddPiece) == whole);
    require(whole.isEmpty() || data.startsWith("OggS"));
}

void fuzzPlaylist(const QByteArray &data)
{
    Playlist::isSegmented(data);
    Playlist::kindOf(QByteArrayView(data).first(std::min(data.size(), Playlist::headBytes)));
    const QUrl base(QStringLiteral("http://radio.example/listen/list.m3u"));
    const QList<QUrl> entries = Playlist::entries(data, base);
    require(entries.size() <= Playlist::maximumEntries);
    require(std::all_of(entries.cbegin(), entries.cend(), isHttpUrl));
}

void fuzzHlsPlaylist(const QByteArray &data)
{
    const auto playlist =
        HlsPlaylist::read(data, QUrl(QStringLiteral("http://radio.example/listen/list.m3u8")));
    require(playlist.variants.size() <= HlsPlaylist::maximumVariants);
    require(playlist.segments.size() <= HlsPlaylist::maximumSegments);
    for (const HlsVariant &variant : playlist.variants) {
        require(isHttpUrl(variant.url) && variant.bandwidth >= 0);
    }
    HlsWindow window;
    window.update(playlist);
    qsizetype passed = 0;
    for (const HlsSegment *segment = window.next(); segment != nullptr; segment = window.next()) {
        require(isHttpUrl(segment->url) && (!segment->header || isHttpUrl(segment->header->url)));
        require(segment->duration <= HlsPlaylist::longestDuration);
        window.advance();
        ++passed;
    }
    require(passed <= playlist.segments.size());
}

/// What comes of segments does not depend on the pieces in which they come.
void fuzzHlsSegments(const QByteArray &data)
{
    static const QByteArray mark("|SEGMENT|");
    std::array<QByteArray, 2> streams;
    for (std::size_t index = 0; index < streams.size(); ++index) {
        HlsSplicer splicer;
        for (qsizetype at = 0; at < data.size();) {
            const qsizetype found = data.indexOf(mark, at);
            const qsizetype end = found < 0 ? data.size() : found;
            splicer.begin();
            const qsizetype pieceSize = index == 0 ? std::max<qsizetype>(end - at, 1) : 5;
            for (; at < end; at += pieceSize) {
                streams.at(index) += splicer.take(data.mid(at, std::min(pieceSize, end - at)));
            }
            at = end + mark.size();
        }
    }
    require(streams.front() == streams.back());
}

void fuzzStationAddress(const QByteArray &data)
{
    const QStringList lines = QString::fromUtf8(data).split(u'\n');
    RadioModel station;
    station.setRadioscheme(lines.value(0));
    station.setUrl(lines.value(1));
    station.setPort(lines.value(2));
    station.setMountpoint(lines.value(3));
    station.setUsername(lines.value(4));
    station.setPassword(lines.value(5));

    const QUrl url = privateStreamUrl(station);
    require(!url.isValid() || url.userInfo().isEmpty());
    for (const auto &[name, value] : privateStreamHeaders(station, lines.value(6))) {
        require(!value.contains('\r') && !value.contains('\n'));
    }
    const QByteArray escaped = percentEscaped(lines.value(1));
    require(std::all_of(escaped.cbegin(), escaped.cend(),
                        [](char letter) { return letter > ' ' && letter < 127; }));
    require(QByteArray::fromPercentEncoding(escaped) == lines.value(1).toUtf8());
    const auto decoded = Base64::decode(Base64::encode(data));
    require(data.isEmpty() || (decoded && *decoded == data));
    Base64::decode(lines.value(1));
}

void fuzzDisplayText(const QByteArray &data)
{
    // Both as text and as any units whatever, halves of pairs included.
    const QString units(reinterpret_cast<const QChar *>(data.constData()), data.size() / 2);
    for (const QString &text : {QString::fromUtf8(data), units}) {
        const QString shown = displayText(text);
        require(shown.size() <= maximumDisplayLength);
        require(displayText(shown) == shown);
        require(std::none_of(shown.cbegin(), shown.cend(), [](QChar letter) {
            const char16_t unit = letter.unicode();
            return unit < u' ' || (unit >= 0x7F && unit < 0xA0) || (unit >= 0x202A && unit <= 0x202E) ||
                   (unit >= 0x2066 && unit <= 0x2069) || unit == 0x2028 || unit == 0x2029;
        }));
    }
}

void fuzzDragPayload(const QByteArray &data)
{
    DragPayload::station(data);
    DragPayload::tiles(data);
    // The payload of nothing begins with the token and the type, as every one of this process does.
    constexpr qsizetype stationEnd = 4 + 4 + 8 + 1 + 8 + 1;
    const QByteArray ofStation = DragPayload::ofStation(StationEntry());
    if (const auto station =
            DragPayload::station(ofStation.chopped(std::min(stationEnd, ofStation.size())) + data)) {
        require(DragPayload::station(DragPayload::ofStation(*station)).has_value());
    }
    if (const auto tiles = DragPayload::tiles(DragPayload::ofTiles({}) + data)) {
        require(DragPayload::tiles(DragPayload::ofTiles(*tiles)) == tiles);
    }
}

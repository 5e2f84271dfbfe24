#include "localradio/faults/hlsplaylist.h"

#include "localradio/http/parameters.h"
#include "localradio/sound/segments.h"

#include <QCryptographicHash>
#include <QtEndian>

#include <algorithm>
#include <array>

namespace localradio {

namespace {

constexpr QLatin1StringView mediaPrefix("media-");
constexpr QLatin1StringView segmentPrefix("segment-");
constexpr QLatin1StringView keyPrefix("key-");

/// Segments between two places where numbers are skipped.
constexpr qint64 skipBlock = 10;

struct Variant
{
    const char *name;
    int bandwidth;
    const char *attributes;
};

constexpr std::array allVariants{
    Variant{"low", 40'000, R"(,CODECS="mp4a.40.2")"},
    Variant{"mid", 75'000, R"(,CODECS="mp4a.40.2")"},
    Variant{"high", 140'000, R"(,CODECS="mp4a.40.2")"},
    Variant{"video", 900'000, R"(,CODECS="avc1.42c00a,mp4a.40.2",RESOLUTION=64x36)"},
};

/// A query of the parameters of `target` whose names `renamed` gives: with the name that it returns, or not
/// at all where that is empty.
template <typename Renamed>
QByteArray queryOf(const RequestTarget &target, Renamed renamed)
{
    QByteArray query;
    for (const auto &[name, value] : target.parameters()) {
        const QString passed = renamed(name);
        if (!passed.isEmpty()) {
            query += (query.isEmpty() ? '?' : '&') + passed.toUtf8().toPercentEncoding() + '=' +
                     value.toUtf8().toPercentEncoding();
        }
    }
    return query;
}

/// What a media playlist is told by the query of its master.
QString passedToMedia(const QString &name)
{
    static const QStringList passed{
        QStringLiteral("form"),          QStringLiteral("list"),      QStringLiteral("window"),
        QStringLiteral("key"),           QStringLiteral("address"),   QStringLiteral("ranges"),
        QStringLiteral("discontinuity"), QStringLiteral("skip"),      QStringLiteral("stall"),
        QStringLiteral("other-segment"), QStringLiteral("other-key"), QStringLiteral("other-map"),
    };
    if (name.startsWith(mediaPrefix)) {
        return name.sliced(mediaPrefix.size());
    }
    return passed.contains(name) || name.startsWith(segmentPrefix) || name.startsWith(keyPrefix) ? name
                                                                                                 : QString();
}

QString passedToSegment(const QString &name)
{
    if (name.startsWith(segmentPrefix)) {
        return name.sliced(segmentPrefix.size());
    }
    return name == u"key" || name == u"discontinuity" ? name : QString();
}

QString passedToKey(const QString &name)
{
    return name.startsWith(keyPrefix) ? name.sliced(keyPrefix.size()) : QString();
}

/// The address of `below`, a path below the root; `other` in its place if that is set.
QByteArray addressOf(const HlsOrder &order, const HlsPlace &place, const QByteArray &below,
                     const QByteArray &other)
{
    if (!other.isEmpty()) {
        return other;
    }
    switch (order.address) {
    case HlsOrder::Address::Relative:
        break;
    case HlsOrder::Address::Root:
        return place.root + below;
    case HlsOrder::Address::Absolute:
        return place.origin + place.root + below;
    case HlsOrder::Address::Port:
        return place.otherOrigin + place.root + below;
    }
    return below;
}

QByteArray keyLine(const HlsOrder &order, const HlsPlace &place, qint64 number)
{
    const QByteArray key =
        "key/" + QByteArray::number(order.keyOf(number)) + queryOf(place.target, passedToKey);
    QByteArray line = "#EXT-X-KEY:METHOD=AES-128,URI=\"" + addressOf(order, place, key, order.otherKey) + '"';
    if (order.key != HlsOrder::Key::Sequence) {
        line += ",IV=0x" + hlsVector(order, number).toHex();
    }
    return line + '\n';
}

} // namespace

HlsOrder HlsOrder::read(const RequestTarget &target)
{
    static constexpr std::array forms{QLatin1StringView("ts"), QLatin1StringView("fmp4"),
                                      QLatin1StringView("aac")};
    static constexpr std::array lists{QLatin1StringView("live"), QLatin1StringView("event"),
                                      QLatin1StringView("vod")};
    static constexpr std::array keys{QLatin1StringView("none"), QLatin1StringView("aes"),
                                     QLatin1StringView("aes-iv"), QLatin1StringView("rotate")};
    static constexpr std::array addresses{QLatin1StringView("relative"), QLatin1StringView("root"),
                                          QLatin1StringView("absolute"), QLatin1StringView("port")};
    HlsOrder order;
    order.form = static_cast<Form>(choice(target, QLatin1StringView("form"), forms).value_or(0));
    order.list = static_cast<List>(choice(target, QLatin1StringView("list"), lists).value_or(0));
    order.window = wholeNumber(target, QLatin1StringView("window"), 1, 100'000).value_or(order.window);
    order.key = static_cast<Key>(choice(target, QLatin1StringView("key"), keys).value_or(0));
    order.address = static_cast<Address>(choice(target, QLatin1StringView("address"), addresses).value_or(0));
    order.ranges = flag(target, QLatin1StringView("ranges"));
    order.discontinuity = flag(target, QLatin1StringView("discontinuity"));
    order.itself = flag(target, QLatin1StringView("itself"));
    order.endless = flag(target, QLatin1StringView("endless"));
    order.renditions = flag(target, QLatin1StringView("renditions"));
    order.skip = wholeNumber(target, QLatin1StringView("skip"), 1, 1'000'000).value_or(0);
    order.stall = positiveNumber(target, QLatin1StringView("stall"), 3600);
    // Not in the order of their rates: so whoever takes the first or the last gets another than the best.
    order.variants = headerText(target, QLatin1StringView("variants")).value_or("low,high,mid").split(',');
    order.otherVariant = headerText(target, QLatin1StringView("other-variant")).value_or(QByteArray());
    order.otherSegment = headerText(target, QLatin1StringView("other-segment")).value_or(QByteArray());
    order.otherKey = headerText(target, QLatin1StringView("other-key")).value_or(QByteArray());
    order.otherMap = headerText(target, QLatin1StringView("other-map")).value_or(QByteArray());
    for (const QByteArray &name : order.variants) {
        if (std::ranges::find(allVariants, name, &Variant::name) == allVariants.end()) {
            throw BadParameter("variants must be of: low, mid, high, video");
        }
    }
    return order;
}

QByteArray HlsOrder::suffix() const
{
    return std::array{".ts", ".m4s", ".aac"}[static_cast<std::size_t>(form)];
}

QByteArray HlsOrder::mediaType() const
{
    return std::array{"video/mp2t", "audio/mp4", "audio/aac"}[static_cast<std::size_t>(form)];
}

QByteArray masterPlaylist(const HlsOrder &order, const HlsPlace &place)
{
    QByteArray text = "#EXTM3U\n#EXT-X-VERSION:7\n";
    for (const QByteArray &name : order.variants) {
        const Variant &variant = *std::ranges::find(allVariants, name, &Variant::name);
        const QByteArray query = queryOf(place.target, passedToMedia);
        QByteArray address = addressOf(order, place, name + ".m3u8" + query, order.otherVariant);
        if (order.itself) {
            address = place.rawTarget;
        }
        QByteArray attributes = "BANDWIDTH=" + QByteArray::number(variant.bandwidth) + variant.attributes;
        if (order.renditions) {
            const QByteArray sound = name == "video" ? QByteArray("high") : name;
            text += "#EXT-X-MEDIA:TYPE=AUDIO,GROUP-ID=\"sound-" + name + "\",NAME=\"" + name +
                    "\",DEFAULT=YES,AUTOSELECT=YES,URI=\"" +
                    addressOf(order, place, sound + ".m3u8" + query, order.otherVariant) + "\"\n";
            attributes += ",AUDIO=\"sound-" + name + '"';
        }
        text += "#EXT-X-STREAM-INF:" + attributes + '\n' + address + '\n';
    }
    return text;
}

QByteArray mediaPlaylist(const HlsOrder &order, const HlsPlace &place, const QByteArray &variant,
                         qint64 newest, const std::function<qint64(qint64 number)> &sizeOf)
{
    qint64 last = newest;
    qint64 first = std::max(qint64{0}, last - order.window + 1);
    if (order.list == HlsOrder::List::Vod) {
        first = 0;
        last = order.window - 1;
    } else if (order.list == HlsOrder::List::Event) {
        first = std::max(qint64{0}, hlsFirstNewest - order.window + 1);
    } else if (order.skip > 0) {
        const qint64 skipped = order.skip * (last / skipBlock);
        first = std::max(first, last / skipBlock * skipBlock) + skipped;
        last += skipped;
    }

    QByteArray text = "#EXTM3U\n#EXT-X-VERSION:7\n#EXT-X-TARGETDURATION:2\n#EXT-X-MEDIA-SEQUENCE:" +
                      QByteArray::number(first) + '\n';
    if (order.discontinuity) {
        text +=
            "#EXT-X-DISCONTINUITY-SEQUENCE:" + QByteArray::number((first + turnSegments - 1) / turnSegments) +
            '\n';
    }
    if (order.list != HlsOrder::List::Live) {
        text +=
            order.list == HlsOrder::List::Vod ? "#EXT-X-PLAYLIST-TYPE:VOD\n" : "#EXT-X-PLAYLIST-TYPE:EVENT\n";
    }
    if (order.form == HlsOrder::Form::Fragments) {
        text += "#EXT-X-MAP:URI=\"" + addressOf(order, place, variant + "/init.mp4", order.otherMap) + "\"\n";
    }
    const QByteArray query = queryOf(place.target, passedToSegment);
    for (qint64 number = first; number <= last; ++number) {
        if (order.discontinuity && number % turnSegments == 0) {
            text += "#EXT-X-DISCONTINUITY\n";
        }
        if (order.key != HlsOrder::Key::None &&
            (number == first || order.keyOf(number) != order.keyOf(number - 1))) {
            text += keyLine(order, place, number);
        }
        text += "#EXTINF:" + QByteArray::number(segmentSeconds, 'f', 3) + ",\n";
        QByteArray file = variant + '/' + QByteArray::number(number);
        if (order.ranges) {
            const qint64 turn = number / turnSegments;
            qint64 offset = 0;
            for (qint64 before = turn * turnSegments; before < number; ++before) {
                offset += sizeOf(before);
            }
            text += "#EXT-X-BYTERANGE:" + QByteArray::number(sizeOf(number)) + '@' +
                    QByteArray::number(offset) + '\n';
            file = variant + "/turn-" + QByteArray::number(turn);
        }
        text += (order.itself ? place.rawTarget
                              : addressOf(order, place, file + order.suffix() + query, order.otherSegment)) +
                '\n';
    }
    return order.list == HlsOrder::List::Vod ? text + "#EXT-X-ENDLIST\n" : text;
}

QByteArray hlsKey(qint64 number)
{
    return QCryptographicHash::hash("key " + QByteArray::number(number), QCryptographicHash::Md5);
}

QByteArray hlsVector(const HlsOrder &order, qint64 segment)
{
    if (order.key != HlsOrder::Key::Sequence) {
        return QCryptographicHash::hash("vector " + QByteArray::number(order.keyOf(segment)),
                                        QCryptographicHash::Md5);
    }
    QByteArray number(8, '\0');
    qToBigEndian(segment, number.data());
    return QByteArray(8, '\0') + number;
}

} // namespace localradio

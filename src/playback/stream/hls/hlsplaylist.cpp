#include "playback/stream/hls/hlsplaylist.h"

#include "base/leadinginteger.h"
#include "http/address.h"

#include <QHash>
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

using namespace std::chrono_literals;

namespace {
constexpr qsizetype vectorBytes = 16;

using Attributes = QHash<QByteArray, QByteArray>;

/// "KEY=VALUE,KEY="VALUE, in quotes"" (RFC 8216, 4.2), without the quotes.
Attributes attributesOf(QByteArrayView text)
{
    Attributes attributes;
    while (!text.isEmpty()) {
        const qsizetype equals = text.indexOf('=');
        if (equals < 0) {
            break;
        }
        const QByteArray name = text.first(equals).trimmed().toByteArray();
        text = text.sliced(equals + 1);
        const bool isQuoted = text.startsWith('"');
        const qsizetype quote = isQuoted ? text.indexOf('"', 1) : -1;
        const qsizetype comma = text.indexOf(',', std::max<qsizetype>(quote, 0));
        const QByteArrayView value = comma < 0 ? text : text.first(comma);
        attributes.insert(name, quote > 0 ? text.sliced(1, quote - 1).toByteArray()
                                          : value.trimmed().toByteArray());
        text = comma < 0 ? QByteArrayView() : text.sliced(comma + 1);
    }
    return attributes;
}

qint64 numberIn(QByteArrayView text)
{
    return std::max<qint64>(leadingInteger(QString::fromLatin1(text)), 0);
}

/// "LENGTH" or "LENGTH@FROM"; without the latter it is what follows `previous`.
HlsRange rangeIn(const QByteArray &text, const HlsRange &previous)
{
    const qsizetype at = text.indexOf('@');
    const quint64 from = at >= 0 ? static_cast<quint64>(numberIn(QByteArrayView(text).sliced(at + 1)))
                                 : previous.from + previous.length.value_or(0);
    return {.from = from, .length = static_cast<quint64>(numberIn(text))};
}

std::chrono::milliseconds durationIn(const QByteArray &text)
{
    bool isNumber = false;
    const double seconds = text.trimmed().toDouble(&isNumber);
    constexpr double most = std::chrono::duration<double>(HlsPlaylist::longestDuration).count();
    return isNumber && seconds > 0 ? std::chrono::milliseconds(std::llround(std::min(seconds, most) * 1000.0))
                                   : 0ms;
}

/// "0x" and up to 32 hexadecimal digits; empty where it is something else.
QByteArray vectorIn(const QByteArray &text)
{
    const QByteArray digits = text.mid(2);
    const bool isHexadecimal = !digits.isEmpty() && digits.size() <= 2 * vectorBytes &&
                               std::all_of(digits.cbegin(), digits.cend(), [](char digit) {
                                   return (digit >= '0' && digit <= '9') || (digit >= 'a' && digit <= 'f');
                               });
    return text.startsWith("0x") && isHexadecimal
               ? QByteArray::fromHex(digits.rightJustified(2 * vectorBytes, '0'))
               : QByteArray();
}

/// Whether one of the codecs (RFC 6381) is a sound's that we decode.
bool hasSound(const QByteArray &codecs)
{
    // AAC in all its profiles but USAC, which FFmpeg decodes from version 7.1 on only, and what MPEG-2 and
    // MP4 call by other names.
    static constexpr std::array<QByteArrayView, 9> beginnings{"mp4a", "mp3",  "ac-3", "ec-3", "opus",
                                                              "flac", "alac", "ac3",  "eac3"};
    const QList<QByteArray> names = codecs.toLower().split(',');
    return std::any_of(names.cbegin(), names.cend(), [](const QByteArray &name) {
        const QByteArray codec = name.trimmed();
        return codec != "mp4a.40.42" &&
               std::any_of(beginnings.begin(), beginnings.end(),
                           [&codec](QByteArrayView beginning) { return codec.startsWith(beginning); });
    });
}

bool hasPictures(const QByteArray &codecs)
{
    static constexpr std::array<QByteArrayView, 11> beginnings{"avc",  "hvc", "hev", "dvh",  "dva", "vp08",
                                                               "vp09", "vp8", "vp9", "av01", "mp4v"};
    const QList<QByteArray> names = codecs.toLower().split(',');
    return std::any_of(names.cbegin(), names.cend(), [](const QByteArray &name) {
        return std::any_of(
            beginnings.begin(), beginnings.end(),
            [codec = name.trimmed()](QByteArrayView beginning) { return codec.startsWith(beginning); });
    });
}

/// Reads one playlist, line by line.
class Reader
{
public:
    explicit Reader(const QUrl &base)
        : base_(base)
    {
    }

    void read(QByteArrayView line);
    HlsPlaylist finish();

private:
    /// A variant that may have its sound elsewhere.
    struct Offer
    {
        HlsVariant variant;
        QByteArray soundGroup;
        bool hasSound = true;
    };

    /// Where the sound of a group is.
    struct Sound
    {
        QUrl url;
        bool isDefault = false;
    };

    void readTag(const QByteArray &name, const QByteArray &value);
    void readOffer(const Attributes &attributes);
    void readSound(const Attributes &attributes);
    void readEncryption(const Attributes &attributes);
    void readHeader(const Attributes &attributes);
    void readAddress(const QUrl &url);
    void rankVariants();
    QUrl resolved(const QByteArray &address) const;

    const QUrl base_;
    HlsPlaylist playlist_;
    QList<Offer> offers_;
    QHash<QByteArray, Sound> sounds_;
    /// What the next address is a variant by; otherwise it is a segment.
    std::optional<Offer> offer_;
    /// What is known of the next segment.
    HlsSegment segment_;
    std::optional<QByteArray> range_;
    bool isMissing_ = false;
    HlsRange previousRange_;
    std::chrono::milliseconds longest_ = 0ms;
};

void Reader::read(QByteArrayView line)
{
    if (line.isEmpty()) {
        return;
    }
    if (!line.startsWith('#')) {
        readAddress(resolved(line.toByteArray()));
        return;
    }
    const qsizetype colon = line.indexOf(':');
    readTag(line.first(colon < 0 ? line.size() : colon).toByteArray(),
            colon < 0 ? QByteArray() : line.sliced(colon + 1).toByteArray());
}

void Reader::readTag(const QByteArray &name, const QByteArray &value)
{
    if (name == "#EXTINF") {
        const qsizetype comma = value.indexOf(',');
        segment_.duration = durationIn(comma < 0 ? value : value.first(comma));
        segment_.title = comma < 0 ? QByteArray() : value.sliced(comma + 1).trimmed();
        longest_ = std::max(longest_, segment_.duration);
    } else if (name == "#EXT-X-BYTERANGE") {
        range_ = value;
    } else if (name == "#EXT-X-GAP") {
        isMissing_ = true;
    } else if (name == "#EXT-X-KEY") {
        readEncryption(attributesOf(value));
    } else if (name == "#EXT-X-MAP") {
        readHeader(attributesOf(value));
    } else if (name == "#EXT-X-MEDIA-SEQUENCE") {
        segment_.number = static_cast<quint64>(numberIn(value));
    } else if (name == "#EXT-X-TARGETDURATION") {
        playlist_.targetDuration = durationIn(value);
    } else if (name == "#EXT-X-ENDLIST" || (name == "#EXT-X-PLAYLIST-TYPE" && value.trimmed() == "VOD")) {
        playlist_.isComplete = true;
    } else if (name == "#EXT-X-STREAM-INF") {
        readOffer(attributesOf(value));
    } else if (name == "#EXT-X-MEDIA") {
        readSound(attributesOf(value));
    }
}

void Reader::readOffer(const Attributes &attributes)
{
    const QByteArray codecs = attributes.value("CODECS");
    const qint64 bandwidth = numberIn(attributes.value("BANDWIDTH"));
    offer_ = Offer{.variant = {.url = {},
                               .bandwidth = static_cast<int>(
                                   std::min<qint64>(bandwidth, std::numeric_limits<int>::max())),
                               .hasPictures = attributes.contains("RESOLUTION") || hasPictures(codecs)},
                   .soundGroup = attributes.value("AUDIO"),
                   .hasSound = codecs.isEmpty() || hasSound(codecs)};
}

void Reader::readSound(const Attributes &attributes)
{
    const QUrl url = resolved(attributes.value("URI"));
    if (attributes.value("TYPE") != "AUDIO" || !attributes.contains("URI") || !isHttpUrl(url)) {
        return;
    }
    const QByteArray group = attributes.value("GROUP-ID");
    const bool isDefault = attributes.value("DEFAULT") == "YES";
    const auto known = sounds_.constFind(group);
    if (known != sounds_.cend() ? isDefault && !known->isDefault
                                : sounds_.size() < HlsPlaylist::maximumVariants) {
        sounds_.insert(group, {.url = url, .isDefault = isDefault});
    }
}

void Reader::readEncryption(const Attributes &attributes)
{
    const QByteArray method = attributes.value("METHOD");
    const QByteArray vector = attributes.value("IV");
    HlsEncryption encryption{.key = resolved(attributes.value("URI")), .vector = vectorIn(vector.toLower())};
    if (method == "NONE") {
        encryption = {};
    } else if (method != "AES-128" || attributes.value("KEYFORMAT", "identity") != "identity" ||
               !attributes.contains("URI") || !isHttpUrl(encryption.key) ||
               encryption.vector.isEmpty() != vector.isEmpty()) {
        encryption.method = HlsEncryption::Method::Unknown;
    } else {
        encryption.method = HlsEncryption::Method::Aes128;
    }
    segment_.encryption = encryption;
}

void Reader::readHeader(const Attributes &attributes)
{
    HlsHeader header{.url = resolved(attributes.value("URI")), .encryption = segment_.encryption};
    if (attributes.contains("BYTERANGE")) {
        header.range = rangeIn(attributes.value("BYTERANGE"), {});
    }
    if (header.encryption.method == HlsEncryption::Method::Aes128 && header.encryption.vector.isEmpty()) {
        // It has no number of its own.
        header.encryption.method = HlsEncryption::Method::Unknown;
    }
    segment_.header = header;
}

void Reader::readAddress(const QUrl &url)
{
    if (offer_) {
        offer_->variant.url = url;
        if (isHttpUrl(url) && offers_.size() < HlsPlaylist::maximumVariants) {
            offers_.append(*std::exchange(offer_, std::nullopt));
        }
        offer_.reset();
        return;
    }
    segment_.url = url;
    segment_.range = range_ ? rangeIn(*range_, previousRange_) : HlsRange();
    previousRange_ = segment_.range;
    const bool isReachable =
        !isMissing_ && isHttpUrl(url) && (!segment_.header || isHttpUrl(segment_.header->url));
    if (isReachable && segment_.number < std::numeric_limits<qint64>::max()) {
        playlist_.segments.append(segment_);
    }
    ++segment_.number;
    segment_.duration = 0ms;
    segment_.title.clear();
    range_.reset();
    isMissing_ = false;
}

HlsPlaylist Reader::finish()
{
    rankVariants();
    if (playlist_.targetDuration == 0ms) {
        playlist_.targetDuration = longest_;
    }
    playlist_.targetDuration =
        std::clamp<std::chrono::milliseconds>(playlist_.targetDuration, 1s, HlsPlaylist::longestDuration);
    QList<HlsSegment> &segments = playlist_.segments;
    const qsizetype count = std::min(segments.size(), HlsPlaylist::maximumSegments);
    segments = playlist_.isComplete ? segments.first(count) : segments.last(count);
    return playlist_;
}

void Reader::rankVariants()
{
    for (const Offer &offer : std::as_const(offers_)) {
        HlsVariant variant = offer.variant;
        if (const auto sound = sounds_.constFind(offer.soundGroup); sound != sounds_.cend()) {
            // The bandwidth still tells which of several is the better one.
            variant.url = sound->url;
            variant.hasPictures = false;
        }
        if (offer.hasSound) {
            playlist_.variants.append(variant);
        }
    }
    std::stable_sort(playlist_.variants.begin(), playlist_.variants.end(),
                     [](const HlsVariant &left, const HlsVariant &right) {
                         return std::pair(left.hasPictures, -left.bandwidth) <
                                std::pair(right.hasPictures, -right.bandwidth);
                     });
}

QUrl Reader::resolved(const QByteArray &address) const
{
    return base_.resolved(QUrl::fromEncoded(address));
}
} // namespace

HlsPlaylist HlsPlaylist::read(QByteArrayView text, const QUrl &base)
{
    Reader reader(base);
    while (!text.isEmpty()) {
        const auto *const end = std::find_if(
            text.begin(), text.end(), [](char character) { return character == '\n' || character == '\r'; });
        const qsizetype length = end - text.begin();
        reader.read(text.first(length).trimmed());
        text = text.sliced(std::min(length + 1, text.size()));
    }
    return reader.finish();
}

#include "playback/stream/hls/hlssplicer.h"

#include <algorithm>
#include <utility>

namespace {
/// A tag's head: "ID3", version, flags and, in seven bits of each of four bytes, the length of what follows.
constexpr qsizetype tagHeadBytes = 10;
constexpr unsigned hasFooter = 0x10;

quint64 tagBytes(const QByteArray &head)
{
    const auto byteAt = [&head](qsizetype index) { return static_cast<unsigned char>(head.at(index)); };
    quint64 length = 0;
    for (qsizetype index = 6; index < tagHeadBytes; ++index) {
        length = length << 7U | (byteAt(index) & 0x7FU);
    }
    return length + ((byteAt(5) & hasFooter) != 0 ? 2 * tagHeadBytes : tagHeadBytes);
}
} // namespace

void HlsSplicer::begin()
{
    kind_ = Kind::Unknown;
    head_.clear();
    toSkip_ = 0;
    packets_.begin();
    fragments_.begin();
}

QByteArray HlsSplicer::take(const QByteArray &bytes)
{
    const bool isBeginning = kind_ == Kind::Unknown;
    if (isBeginning) {
        head_ += bytes;
        if (skipTags()) {
            return {};
        }
        recognise();
    }
    QByteArray sound = isBeginning ? std::exchange(head_, {}) : bytes;
    switch (kind_) {
    case Kind::Packets:
        return packets_.take(sound);
    case Kind::Fragments:
        return fragments_.take(sound);
    case Kind::Unknown:
    case Kind::Other:
        break;
    }
    return sound;
}

/// Whether more has to come until it is clear what stands behind the tags.
bool HlsSplicer::skipTags()
{
    while (true) {
        const auto skipped = static_cast<qsizetype>(std::min(toSkip_, static_cast<quint64>(head_.size())));
        toSkip_ -= static_cast<quint64>(skipped);
        head_.remove(0, skipped);
        if (toSkip_ > 0 || head_.size() < tagHeadBytes) {
            return true;
        }
        if (!head_.startsWith("ID3")) {
            return false;
        }
        toSkip_ = tagBytes(head_);
    }
}

void HlsSplicer::recognise()
{
    if (head_.startsWith(TransportPackets::syncByte)) {
        kind_ = Kind::Packets;
    } else {
        kind_ = MovieFragments::isKindOf(head_) ? Kind::Fragments : Kind::Other;
    }
}

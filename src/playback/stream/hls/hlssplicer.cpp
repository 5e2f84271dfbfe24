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
    isBeginning_ = true;
    head_.clear();
    toSkip_ = 0;
}

QByteArray HlsSplicer::take(const QByteArray &bytes)
{
    if (!isBeginning_) {
        return bytes;
    }
    head_ += bytes;
    return skipTags() ? QByteArray() : std::exchange(head_, {});
}

/// Whether more has to come until it is clear what there is.
bool HlsSplicer::skipTags()
{
    while (true) {
        const auto skipped = static_cast<qsizetype>(std::min(toSkip_, static_cast<quint64>(head_.size())));
        toSkip_ -= static_cast<quint64>(skipped);
        head_.remove(0, skipped);
        if (toSkip_ > 0 || head_.isEmpty()) {
            return true;
        }
        if (!head_.startsWith(QByteArrayView("ID3").first(std::min<qsizetype>(head_.size(), 3)))) {
            isBeginning_ = false;
            return false;
        }
        if (head_.size() < tagHeadBytes) {
            return true;
        }
        toSkip_ = tagBytes(head_);
    }
}

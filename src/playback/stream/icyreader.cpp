#include "playback/stream/icyreader.h"

#include "http/httpmessage.h"

#include <algorithm>
#include <utility>

namespace {
/// A block is so many times as long as its first byte says.
constexpr qsizetype blockUnit = 16;

qint64 announcedInterval(const HttpResponse &response)
{
    bool isNumber = false;
    const qint64 interval = response.header("icy-metaint").trimmed().toLongLong(&isNumber);
    return isNumber && interval > 0 ? interval : 0;
}
} // namespace

IcyReader::IcyReader(const HttpResponse &response)
    : interval_(announcedInterval(response))
    , untilBlock_(interval_)
{
}

QByteArray IcyReader::take(const QByteArray &bytes, const TitleFound &titleFound)
{
    if (interval_ == 0) {
        return bytes;
    }
    QByteArray sound;
    sound.reserve(bytes.size());
    qsizetype at = 0;
    while (at < bytes.size()) {
        if (blockLength_ > 0) {
            const qsizetype missing = std::min(blockLength_ - block_.size(), bytes.size() - at);
            block_ += QByteArrayView(bytes).sliced(at, missing);
            at += missing;
            if (block_.size() == blockLength_) {
                blockLength_ = 0;
                if (const auto title = titleIn(std::exchange(block_, {}))) {
                    titleFound(sound.size(), *title);
                }
            }
        } else if (untilBlock_ == 0) {
            blockLength_ = static_cast<unsigned char>(bytes.at(at)) * blockUnit;
            ++at;
            untilBlock_ = interval_;
        } else {
            const qsizetype length = std::min<qint64>(untilBlock_, bytes.size() - at);
            sound += QByteArrayView(bytes).sliced(at, length);
            at += length;
            untilBlock_ -= length;
        }
    }
    return sound;
}

/// `StreamTitle='...';`, where the title itself may have quotes; without an end it is all that is there.
std::optional<QByteArray> IcyReader::titleIn(const QByteArray &block)
{
    static constexpr QByteArrayView key("StreamTitle='");
    // It is filled up with NULs.
    const QByteArray text(block.constData());
    const qsizetype start = text.indexOf(key);
    if (start < 0) {
        return std::nullopt;
    }
    const qsizetype from = start + key.size();
    const qsizetype end = text.indexOf("';", from);
    return text.mid(from, end < 0 ? -1 : end - from);
}

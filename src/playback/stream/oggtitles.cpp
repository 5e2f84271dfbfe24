#include "playback/stream/oggtitles.h"

#include <QtEndian>
#include <algorithm>
#include <numeric>
#include <optional>
#include <utility>

namespace {
constexpr QByteArrayView capturePattern("OggS");
// Where they stand in a page's header.
constexpr std::size_t versionAt = 4;
constexpr std::size_t flagsAt = 5;
constexpr std::size_t serialAt = 14;
constexpr std::size_t segmentCountAt = 26;
constexpr int firstPageFlag = 0x02;
/// A segment of this length is followed by more of its packet.
constexpr int fullSegment = 255;

/// A text behind its length, which is taken off `bytes`; none where less than that is left.
std::optional<QByteArrayView> takeText(QByteArrayView &bytes)
{
    constexpr qsizetype lengthSize = sizeof(quint32);
    if (bytes.size() < lengthSize) {
        return std::nullopt;
    }
    const qsizetype length = qFromLittleEndian<quint32>(bytes.data());
    if (length > bytes.size() - lengthSize) {
        return std::nullopt;
    }
    const QByteArrayView text = bytes.sliced(lengthSize, length);
    bytes = bytes.sliced(lengthSize + length);
    return text;
}

/// The value of `comment` is added to those before it if it has that name.
void addValue(QByteArray &values, QByteArrayView comment, QByteArrayView name)
{
    if (comment.size() > name.size() && comment.at(name.size()) == '=' &&
        comment.first(name.size()).compare(name, Qt::CaseInsensitive) == 0) {
        const QByteArray value = comment.sliced(name.size() + 1).toByteArray().trimmed();
        values += values.isEmpty() || value.isEmpty() ? value : ", " + value;
    }
}

/// Of the comments behind their prefix; of those that are cut, what stands before the cut.
QByteArray titleIn(QByteArrayView comments)
{
    QByteArray artist;
    QByteArray title;
    const bool hasVendor = takeText(comments).has_value();
    constexpr qsizetype countSize = sizeof(quint32);
    if (hasVendor && comments.size() >= countSize) {
        auto count = qFromLittleEndian<quint32>(comments.data());
        comments = comments.sliced(countSize);
        for (; count > 0; --count) {
            const auto comment = takeText(comments);
            if (!comment) {
                break;
            }
            addValue(artist, *comment, "ARTIST");
            addValue(title, *comment, "TITLE");
        }
    }
    return artist.isEmpty() || title.isEmpty() ? artist + title : artist + " - " + title;
}
} // namespace

struct OggTitles::Sound
{
    bool beginsComments(QByteArrayView packet) const;

    /// What its first packet begins with, and that of its comments.
    QByteArrayView head;
    QByteArrayView commentsHead;
    /// Where the comments begin in their packet.
    qsizetype commentsAt;

    static const std::array<Sound, 3> all;
};

// FLAC's comments are a block of metadata, behind its type and three bytes for its length.
const std::array<OggTitles::Sound, 3> OggTitles::Sound::all{
    {{"\x01vorbis", "\x03vorbis", 7}, {"OpusHead", "OpusTags", 8}, {"\x7f\x46LAC", "\x04", 4}}};

/// The highest bit of FLAC's type only says whether another block follows; no head has it.
bool OggTitles::Sound::beginsComments(QByteArrayView packet) const
{
    constexpr char typeBits = 0x7f;
    return packet.size() >= commentsAt && (packet.front() & typeBits) == commentsHead.front() &&
           packet.sliced(1).startsWith(commentsHead.sliced(1));
}

void OggTitles::read(QByteArrayView bytes, const TitleFound &titleFound)
{
    while (!bytes.isEmpty() && !isOff_) {
        const qsizetype taken = bodyLeft_ > 0 ? readBody(bytes) : readHeader(bytes);
        position_ += static_cast<quint64>(taken);
        bytes = bytes.sliced(taken);
        if (isPageRead()) {
            takePage(titleFound);
            headerLength_ = 0;
            isKept_ = false;
            body_ = {};
        }
    }
}

/// Gives how many of the bytes belong to the header, or stand before one.
qsizetype OggTitles::readHeader(QByteArrayView bytes)
{
    if (headerLength_ < capturePattern.size()) {
        if (bytes.front() == capturePattern.at(headerLength_)) {
            pagePosition_ = headerLength_ == 0 ? position_ : pagePosition_;
            header_.at(static_cast<std::size_t>(headerLength_++)) = bytes.front();
            return 1;
        }
        isOff_ = position_ < static_cast<quint64>(capturePattern.size());
        if (std::exchange(headerLength_, 0) > 0) {
            // It may begin another one.
            return 0;
        }
        const qsizetype next = bytes.indexOf(capturePattern.front());
        return next < 0 ? bytes.size() : next;
    }
    const qsizetype taken = std::min(headerEnd() - headerLength_, bytes.size());
    std::copy_n(bytes.begin(), taken, header_.begin() + headerLength_);
    headerLength_ += taken;
    if (headerLength_ < fixedHeader) {
        return taken;
    }
    if (header_.at(versionAt) != 0) {
        headerLength_ = 0;
    } else if (headerLength_ == headerEnd()) {
        const QByteArrayView lengths = segments();
        bodyLeft_ =
            std::accumulate(lengths.begin(), lengths.end(), qsizetype{0}, [](qsizetype sum, char length) {
                return sum + static_cast<unsigned char>(length);
            });
        isKept_ = isFirstPage() || watchOf(serial()) != watches_.end();
    }
    return taken;
}

qsizetype OggTitles::readBody(QByteArrayView bytes)
{
    const qsizetype taken = std::min(bodyLeft_, bytes.size());
    if (isKept_) {
        body_ += bytes.first(taken);
    }
    bodyLeft_ -= taken;
    return taken;
}

void OggTitles::takePage(const TitleFound &titleFound)
{
    if (!isKept_) {
        return;
    }
    if (isFirstPage()) {
        watch();
        return;
    }
    const auto watched = watchOf(serial());
    if (continuePacket(*watched)) {
        const QByteArrayView packet = watched->packet;
        const Sound &sound = *watched->sound;
        // One without a title still follows on one that had some.
        titleFound(watched->position,
                   sound.beginsComments(packet) ? titleIn(packet.sliced(sound.commentsAt)) : QByteArray());
        watches_.erase(watched);
    }
}

/// What begins with this page, if it is sound.
void OggTitles::watch()
{
    if (const auto before = watchOf(serial()); before != watches_.end()) {
        watches_.erase(before);
    }
    const auto sound = std::find_if(Sound::all.begin(), Sound::all.end(),
                                    [this](const Sound &each) { return body_.startsWith(each.head); });
    if (sound == Sound::all.end()) {
        return;
    }
    if (watches_.size() == maximumWatched) {
        watches_.erase(watches_.begin());
    }
    watches_.push_back({.serial = serial(), .position = pagePosition_, .sound = &*sound, .packet = {}});
}

/// Gives whether the packet is complete, or as much of it as is looked at.
bool OggTitles::continuePacket(Watched &watched) const
{
    qsizetype length = 0;
    bool isComplete = false;
    for (const char segment : segments()) {
        const int segmentLength = static_cast<unsigned char>(segment);
        length += segmentLength;
        isComplete = segmentLength < fullSegment;
        if (isComplete) {
            break;
        }
    }
    watched.packet += QByteArrayView(body_).first(std::min(length, maximumComments - watched.packet.size()));
    return isComplete || watched.packet.size() == maximumComments;
}

/// So far as its length is known.
qsizetype OggTitles::headerEnd() const
{
    return headerLength_ < fixedHeader ? fixedHeader
                                       : fixedHeader + static_cast<unsigned char>(header_.at(segmentCountAt));
}

QByteArrayView OggTitles::segments() const
{
    return QByteArrayView(header_.data(), headerEnd()).sliced(fixedHeader);
}

bool OggTitles::isFirstPage() const
{
    return (header_.at(flagsAt) & firstPageFlag) != 0;
}

quint32 OggTitles::serial() const
{
    return qFromLittleEndian<quint32>(&header_.at(serialAt));
}

OggTitles::Watches::iterator OggTitles::watchOf(quint32 serial)
{
    return std::find_if(watches_.begin(), watches_.end(),
                        [serial](const Watched &watched) { return watched.serial == serial; });
}

#include "playback/stream/hls/moviefragments.h"

#include <QtEndian>
#include <algorithm>
#include <array>
#include <functional>
#include <limits>
#include <utility>

namespace {
constexpr qsizetype boxHeadBytes = 8;
constexpr qsizetype longBoxHeadBytes = 16;
/// Headers and the lists of what a fragment has are not as long.
constexpr quint64 longestCollected = 1024ULL * 1024;
/// More than the sound of a fragment takes.
constexpr quint64 longestFilling = 1024ULL * 1024;
/// Version and flags, which many boxes begin with.
constexpr qsizetype fullHeadBytes = 4;

/// 0 beyond the end.
template <class Number>
Number numberAt(QByteArrayView bytes, qsizetype at)
{
    return at >= 0 && at + static_cast<qsizetype>(sizeof(Number)) <= bytes.size()
               ? qFromBigEndian<Number>(bytes.data() + at)
               : Number(0);
}

quint32 flagsOf(QByteArrayView body)
{
    return numberAt<quint32>(body, 0) & 0xFFFFFFU;
}

unsigned versionOf(QByteArrayView body)
{
    return body.isEmpty() ? 0U : static_cast<unsigned char>(body.front());
}

/// Calls `visit` with the type and the body of each box.
void forEachBox(QByteArrayView boxes, const std::function<void(QByteArrayView, QByteArrayView)> &visit)
{
    while (boxes.size() >= boxHeadBytes) {
        const qsizetype size = numberAt<quint32>(boxes, 0);
        if (size < boxHeadBytes || size > boxes.size()) {
            return;
        }
        visit(boxes.sliced(4, 4), boxes.sliced(boxHeadBytes, size - boxHeadBytes));
        boxes = boxes.sliced(size);
    }
}

/// The body of the first box at the end of a path; empty where there is none.
QByteArrayView bodyAt(QByteArrayView boxes, std::initializer_list<QByteArrayView> path)
{
    for (const QByteArrayView wanted : path) {
        QByteArrayView found;
        forEachBox(boxes, [&](QByteArrayView type, QByteArrayView body) {
            if (found.isEmpty() && type == wanted) {
                found = body;
            }
        });
        boxes = found;
    }
    return boxes;
}

/// Whether a track's media are sound (8.4.3).
bool isSound(QByteArrayView media)
{
    return numberAt<quint32>(bodyAt(media, {"hdlr"}), 2 * fullHeadBytes) == qFromBigEndian<quint32>("soun");
}

/// How long the samples of a run last (8.8.8), each `usual` where it does not say.
quint64 durationOf(QByteArrayView run, quint32 usual)
{
    constexpr quint32 hasOffset = 0x1;
    constexpr quint32 hasFirstFlags = 0x4;
    constexpr quint32 hasDurations = 0x100;
    constexpr std::array<quint32, 4> perSample{hasDurations, 0x200, 0x400, 0x800};
    const quint32 flags = flagsOf(run);
    const quint64 count = numberAt<quint32>(run, fullHeadBytes);
    if ((flags & hasDurations) == 0) {
        return count * usual;
    }
    const auto fields = std::count_if(perSample.begin(), perSample.end(),
                                      [flags](quint32 flag) { return (flags & flag) != 0; });
    qsizetype at =
        fullHeadBytes + 4 + ((flags & hasOffset) != 0 ? 4 : 0) + ((flags & hasFirstFlags) != 0 ? 4 : 0);
    quint64 duration = 0;
    for (quint64 sample = 0; sample < count && at < run.size(); ++sample) {
        duration += numberAt<quint32>(run, at);
        at += 4 * fields;
    }
    return duration;
}
} // namespace

bool MovieFragments::isKindOf(QByteArrayView head)
{
    static constexpr std::array<QByteArrayView, 8> types{"ftyp", "styp", "moov", "moof",
                                                         "sidx", "emsg", "prft", "free"};
    return head.size() >= boxHeadBytes &&
           std::find(types.begin(), types.end(), head.sliced(4, 4)) != types.end();
}

void MovieFragments::begin()
{
    if (use_ == Use::Pass && missing_ <= longestFilling) {
        filling_ = QByteArray(static_cast<qsizetype>(missing_), '\0');
    }
    waiting_.clear();
    use_ = Use::None;
    missing_ = 0;
}

QByteArray MovieFragments::take(const QByteArray &bytes)
{
    QByteArray passed = std::exchange(filling_, {});
    waiting_ += bytes;
    while (!waiting_.isEmpty()) {
        if (use_ == Use::None && !beginBox()) {
            break;
        }
        const auto here = static_cast<qsizetype>(std::min(missing_, static_cast<quint64>(waiting_.size())));
        if (use_ == Use::Collect && static_cast<quint64>(here) < missing_) {
            break;
        }
        QByteArray box = waiting_.first(here);
        waiting_.remove(0, here);
        missing_ -= static_cast<quint64>(here);
        if (use_ == Use::Collect) {
            if (box.sliced(4, 4) == "moof") {
                shiftFragment(box);
            } else {
                takeHeader(QByteArrayView(box).sliced(boxHeadBytes));
            }
        }
        if (use_ != Use::Drop) {
            passed += box;
        }
        if (missing_ == 0) {
            use_ = Use::None;
        }
    }
    return passed;
}

/// Whether enough has come to know what the box is.
bool MovieFragments::beginBox()
{
    if (waiting_.size() < boxHeadBytes) {
        return false;
    }
    missing_ = numberAt<quint32>(waiting_, 0);
    const bool isLong = missing_ == 1;
    if (isLong) {
        if (waiting_.size() < longBoxHeadBytes) {
            return false;
        }
        missing_ = numberAt<quint64>(waiting_, boxHeadBytes);
    }
    const QByteArray type = waiting_.sliced(4, 4);
    if (missing_ < static_cast<quint64>(isLong ? longBoxHeadBytes : boxHeadBytes)) {
        // To the end of the file, or nonsense.
        missing_ = std::numeric_limits<quint64>::max();
        use_ = type == "mdat" ? Use::Pass : Use::Drop;
    } else if (type == "moof" || type == "moov") {
        const bool isWanted = type == "moof" || !hasHeader_;
        use_ = isWanted && !isLong && missing_ <= longestCollected ? Use::Collect : Use::Drop;
    } else {
        use_ = type == "mdat" || (type == "ftyp" && !hasHeader_) ? Use::Pass : Use::Drop;
    }
    return true;
}

void MovieFragments::takeHeader(QByteArrayView boxes)
{
    hasHeader_ = true;
    forEachBox(boxes, [this](QByteArrayView type, QByteArrayView track) {
        const QByteArrayView media = type == "trak" ? bodyAt(track, {"mdia"}) : QByteArrayView();
        if (track_ == 0 && isSound(media)) {
            const QByteArrayView head = bodyAt(track, {"tkhd"});
            track_ = numberAt<quint32>(head, versionOf(head) == 1 ? 20 : 12);
            const QByteArrayView mediaHead = bodyAt(media, {"mdhd"});
            rate_ = numberAt<quint32>(mediaHead, versionOf(mediaHead) == 1 ? 20 : 12);
        }
    });
    forEachBox(bodyAt(boxes, {"mvex"}), [this](QByteArrayView type, QByteArrayView body) {
        if (type == "trex" && numberAt<quint32>(body, fullHeadBytes) == track_) {
            usualDuration_ = numberAt<quint32>(body, 12);
        }
    });
}

void MovieFragments::shiftFragment(QByteArray &box)
{
    const QByteArrayView boxes = QByteArrayView(box).sliced(boxHeadBytes);
    std::optional<std::pair<qsizetype, qsizetype>> sound;
    forEachBox(boxes, [&](QByteArrayView type, QByteArrayView body) {
        if (type == "traf" && numberAt<quint32>(bodyAt(body, {"tfhd"}), fullHeadBytes) == track_) {
            sound = {body.data() - box.constData(), body.size()};
        }
    });
    if (sound) {
        shiftTrack(box, sound->first, sound->second);
    }
}

/// Of the part of a fragment that stands at `from`.
void MovieFragments::shiftTrack(QByteArray &box, qsizetype from, qsizetype length)
{
    const QByteArrayView part = QByteArrayView(box).sliced(from, length);
    const QByteArrayView head = bodyAt(part, {"tfhd"});
    const QByteArrayView start = bodyAt(part, {"tfdt"});
    if (start.size() < fullHeadBytes + (versionOf(start) == 1 ? 8 : 4) || rate_ == 0) {
        return;
    }
    constexpr quint32 hasBase = 0x1;
    constexpr quint32 hasDescription = 0x2;
    constexpr quint32 hasDuration = 0x8;
    const quint32 flags = flagsOf(head);
    const qsizetype at = 8 + ((flags & hasBase) != 0 ? 8 : 0) + ((flags & hasDescription) != 0 ? 4 : 0);
    const quint32 usual = (flags & hasDuration) != 0 ? numberAt<quint32>(head, at) : usualDuration_;
    quint64 duration = 0;
    forEachBox(part, [&](QByteArrayView type, QByteArrayView body) {
        duration += type == "trun" ? durationOf(body, usual) : 0;
    });

    const bool isLong = versionOf(start) == 1;
    const qsizetype timeAt = start.data() - box.constData() + fullHeadBytes;
    const quint64 time =
        isLong ? numberAt<quint64>(start, fullHeadBytes) : numberAt<quint32>(start, fullHeadBytes);
    // Nothing real is close to the ends of the range.
    constexpr quint64 latest = 1ULL << 61U;
    if (time > latest || duration > latest) {
        return;
    }
    const qint64 shifted = static_cast<qint64>(time) + clock_.shiftFor(static_cast<qint64>(time), rate_, 0);
    clock_.pass(shifted + static_cast<qint64>(duration));
    if (isLong) {
        qToBigEndian(static_cast<quint64>(shifted), box.data() + timeAt);
    } else {
        qToBigEndian(static_cast<quint32>(shifted), box.data() + timeAt);
    }
}

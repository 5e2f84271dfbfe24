#include "playback/mpv/heardreport.h"

#include "playback/mpv/mpvnode.h"

#include <QUtf8StringView>
#include <QtMath>
#include <algorithm>
#include <utility>

namespace {
/// Bit rates come in steps of 8 kbit/s. The one of a stream that does not state it is estimated from its
/// first sounds, and is off by a few.
constexpr int bitrateStep = 8;
/// By how much the buffer has to leave the second that is told: one that hovers about a whole second is
/// told as that.
constexpr double bufferSlack = 0.5;
/// Beyond an hour of pause at the lowest of bit rates.
constexpr double longestBuffer = 1e6;

/// The latest value of a tag. FFmpeg hangs the tags of an Opus stream's next piece on those of the pieces
/// before, with a semicolon between.
QByteArray latest(const QByteArray &tag, const QByteArray &before)
{
    return !before.isEmpty() && tag.startsWith(before + ';') ? tag.mid(before.size() + 1) : tag;
}

/// Stations do not state how their titles are encoded.
QString decoded(const QByteArray &text)
{
    return QUtf8StringView(text).isValidUtf8() ? QString::fromUtf8(text) : QString::fromLatin1(text);
}

int inSteps(double kilobits)
{
    constexpr double highest = 100'000;
    return qRound(std::clamp(kilobits, 0.0, highest) / bitrateStep) * bitrateStep;
}
} // namespace

HeardReport::HeardReport(std::shared_ptr<HeardStream> heard)
    : heard_(std::move(heard))
{
}

HeardReport::~HeardReport()
{
    heard_->setInfo({});
}

void HeardReport::titleHeard(const QByteArray &title)
{
    if (toldTitle_ || !title.isEmpty()) {
        toldTitle_ = decoded(title);
        report();
    }
}

void HeardReport::serverChanged(int bitrate, bool isUnverified)
{
    announcedBitrate_ = inSteps(bitrate);
    isUnverified_ = isUnverified;
    report();
}

void HeardReport::metadataChanged(const mpv_node *metadata)
{
    const mpv_node tags = metadata != nullptr ? *metadata : mpv_node{};
    const QByteArray titleTag = textAt(tags, "title").toByteArray();
    const QByteArray artistTag = textAt(tags, "artist").toByteArray();
    const QString artist = decoded(latest(artistTag, artistTag_));
    const QString title = decoded(latest(titleTag, titleTag_));
    taggedTitle_ =
        artist.isEmpty() || title.isEmpty() ? artist + title : artist + QLatin1StringView(" - ") + title;
    titleTag_ = titleTag;
    artistTag_ = artistTag;
    report();
}

void HeardReport::trackChanged(const mpv_node *track)
{
    const mpv_node sound = track != nullptr ? *track : mpv_node{};
    const auto text = [&sound](const char *key) {
        const QByteArrayView value = textAt(sound, key);
        return QLatin1StringView(value.data(), value.size());
    };
    codec_ = codecName(text("codec"), text("codec-profile"));
    bitrate_ = inSteps(static_cast<double>(numberAt(sound, "demux-bitrate")) / 1000);
    report();
}

void HeardReport::cacheChanged(const mpv_node *state)
{
    if (state == nullptr) {
        buffered_.reset();
    } else {
        const double seconds = std::clamp(secondsAt(*state, "cache-duration"), 0.0, longestBuffer);
        if (!buffered_ || seconds < *buffered_ - bufferSlack || seconds >= *buffered_ + 1 + bufferSlack) {
            buffered_ = qFloor(seconds);
        }
    }
    report();
}

void HeardReport::report()
{
    heard_->setInfo(codec_.isEmpty() ? StreamInfo{}
                                     : StreamInfo{.title = toldTitle_.value_or(taggedTitle_),
                                                  .codec = codec_,
                                                  .bitrate = bitrate_ > 0 ? bitrate_ : announcedBitrate_,
                                                  .buffered = buffered_.value_or(0),
                                                  .isUnverified = isUnverified_});
}

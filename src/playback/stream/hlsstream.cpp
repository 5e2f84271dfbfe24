#include "playback/stream/hlsstream.h"

#include "playback/stream/attemptspacing.h"
#include "playback/stream/playlist.h"
#include "playback/stream/streamconnection.h"

#include <algorithm>
#include <chrono>
#include <utility>

using namespace std::chrono_literals;

namespace {
/// How many attempts at a playlist a variant is worth while there is another one to try, and how many
/// playlists without news a stream is that nobody has heard yet.
constexpr int attemptsPerVariant = 2;
constexpr int updatesBeforeSound = 4;
/// How many segments in a row may be missing then.
constexpr int skipsBeforeSound = 3;
/// After how many refusals a segment is passed over. Where there is no answer, the playlist is asked for in
/// between: nothing is passed over while the whole server is gone.
constexpr int refusalsOfSegment = 2;
constexpr int lossesUntilReload = 2;
constexpr int lossesOfSegment = 4;
/// No segment of sound is as long; one without an end is cut there.
constexpr quint64 longestSegmentBytes = 64ULL * 1024 * 1024;
constexpr qint64 longestPlaylistBytes = 256LL * 1024;
constexpr qint64 longestHeaderBytes = 1024LL * 1024;
} // namespace

HlsStream::HlsStream(const StreamAccess &access, QUrl address, StreamConnection &connection, QObject *parent)
    : StreamSource(parent)
    , access_(access)
    , address_(std::move(address))
    , firstText_(connection.take())
    , firstBase_(connection.response().url)
    , isFirstUnverified_(connection.isUnverified())
{
    pause_.setSingleShot(true);
    connect(&pause_, &QTimer::timeout, this, &HlsStream::proceed);
    sinceReload_.start();
}

void HlsStream::start()
{
    if (isFirstUnverified_) {
        setFacts({.bitrate = 0, .isUnverified = true});
    }
    takePlaylist(std::exchange(firstText_, {}), firstBase_, true);
    proceed();
}

void HlsStream::moreWanted()
{
    if (fetch_) {
        fetch_->rest(false);
    }
    proceed();
}

/// Does what is to be done next, if nothing is being done.
void HlsStream::proceed()
{
    if (fetch_ || pause_.isActive() || isOver_ || !hasRoom()) {
        return;
    }
    if (isReloadDue_) {
        fetchPlaylist();
    } else if (const HlsSegment *segment = window_.next()) {
        deliver(*segment);
    } else if (window_.isComplete()) {
        isOver_ = true;
        finish();
    } else {
        isReloadDue_ = true;
        wait(window_.reloadTime() - std::chrono::milliseconds(sinceReload_.elapsed()));
    }
}

void HlsStream::wait(std::chrono::milliseconds time)
{
    pause_.start(std::max(time, 0ms));
}

/// Each attempt begins a while after the one before.
void HlsStream::waitAfter(int failures)
{
    wait(AttemptSpacing::waitFor(failures - 1, sinceFetch_));
}

/// What the segment needs goes before it.
void HlsStream::deliver(const HlsSegment &segment)
{
    const bool isHeaderDue = segment.header && segment.header != header_;
    const HlsEncryption &encryption = isHeaderDue ? segment.header->encryption : segment.encryption;
    if (!canDecrypt(encryption)) {
        if (isSettled()) {
            skipSegment();
        } else {
            giveVariantUp();
        }
    } else if (encryption.method != HlsEncryption::Method::None && (!key_ || key_->url != encryption.key)) {
        fetchKey(encryption.key);
    } else if (isHeaderDue) {
        fetchHeader(*segment.header);
    } else {
        fetchSegment(segment);
    }
}

void HlsStream::takePlaylist(const QByteArray &text, const QUrl &base, bool isTop)
{
    if (!Playlist::isSegmented(text)) {
        playlistFailed();
        return;
    }
    const HlsPlaylist playlist = HlsPlaylist::read(text, base);
    isReloadDue_ = false;
    isTopWanted_ = false;
    if (isTop && !playlist.variants.isEmpty()) {
        variants_ = playlist.variants;
        // Where one fails for long, another one may go on.
        const qsizetype onwards = isSettled() ? playlistFailures_ / attemptsPerVariant : 0;
        useVariant((variant_ + onwards) % variants_.size());
        return;
    }
    if (!playlist.variants.isEmpty() || (playlist.segments.isEmpty() && playlist.isComplete)) {
        playlistFailed();
        return;
    }
    playlistFailures_ = 0;
    playlistAddress_ = base;
    window_.update(playlist);
    const HlsSegment *next = window_.next();
    if (part_ && (next == nullptr || next->number != part_->number)) {
        part_.reset();
        segmentFailures_ = 0;
    }
    if (window_.updatesWithoutNews() >= updatesBeforeSound && !isSettled()) {
        giveVariantUp();
    }
}

void HlsStream::fetchPlaylist()
{
    sinceReload_.start();
    HlsFetch &fetch =
        open(isTopWanted_ ? address_ : playlistAddress_, {}, HlsFetch::Pace::AtOnce, longestPlaylistBytes);
    connect(&fetch, &HlsFetch::ended, this, &HlsStream::playlistEnded);
}

void HlsStream::playlistEnded(HlsFetch::End end)
{
    const auto fetch = std::exchange(fetch_, nullptr);
    if (end == HlsFetch::End::Complete) {
        learn(*fetch);
        takePlaylist(fetch->take(), fetch->response().url, isTopWanted_);
    } else {
        playlistFailed();
    }
    proceed();
}

/// Where the station's address has led before may be good for once only: it is asked again in turn.
void HlsStream::playlistFailed()
{
    ++playlistFailures_;
    if (!isSettled() && playlistFailures_ >= attemptsPerVariant) {
        giveVariantUp();
        return;
    }
    isReloadDue_ = true;
    isTopWanted_ = !isTopWanted_;
    waitAfter(playlistFailures_);
}

void HlsStream::useVariant(qsizetype index)
{
    variant_ = index;
    const HlsVariant &variant = variants_.at(index);
    constexpr int perKilobit = 1000;
    const int bitrate = variant.hasPictures ? 0 : variant.bandwidth / perKilobit;
    if (bitrate != facts().bitrate) {
        setFacts({.bitrate = bitrate, .isUnverified = facts().isUnverified});
    }
    playlistAddress_ = variant.url;
    isReloadDue_ = true;
}

/// Before the stream is heard the next best variant is tried, unless sound of this one has been sent.
void HlsStream::giveVariantUp()
{
    if (variant_ + 1 >= variants_.size() || bytesSent() > 0) {
        isOver_ = true;
        finish();
        return;
    }
    window_ = {};
    part_.reset();
    header_.reset();
    playlistFailures_ = 0;
    segmentFailures_ = 0;
    skipped_ = 0;
    isTopWanted_ = false;
    useVariant(variant_ + 1);
    wait(0ms);
}

void HlsStream::fetchKey(const QUrl &url)
{
    HlsFetch &fetch = open(url, {}, HlsFetch::Pace::AtOnce, HlsCipher::keyBytes);
    connect(&fetch, &HlsFetch::ended, this, [this, url](HlsFetch::End end) {
        const auto ended = std::exchange(fetch_, nullptr);
        const QByteArray bytes = ended->take();
        if (end == HlsFetch::End::Complete && bytes.size() == HlsCipher::keyBytes) {
            learn(*ended);
            key_ = {.url = url, .bytes = bytes};
        } else {
            segmentFailed(end);
        }
        proceed();
    });
}

void HlsStream::fetchHeader(const HlsHeader &header)
{
    HlsFetch &fetch = open(header.url, header.range, HlsFetch::Pace::AtOnce, longestHeaderBytes);
    connect(&fetch, &HlsFetch::ended, this, [this, header](HlsFetch::End end) {
        const auto ended = std::exchange(fetch_, nullptr);
        if (end == HlsFetch::End::Complete) {
            learn(*ended);
            QByteArray bytes = ended->take();
            if (const auto cipher = cipherFor(header.encryption, 0)) {
                bytes = cipher->decrypt(bytes) + cipher->finish();
            }
            splicer_.begin();
            send(splicer_.take(bytes));
            header_ = header;
        } else {
            segmentFailed(end);
        }
        proceed();
    });
}

/// From where it stands, if some of it has come already.
void HlsStream::fetchSegment(const HlsSegment &segment)
{
    if (!part_) {
        beginSegment(segment);
    }
    HlsRange rest = segment.range;
    rest.from += part_->received;
    if (rest.length) {
        *rest.length -= std::min(*rest.length, part_->received);
    }
    HlsFetch &fetch = open(segment.url, rest, HlsFetch::Pace::AsTaken, 0);
    connect(&fetch, &HlsFetch::arrived, this, &HlsStream::segmentArrived);
    connect(&fetch, &HlsFetch::ended, this, &HlsStream::segmentEnded);
}

void HlsStream::beginSegment(const HlsSegment &segment)
{
    part_ = Part{
        .number = segment.number, .received = 0, .cipher = cipherFor(segment.encryption, segment.number)};
    splicer_.begin();
}

void HlsStream::segmentArrived()
{
    if (part_->received == 0) {
        learn(*fetch_);
        skipped_ = 0;
        const QByteArray title = window_.next()->title;
        if (!title.isEmpty() && title != title_) {
            title_ = title;
            Q_EMIT titleRead(bytesSent(), title);
        }
    }
    segmentFailures_ = 0;
    const QByteArray bytes = fetch_->take();
    part_->received += static_cast<quint64>(bytes.size());
    send(splicer_.take(part_->cipher ? part_->cipher->decrypt(bytes) : bytes));
    if (part_->received >= longestSegmentBytes) {
        fetch_.reset();
        passSegment();
        proceed();
    } else {
        fetch_->rest(!hasRoom());
    }
}

void HlsStream::segmentEnded(HlsFetch::End end)
{
    fetch_.reset();
    if (end == HlsFetch::End::Complete) {
        passSegment();
    } else {
        segmentFailed(end);
    }
    proceed();
}

void HlsStream::segmentFailed(HlsFetch::End end)
{
    ++segmentFailures_;
    const bool isRefused = end != HlsFetch::End::Lost;
    if (segmentFailures_ >= (isRefused ? refusalsOfSegment : lossesOfSegment)) {
        skipSegment();
        return;
    }
    if (!isRefused && segmentFailures_ == lossesUntilReload) {
        isReloadDue_ = true;
    }
    waitAfter(segmentFailures_);
}

void HlsStream::passSegment()
{
    if (part_ && part_->cipher) {
        send(splicer_.take(part_->cipher->finish()));
    }
    part_.reset();
    segmentFailures_ = 0;
    window_.advance();
}

/// It may be gone because what is known of the stream is too old.
void HlsStream::skipSegment()
{
    passSegment();
    ++skipped_;
    if (!isSettled() && skipped_ >= skipsBeforeSound) {
        giveVariantUp();
    } else if (!window_.isComplete() && sinceReload_.hasExpired(window_.reloadTime().count())) {
        isReloadDue_ = true;
    }
    // Not from within itself.
    wait(0ms);
}

bool HlsStream::canDecrypt(const HlsEncryption &encryption)
{
    switch (encryption.method) {
    case HlsEncryption::Method::None:
        return true;
    case HlsEncryption::Method::Aes128:
        return HlsCipher::isAvailable();
    case HlsEncryption::Method::Unknown:
        return false;
    }
    return false;
}

std::unique_ptr<HlsCipher> HlsStream::cipherFor(const HlsEncryption &encryption, quint64 number) const
{
    if (encryption.method == HlsEncryption::Method::None) {
        return nullptr;
    }
    const QByteArray &vector = encryption.vector;
    return std::make_unique<HlsCipher>(key_->bytes, vector.isEmpty() ? HlsCipher::vectorFor(number) : vector);
}

HlsFetch &HlsStream::open(const QUrl &url, const HlsRange &range, HlsFetch::Pace pace, qint64 most)
{
    HttpRequest request = access_.requestFor(url, AttemptSpacing::answerTime);
    request.maximumBytes = most;
    sinceFetch_.start();
    fetch_.reset(new HlsFetch(this));
    fetch_->start(request, range, pace);
    return *fetch_;
}

void HlsStream::learn(const HlsFetch &fetch)
{
    if (fetch.isUnverified() && !facts().isUnverified) {
        setFacts({.bitrate = facts().bitrate, .isUnverified = true});
    }
}

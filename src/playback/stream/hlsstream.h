#pragma once

#include "base/deletelater.h"
#include "playback/stream/hls/hlscipher.h"
#include "playback/stream/hls/hlsfetch.h"
#include "playback/stream/hls/hlsplaylist.h"
#include "playback/stream/hls/hlssplicer.h"
#include "playback/stream/hls/hlswindow.h"
#include "playback/stream/streamaccess.h"
#include "playback/stream/streamsource.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QUrl>
#include <memory>
#include <optional>

class StreamConnection;

/// A stream that a server offers in segments (HTTP live streaming, RFC 8216): fetches one after the other,
/// and the playlist that names them again and again. What fails is asked for again: whether it is worth
/// waiting for is decided by whoever hears what is still in hand.
class HlsStream : public StreamSource
{
    Q_OBJECT

public:
    /// Begins with the playlist that `connection` has found behind `address`, and takes it.
    HlsStream(const StreamAccess &access, QUrl address, StreamConnection &connection,
              QObject *parent = nullptr);

    void start() override;

private:
    /// The segment that is being delivered.
    struct Part
    {
        quint64 number = 0;
        quint64 received = 0;
        /// Null where nothing is encrypted.
        std::unique_ptr<HlsCipher> cipher;
    };

    struct Key
    {
        QUrl url;
        QByteArray bytes;
    };

    void moreWanted() override;
    void proceed();
    void deliver(const HlsSegment &segment);
    void wait(std::chrono::milliseconds time);
    void waitAfter(int failures);

    void takePlaylist(const QByteArray &text, const QUrl &base, bool isTop);
    void fetchPlaylist();
    void playlistEnded(HlsFetch::End end);
    void playlistFailed();
    void useVariant(qsizetype index);
    void giveVariantUp();

    void fetchKey(const QUrl &url);
    void fetchHeader(const HlsHeader &header);
    void fetchSegment(const HlsSegment &segment);
    void beginSegment(const HlsSegment &segment);
    void segmentArrived();
    void segmentEnded(HlsFetch::End end);
    void segmentFailed(HlsFetch::End end);
    void passSegment();
    void skipSegment();

    static bool canDecrypt(const HlsEncryption &encryption);
    std::unique_ptr<HlsCipher> cipherFor(const HlsEncryption &encryption, quint64 number) const;
    HlsFetch &open(const QUrl &url, const HlsRange &range, HlsFetch::Pace pace, qint64 most);
    void learn(const HlsFetch &fetch);

    const StreamAccess access_;
    /// What the station's address is.
    const QUrl address_;
    QByteArray firstText_;
    const QUrl firstBase_;
    const bool isFirstUnverified_;

    QList<HlsVariant> variants_;
    qsizetype variant_ = 0;
    /// Where the segments' playlist is, and whether the station's address is asked instead.
    QUrl playlistAddress_;
    bool isTopWanted_ = false;
    HlsWindow window_;
    bool isReloadDue_ = false;
    QElapsedTimer sinceReload_;
    int playlistFailures_ = 0;

    std::optional<Part> part_;
    std::optional<Key> key_;
    std::optional<HlsHeader> header_; // sent last
    HlsSplicer splicer_;
    QByteArray title_;
    int segmentFailures_ = 0; // of the next segment
    int skipped_ = 0;         // since sound came last
    bool isOver_ = false;

    std::unique_ptr<HlsFetch, DeleteLater> fetch_;
    QElapsedTimer sinceFetch_;
    QTimer pause_;
};

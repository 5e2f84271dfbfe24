#pragma once

#include "playback/backend.h"
#include "playback/mpv/heardreport.h"
#include "playback/mpv/memorywatch.h"
#include "playback/mpv/mpvconditions.h"
#include "playback/mpv/mpvhandle.h"
#include "playback/mpv/soundcontrol.h"
#include "playback/streamresolver.h"

#include <QObject>
#include <QTimer>
#include <atomic>
#include <chrono>
#include <optional>

class MpvPlayer;

/// One stream on one core of libmpv: finds the address that plays, loads it, and turns what libmpv reports
/// into the key paths. Made on any thread, then moved to the main thread, where everything else happens;
/// while it has a player, it is that player's.
class MpvItem : public QObject, public BackendItem, public std::enable_shared_from_this<MpvItem>
{
    Q_OBJECT

public:
    /// Enough for minutes of sound ahead, so that a server that sends faster than it should costs no more.
    static constexpr qint64 playingBufferBytes = 8LL * 1024 * 1024;
    /// The sound that libmpv has ready for the output.
    static constexpr std::chrono::milliseconds readySound{50};
    /// The sound that the sound server queues of it.
    static constexpr std::chrono::milliseconds serverQueue{600};

    /// Without a handle the item fails when it is played.
    MpvItem(const StreamRequest &request, const MpvConditions &conditions, std::unique_ptr<MpvHandle> handle);
    ~MpvItem() override;

    /// Makes `player` the one that is told the status; an earlier player loses the item.
    void attach(MpvPlayer *player);
    /// Ends the stream where `player` still has the item.
    void detach(MpvPlayer *player);

    /// Starts loading when first asked to run; later resumes and pauses.
    void setRunning(bool running);

private:
    void begin();
    void load(const QUrl &stream);
    void drop();
    void judgeMemory();
    void fail();
    void shutDown();
    void scheduleDrain();
    void drain();
    void handle(const mpv_event &event);
    void propertyChanged(const mpv_event_property &property);
    void outputChanged(const QByteArray &name);
    void applyRate();
    void soundStarted();
    void cacheChanged(const mpv_node &state);
    void watchDryBuffer();
    void judgeDryBuffer();
    void streamEnded(const mpv_event_end_file &end);
    void offerRanges();
    void reportFull(qint64 bytes);
    void reportEmpty();

    StreamRequest request_;
    MpvConditions conditions_;
    std::unique_ptr<MpvHandle> handle_;
    std::unique_ptr<SoundControl> soundControl_;
    std::unique_ptr<HeardReport> heardReport_;
    bool outputOpen_ = false;
    /// Runs while there is no sound server to play through.
    QTimer outputRetry_;
    /// Present until the stream has given sound.
    std::unique_ptr<StreamResolver> resolver_;
    MpvPlayer *player_ = nullptr;
    std::atomic<bool> drainScheduled_ = false;
    /// How often a stream has been loaded, and libmpv's number for the latest one; none before it has given
    /// that.
    quint64 loads_ = 0;
    QUrl stream_;
    std::optional<qint64> entry_;
    /// Runs while a stream is being opened.
    QTimer opening_;
    MemoryWatch memory_;
    bool begun_ = false;
    bool running_ = false;
    /// Runs while a pause waits for loading to go on; see setRunning().
    QTimer pauseDelay_;
    /// Nothing is being loaded, because the buffer holds what it may.
    bool loadingRests_ = false;
    bool started_ = false;
    bool sounded_ = false;
    /// Everything has been played, and nothing more will come.
    bool ended_ = false;
    bool emptyReported_ = false;
    bool fullReported_ = false;
    QVariantList ranges_;
    double rangesEnd_ = 0;
    /// The end of the ranges that were reported last; nothing before the first report.
    std::optional<double> reportedEnd_;
    /// Runs from when the buffer is dry until the output has played what it has queued; and where the buffer
    /// ended then.
    QTimer dry_;
    double dryEnd_ = 0;
    /// The core has asked for sound that is not there.
    bool underrun_ = false;
};

#pragma once

#include "playback/backend.h"
#include "playback/mpv/bufferwatch.h"
#include "playback/mpv/formatkeeper.h"
#include "playback/mpv/heardreport.h"
#include "playback/mpv/mpvconditions.h"
#include "playback/mpv/mpvhandle.h"
#include "playback/mpv/outputretry.h"
#include "playback/mpv/ratecontrol.h"
#include "playback/mpv/soundcontrol.h"
#include "playback/mpv/streamload.h"

#include <QObject>
#include <atomic>
#include <memory>

class MpvPlayer;

/// One stream on one core of libmpv: finds the address that plays, loads it, and turns what libmpv reports
/// into the key paths. Made on any thread, then moved to the main thread, where everything else happens;
/// while it has a player, it is that player's.
class MpvItem : public QObject, public BackendItem, public std::enable_shared_from_this<MpvItem>
{
    Q_OBJECT

public:
    /// Without a handle the item fails when it is played.
    MpvItem(const StreamRequest &request, const MpvConditions &conditions, std::unique_ptr<MpvHandle> handle);
    ~MpvItem() override;

    /// Makes `player` the one that is told the status; an earlier player loses the item.
    void attach(MpvPlayer *player);
    /// Ends the stream where `player` still has the item; it cannot be played again then.
    void detach(MpvPlayer *player);

    /// Starts loading when first asked to run; later resumes and pauses.
    void setRunning(bool running);

private:
    enum class Stage {
        New,       ///< it has not been asked to run
        Resolving, ///< libmpv has not begun with any stream yet
        Opening,   ///< libmpv has begun with one, and perhaps with further ones; the player is ready
        Sounding,  ///< a stream is heard
        Ended,     ///< nothing more will come of it
        Empty,     ///< that all of it has been played has been reported
        Full,      ///< that the buffer is full has been reported
        Failed,    ///< there is no stream to play
        Released,  ///< its player has released it
    };

    static bool mayFollow(Stage from, Stage to);
    void enter(Stage stage);
    bool isBeforeSound() const;
    bool isHeard() const;

    void begin();
    void fail();
    void release();
    void setStatus(BackendPlayer::Status status);

    void scheduleDrain();
    void drain();
    void handle(const mpv_event &event);
    void propertyChanged(const mpv_event_property &property);
    void outputChanged(const QByteArray &name);
    void cacheChanged(const CacheState &state);
    void soundStarted();
    void soundEnded();

    void updateBufferUse();
    void reportEmpty();
    void reportFull();

    const StreamRequest request_;
    const MpvConditions conditions_;
    Stage stage_ = Stage::New;
    MpvPlayer *player_ = nullptr;
    std::atomic<bool> drainScheduled_ = false;
    std::unique_ptr<MpvHandle> handle_;
    /// These are there from begin() to release().
    std::unique_ptr<SoundControl> soundControl_;
    std::unique_ptr<OutputRetry> outputRetry_;
    std::unique_ptr<FormatKeeper> formatKeeper_;
    std::unique_ptr<RateControl> rateControl_;
    std::unique_ptr<HeardReport> heardReport_;
    std::unique_ptr<BufferWatch> bufferWatch_;
    std::unique_ptr<StreamLoad> load_;
};

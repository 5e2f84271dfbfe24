#pragma once

#include "playback/backend.h"
#include "playback/mpv/audiooutput.h"
#include "playback/mpv/mpvconditions.h"

#include <QTimer>
#include <chrono>
#include <memory>

class DetachedWork;
class MpvCores;

/// The backend on libmpv.
class MpvBackend : public Backend
{
public:
    /// A pause may load `pausedBufferBytes` until the buffer counts as full.
    explicit MpvBackend(AudioOutput output, qint64 pausedBufferBytes = MpvConditions::usualPausedBufferBytes);
    ~MpvBackend() override;

    /// Opens libmpv and makes a core for the next item, on a thread of its own; an item that is asked for
    /// earlier waits for libmpv. Any thread.
    void preload();

    std::shared_ptr<BackendItem> makeItem(const StreamRequest &request) override;
    std::shared_ptr<BackendPlayer> makePlayer(const std::shared_ptr<BackendItem> &item) override;
    void setSound(const SoundSettings &settings) override;
    const HeardStream &heardStream() const override { return *heard_; }

    /// Ends the preparation for further items. Whether the work on other threads is done within `time`:
    /// cores that are torn down, the library that is opened. Where not, the process must end without
    /// running its exit handlers, because threads of libmpv are still at work.
    bool waitForDetachedWork(std::chrono::milliseconds time);

private:
    AudioOutput output_;
    std::shared_ptr<ListenerSound> sound_;
    std::shared_ptr<HeardStream> heard_;
    MpvConditions conditions_;
    std::shared_ptr<DetachedWork> detached_;
    std::shared_ptr<MpvCores> cores_;
    QTimer preparation_;
};

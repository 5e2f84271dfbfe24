#pragma once

#include "playback/backend.h"
#include "playback/mpv/audiooutput.h"

#include <chrono>
#include <memory>
#include <mutex>

struct MpvLibrary;
class TearDowns;

/// The backend on libmpv.
class MpvBackend : public Backend
{
public:
    explicit MpvBackend(AudioOutput output);
    ~MpvBackend() override;

    /// Opens libmpv on a thread of its own; an item that is asked for earlier waits for it. Any thread.
    void preload();

    std::shared_ptr<BackendItem> makeItem(const StreamRequest &request) override;
    std::shared_ptr<BackendPlayer> makePlayer(const std::shared_ptr<BackendItem> &item) override;

    /// Whether all that has been released is gone within `time`. Where not, the process must end without
    /// running its exit handlers, because threads of libmpv are still at work.
    bool waitForTearDowns(std::chrono::milliseconds time);

private:
    class Preload;

    AudioOutput output_;
    std::shared_ptr<Preload> library_;
    std::shared_ptr<TearDowns> tearDowns_;
};

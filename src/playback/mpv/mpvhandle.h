#pragma once

#include "playback/mpv/mpvlibrary.h"

#include <QByteArray>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

/// Counts the handles that are being torn down, so that somebody may wait for the last of them. Thread-safe.
class TearDowns
{
public:
    /// Runs `tearDown` on a thread of its own.
    static void run(const std::shared_ptr<TearDowns> &tearDowns, std::function<void()> tearDown);

    /// Whether none is under way any more within `time`.
    bool waitForNone(std::chrono::milliseconds time);

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    int running_ = 0;
};

/// One core of libmpv. Made on any thread; then used on one thread, except that the wake-up function is
/// called on threads of libmpv. Never asks libmpv for anything that could block.
class MpvHandle
{
public:
    using Options = std::vector<std::pair<QByteArray, QByteArray>>;

    /// Null, and a line in the log, where libmpv refuses. The library must outlive the handle.
    static std::unique_ptr<MpvHandle> create(const MpvLibrary &library, std::shared_ptr<TearDowns> tearDowns,
                                             const Options &options);

    /// Returns at once; the core is torn down elsewhere, because a name server that does not answer can hold
    /// it.
    ~MpvHandle();

    MpvHandle(const MpvHandle &) = delete;
    MpvHandle &operator=(const MpvHandle &) = delete;

    /// `wakeup` is called whenever nextEvent() has something new; it must only post a message.
    void setWakeup(std::function<void()> wakeup);
    /// The next event; its id is MPV_EVENT_NONE when there is none. Valid until the next call.
    const mpv_event &nextEvent();

    void observe(const char *property, mpv_format format);
    void command(const std::vector<QByteArray> &words);
    void setFlag(const char *property, bool value);
    void setNumber(const char *property, qint64 value);

private:
    MpvHandle(const MpvLibrary &library, std::shared_ptr<TearDowns> tearDowns, mpv_handle *handle);

    const MpvLibrary &library_;
    std::shared_ptr<TearDowns> tearDowns_;
    mpv_handle *handle_;
    std::function<void()> wakeup_;
};

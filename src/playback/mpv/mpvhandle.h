#pragma once

#include "playback/mpv/detachedwork.h"
#include "playback/mpv/mpvlibrary.h"

#include <QByteArray>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

/// One core of libmpv. Made on any thread; then used on one thread, except that the wake-up function is
/// called on threads of libmpv. Never asks libmpv for anything that could block.
class MpvHandle
{
public:
    using Options = std::vector<std::pair<QByteArray, QByteArray>>;

    /// Null, and a line in the log, where libmpv refuses. The library must outlive the handle.
    static std::unique_ptr<MpvHandle> create(const MpvLibrary &library,
                                             std::shared_ptr<DetachedWork> detached, const Options &options);

    /// Returns at once; the core is torn down elsewhere, because a name server that does not answer can hold
    /// it.
    ~MpvHandle();

    MpvHandle(const MpvHandle &) = delete;
    MpvHandle &operator=(const MpvHandle &) = delete;

    /// `wakeup` is called whenever nextEvent() has something new; it must only post a message.
    void setWakeup(std::function<void()> wakeup);
    /// The next event; its id is MPV_EVENT_NONE when there is none. Valid until the next call.
    const mpv_event &nextEvent();

    /// Asks for an MPV_EVENT_PROPERTY_CHANGE now and at each change.
    void observe(const char *property, mpv_format format);
    /// Starts a command.
    void command(const std::vector<QByteArray> &words);
    /// Loads what is at `address` in place of anything else, with options of that stream alone; a name may
    /// stand there more than once. Its MPV_EVENT_COMMAND_REPLY carries `reply`.
    void load(const QByteArray &address, const Options &options, quint64 reply);
    void setFlag(const char *property, bool value);
    void setInteger(const char *property, qint64 value);
    void setNumber(const char *property, double value);

private:
    MpvHandle(const MpvLibrary &library, std::shared_ptr<DetachedWork> detached, mpv_handle *handle);

    const MpvLibrary &library_;
    std::shared_ptr<DetachedWork> detached_;
    mpv_handle *handle_;
    std::function<void()> wakeup_;
};

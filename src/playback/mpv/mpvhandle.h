#pragma once

#include "playback/mpv/detachedwork.h"
#include "playback/mpv/mpvlibrary.h"

#include <QByteArray>
#include <QHash>
#include <QSet>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

class BytePipe;
class PipeProtocol;

/// One core of libmpv. Made on any thread; then used on one thread, except that the wake-up function is
/// called on threads of libmpv. Never asks libmpv for anything that could block. Whatever libmpv refuses (an
/// option, a command, a property, each by its name) makes one line in the log.
class MpvHandle
{
public:
    using Options = std::vector<std::pair<QByteArray, QByteArray>>;

    /// A core that runs none of the scripts that libmpv brings along. Null, and a line in the log, where
    /// libmpv gives none. The library must outlive the handle.
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
    /// Loads what comes through `pipe` in place of anything else, with options of that stream alone; a name
    /// may stand there more than once. Its MPV_EVENT_COMMAND_REPLY carries `reply`, which must fit into 32
    /// bits.
    void load(const std::shared_ptr<BytePipe> &pipe, const Options &options, quint64 reply);
    void setFlag(const char *property, bool value);
    void setInteger(const char *property, qint64 value);
    void setNumber(const char *property, double value);

private:
    MpvHandle(const MpvLibrary &library, std::shared_ptr<DetachedWork> detached, mpv_handle *handle);

    /// A number for the reply to something of that name, which libmpv is about to be asked for.
    quint64 expectReply(const QByteArray &name);
    /// The same with a number that the caller has.
    void expectReply(const QByteArray &name, quint64 number);
    void replied(const mpv_event &event);
    void said(const mpv_event_log_message &line);
    /// Takes one of libmpv's error codes; those from 0 on are none.
    void noteRefusal(const QByteArray &name, int error);
    void setProperty(const char *property, mpv_format format, void *value);

    const MpvLibrary &library_;
    std::shared_ptr<DetachedWork> detached_;
    std::shared_ptr<PipeProtocol> pipes_;
    mpv_handle *handle_;
    /// The names of what libmpv has been asked for and has not answered yet.
    QHash<quint64, QByteArray> asked_;
    quint64 lastNumber_;
    QSet<QByteArray> refused_;
    std::function<void()> wakeup_;
};

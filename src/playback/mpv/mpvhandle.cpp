#include "playback/mpv/mpvhandle.h"

#include "playback/mpv/mpvnode.h"
#include "playback/mpv/pipeprotocol.h"

#include <QByteArrayView>
#include <QLoggingCategory>
#include <array>
#include <malloc.h>

namespace {
Q_LOGGING_CATEGORY(lcHandle, "plumtide.playback")

/// Numbers of replies above this are of our own making.
constexpr quint64 lastCallersNumber = 0xffffffff;

/// The options that start the scripts that libmpv brings along. Each version has its own; built without Lua
/// it has none.
constexpr std::array scripts{
    "osc",
    // Would hand the address to another program.
    "ytdl",
    "load-auto-profiles",
    "load-commands",
    "load-console",
    "load-osd-console",
    "load-positioning",
    "load-select",
    "load-stats-overlay",
};

/// Whether that is no refusal.
bool isUsual(const QByteArray &name, int error)
{
    return error >= 0 ||
           // The property is there, only not now.
           error == MPV_ERROR_PROPERTY_UNAVAILABLE ||
           // The level of a sound server that has just gone.
           (name == "ao-volume" && error == MPV_ERROR_PROPERTY_ERROR) ||
           // The reply comes from the last part of the filter, which knows no commands; the others have
           // obeyed.
           (name == "af-command" && error == MPV_ERROR_COMMAND);
}
} // namespace

std::unique_ptr<MpvHandle> MpvHandle::create(const MpvLibrary &library,
                                             std::shared_ptr<DetachedWork> detached, const Options &options)
{
    mpv_handle *handle = library.create();
    if (handle == nullptr) {
        qCWarning(lcHandle) << "no sound: libmpv gives no handle";
        return nullptr;
    }
    std::unique_ptr<MpvHandle> made(new MpvHandle(library, std::move(detached), handle));
    // What it thinks of a stream's own options it tells in its log alone.
    library.requestLogMessages(handle, "error");
    for (const char *script : scripts) {
        const int error = library.setOptionString(handle, script, "no");
        if (error != MPV_ERROR_OPTION_NOT_FOUND) {
            made->noteRefusal(script, error);
        }
    }
    for (const auto &[name, value] : options) {
        made->noteRefusal(name, library.setOptionString(handle, name.constData(), value.constData()));
    }
    if (library.initialize(handle) < 0) {
        qCWarning(lcHandle) << "no sound: libmpv does not start";
        return nullptr;
    }
    made->noteRefusal(PipeProtocol::scheme, library.streamCbAddRo(handle, PipeProtocol::scheme,
                                                                  made->pipes_.get(), &PipeProtocol::open));
    return made;
}

MpvHandle::MpvHandle(const MpvLibrary &library, std::shared_ptr<DetachedWork> detached, mpv_handle *handle)
    : library_(library)
    , detached_(std::move(detached))
    , pipes_(std::make_shared<PipeProtocol>())
    , handle_(handle)
    , lastNumber_(lastCallersNumber)
{
}

MpvHandle::~MpvHandle()
{
    library_.setWakeupCallback(handle_, nullptr, nullptr);
    // Silence comes first: the rest may take a while. What the sound server has queued is silent only when
    // the output rests.
    setFlag("pause", true);
    DetachedWork::run(detached_, [terminateDestroy = library_.terminateDestroy, handle = handle_,
                                  pipes = pipes_]() mutable {
        terminateDestroy(handle);
        pipes.reset();
        // What a core leaves lies scattered over the heap.
        malloc_trim(0);
    });
}

void MpvHandle::setWakeup(std::function<void()> wakeup)
{
    wakeup_ = std::move(wakeup);
    library_.setWakeupCallback(
        handle_, [](void *self) { static_cast<MpvHandle *>(self)->wakeup_(); }, this);
}

const mpv_event &MpvHandle::nextEvent()
{
    const mpv_event &event = *library_.waitEvent(handle_, 0);
    switch (event.event_id) {
    case MPV_EVENT_COMMAND_REPLY:
    case MPV_EVENT_SET_PROPERTY_REPLY:
    case MPV_EVENT_GET_PROPERTY_REPLY:
        replied(event);
        break;
    case MPV_EVENT_LOG_MESSAGE:
        said(*static_cast<const mpv_event_log_message *>(event.data));
        break;
    default:
        break;
    }
    return event;
}

void MpvHandle::observe(const char *property, mpv_format format)
{
    library_.observeProperty(handle_, 0, property, format);
    // A property that this version does not know would just never change.
    library_.getPropertyAsync(handle_, expectReply(property), property, format);
}

void MpvHandle::command(const std::vector<QByteArray> &words)
{
    std::vector<const char *> arguments;
    arguments.reserve(words.size() + 1);
    for (const QByteArray &word : words) {
        arguments.push_back(word.constData());
    }
    arguments.push_back(nullptr);
    const QByteArray &name = words.front();
    noteRefusal(name, library_.commandAsync(handle_, expectReply(name), arguments.data()));
}

void MpvHandle::load(const std::shared_ptr<BytePipe> &pipe, const Options &options, quint64 reply)
{
    const QByteArray address = pipes_->offer(pipe);
    NodeMap streamOptions;
    for (const auto &[name, value] : options) {
        streamOptions.add(name.constData(), value.constData());
    }
    // By name: where the options stand among the words of this command depends on the version.
    const QByteArray name = "loadfile";
    NodeMap loadFile;
    loadFile.add("name", name.constData());
    loadFile.add("url", address.constData());
    loadFile.add("options", streamOptions);
    mpv_node command = loadFile.node();
    expectReply(name, reply);
    noteRefusal(name, library_.commandNodeAsync(handle_, reply, &command));
}

void MpvHandle::setFlag(const char *property, bool value)
{
    int flag = value ? 1 : 0;
    setProperty(property, MPV_FORMAT_FLAG, &flag);
}

void MpvHandle::setInteger(const char *property, qint64 value)
{
    int64_t number = value;
    setProperty(property, MPV_FORMAT_INT64, &number);
}

void MpvHandle::setNumber(const char *property, double value)
{
    setProperty(property, MPV_FORMAT_DOUBLE, &value);
}

void MpvHandle::setProperty(const char *property, mpv_format format, void *value)
{
    noteRefusal(property, library_.setPropertyAsync(handle_, expectReply(property), property, format, value));
}

quint64 MpvHandle::expectReply(const QByteArray &name)
{
    expectReply(name, ++lastNumber_);
    return lastNumber_;
}

void MpvHandle::expectReply(const QByteArray &name, quint64 number)
{
    asked_.insert(number, name);
}

void MpvHandle::replied(const mpv_event &event)
{
    noteRefusal(asked_.take(event.reply_userdata), event.error);
}

/// Other lines may name the address, and are not for the log.
void MpvHandle::said(const mpv_event_log_message &line)
{
    const QByteArrayView text = QByteArrayView(line.text).trimmed();
    if (text.startsWith("Error parsing option ")) {
        qCWarning(lcHandle).noquote() << "libmpv refuses an option of a stream:" << text;
    }
}

void MpvHandle::noteRefusal(const QByteArray &name, int error)
{
    if (!isUsual(name, error) && !refused_.contains(name)) {
        refused_.insert(name);
        qCWarning(lcHandle).noquote() << "libmpv refuses" << name + ':' << library_.errorString(error);
    }
}

#include "playback/mpv/mpvhandle.h"

#include "playback/mpv/mpvnode.h"

#include <QLoggingCategory>
#include <malloc.h>

namespace {
Q_LOGGING_CATEGORY(lcHandle, "plumtide.playback")
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
    for (const auto &[name, value] : options) {
        // An option that this version does not know is one that it does not need.
        if (library.setOptionString(handle, name.constData(), value.constData()) < 0) {
            qCDebug(lcHandle) << "libmpv refuses the option" << name;
        }
    }
    if (library.initialize(handle) < 0) {
        qCWarning(lcHandle) << "no sound: libmpv does not start";
        return nullptr;
    }
    return made;
}

MpvHandle::MpvHandle(const MpvLibrary &library, std::shared_ptr<DetachedWork> detached, mpv_handle *handle)
    : library_(library)
    , detached_(std::move(detached))
    , handle_(handle)
{
}

MpvHandle::~MpvHandle()
{
    library_.setWakeupCallback(handle_, nullptr, nullptr);
    // Silence comes first: the rest may take a while. What the sound server has queued is silent only when
    // the output rests.
    setFlag("pause", true);
    DetachedWork::run(detached_, [terminateDestroy = library_.terminateDestroy, handle = handle_] {
        terminateDestroy(handle);
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
    return *library_.waitEvent(handle_, 0);
}

void MpvHandle::observe(const char *property, mpv_format format)
{
    library_.observeProperty(handle_, 0, property, format);
}

void MpvHandle::command(const std::vector<QByteArray> &words)
{
    std::vector<const char *> arguments;
    arguments.reserve(words.size() + 1);
    for (const QByteArray &word : words) {
        arguments.push_back(word.constData());
    }
    arguments.push_back(nullptr);
    library_.commandAsync(handle_, 0, arguments.data());
}

void MpvHandle::load(const QByteArray &address, const Options &options, quint64 reply)
{
    NodeMap streamOptions;
    for (const auto &[name, value] : options) {
        streamOptions.add(name.constData(), value.constData());
    }
    // By name: where the options stand among the words of this command depends on the version.
    NodeMap loadFile;
    loadFile.add("name", "loadfile");
    loadFile.add("url", address.constData());
    loadFile.add("options", streamOptions);
    mpv_node command = loadFile.node();
    library_.commandNodeAsync(handle_, reply, &command);
}

void MpvHandle::setFlag(const char *property, bool value)
{
    int flag = value ? 1 : 0;
    library_.setPropertyAsync(handle_, 0, property, MPV_FORMAT_FLAG, &flag);
}

void MpvHandle::setInteger(const char *property, qint64 value)
{
    int64_t number = value;
    library_.setPropertyAsync(handle_, 0, property, MPV_FORMAT_INT64, &number);
}

void MpvHandle::setNumber(const char *property, double value)
{
    library_.setPropertyAsync(handle_, 0, property, MPV_FORMAT_DOUBLE, &value);
}

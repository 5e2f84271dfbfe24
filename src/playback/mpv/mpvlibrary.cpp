#include "playback/mpv/mpvlibrary.h"

#include <QLibrary>
#include <QLoggingCategory>

namespace {
Q_LOGGING_CATEGORY(lcLibrary, "plumtide.playback")

/// The major version of the interface that the header describes; it is part of the shared object's name.
constexpr int interfaceVersion = static_cast<int>(MPV_CLIENT_API_VERSION >> 16U);

/// AV_LOG_QUIET.
constexpr int ffmpegQuiet = -8;

/// SPA_LOG_LEVEL_NONE.
constexpr int pipeWireQuiet = 0;

/// A snd_lib_error_handler_t.
void ignoreAlsaError(const char *, int, const char *, int, const char *, ...) {}

template <class Function>
bool find(QLibrary &library, const char *name, Function &function)
{
    function = reinterpret_cast<Function>(library.resolve(name));
    return function != nullptr;
}
} // namespace

std::unique_ptr<const MpvLibrary> MpvLibrary::open()
{
    QLibrary library(QStringLiteral("mpv"), interfaceVersion);
    auto functions = std::make_unique<MpvLibrary>();
    if (!library.load() || !find(library, "mpv_create", functions->create) ||
        !find(library, "mpv_initialize", functions->initialize) ||
        !find(library, "mpv_terminate_destroy", functions->terminateDestroy) ||
        !find(library, "mpv_set_option_string", functions->setOptionString) ||
        !find(library, "mpv_set_property_async", functions->setPropertyAsync) ||
        !find(library, "mpv_get_property_async", functions->getPropertyAsync) ||
        !find(library, "mpv_command_async", functions->commandAsync) ||
        !find(library, "mpv_command_node_async", functions->commandNodeAsync) ||
        !find(library, "mpv_observe_property", functions->observeProperty) ||
        !find(library, "mpv_wait_event", functions->waitEvent) ||
        !find(library, "mpv_set_wakeup_callback", functions->setWakeupCallback) ||
        !find(library, "mpv_stream_cb_add_ro", functions->streamCbAddRo) ||
        !find(library, "mpv_request_log_messages", functions->requestLogMessages) ||
        !find(library, "mpv_error_string", functions->errorString)) {
        qCWarning(lcLibrary).noquote() << "no sound: libmpv cannot be used:" << library.errorString();
        return nullptr;
    }
    // FFmpeg, which libmpv brings along, would write its messages about a stream, addresses included, to
    // standard error.
    if (const auto setLevel = reinterpret_cast<void (*)(int)>(library.resolve("av_log_set_level"))) {
        setLevel(ffmpegQuiet);
    }
    // And so would ALSA, whenever it looks for a sound card where there is none.
    using AlsaErrorHandler = void (*)(const char *, int, const char *, int, const char *, ...);
    if (const auto setHandler =
            reinterpret_cast<int (*)(AlsaErrorHandler)>(library.resolve("snd_lib_error_set_handler"))) {
        setHandler(ignoreAlsaError);
    }
    // And PipeWire, whenever it looks for a server.
    if (const auto setLevel = reinterpret_cast<void (*)(int)>(library.resolve("pw_log_set_level"))) {
        setLevel(pipeWireQuiet);
    }
    return functions;
}

#include "playback/mpv/mpvlibrary.h"

#include "base/libraryfunction.h"

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

} // namespace

std::unique_ptr<const MpvLibrary> MpvLibrary::open()
{
    QLibrary library(QStringLiteral("mpv"), interfaceVersion);
    auto functions = std::make_unique<MpvLibrary>();
    if (!library.load() || !findFunction(library, "mpv_create", functions->create) ||
        !findFunction(library, "mpv_initialize", functions->initialize) ||
        !findFunction(library, "mpv_terminate_destroy", functions->terminateDestroy) ||
        !findFunction(library, "mpv_set_option_string", functions->setOptionString) ||
        !findFunction(library, "mpv_set_property_async", functions->setPropertyAsync) ||
        !findFunction(library, "mpv_get_property_async", functions->getPropertyAsync) ||
        !findFunction(library, "mpv_command_async", functions->commandAsync) ||
        !findFunction(library, "mpv_command_node_async", functions->commandNodeAsync) ||
        !findFunction(library, "mpv_observe_property", functions->observeProperty) ||
        !findFunction(library, "mpv_wait_event", functions->waitEvent) ||
        !findFunction(library, "mpv_set_wakeup_callback", functions->setWakeupCallback) ||
        !findFunction(library, "mpv_stream_cb_add_ro", functions->streamCbAddRo) ||
        !findFunction(library, "mpv_request_log_messages", functions->requestLogMessages) ||
        !findFunction(library, "mpv_error_string", functions->errorString)) {
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

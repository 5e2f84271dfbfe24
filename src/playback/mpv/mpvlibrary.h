#pragma once

#include <memory>
#include <mpv/client.h>
#include <mpv/stream_cb.h>

/// The functions of libmpv that we call, found in the shared library when the program runs. Once opened, the
/// library stays in the process.
struct MpvLibrary
{
    decltype(&mpv_create) create = nullptr;
    decltype(&mpv_initialize) initialize = nullptr;
    decltype(&mpv_terminate_destroy) terminateDestroy = nullptr;
    decltype(&mpv_set_option_string) setOptionString = nullptr;
    decltype(&mpv_set_property_async) setPropertyAsync = nullptr;
    decltype(&mpv_get_property_async) getPropertyAsync = nullptr;
    decltype(&mpv_command_async) commandAsync = nullptr;
    decltype(&mpv_command_node_async) commandNodeAsync = nullptr;
    decltype(&mpv_observe_property) observeProperty = nullptr;
    decltype(&mpv_wait_event) waitEvent = nullptr;
    decltype(&mpv_set_wakeup_callback) setWakeupCallback = nullptr;
    decltype(&mpv_stream_cb_add_ro) streamCbAddRo = nullptr;
    decltype(&mpv_request_log_messages) requestLogMessages = nullptr;
    decltype(&mpv_error_string) errorString = nullptr;

    /// Null, and a line in the log, where the machine has no libmpv that fits. May take a quarter of a
    /// second.
    static std::unique_ptr<const MpvLibrary> open();
};

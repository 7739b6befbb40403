// libmpv's functions, taken out of the library when the first track is played: linked to it, with the hundred libraries
// that it brings, the program would take twice as long to start. Only AudioEngine.cpp and AudioOutput.cpp see this.
#pragma once

#include <mpv/client.h>
#include <mpv/stream_cb.h>

struct Mpv {
    decltype(&::mpv_create) create = nullptr;
    decltype(&::mpv_initialize) initialize = nullptr;
    decltype(&::mpv_terminate_destroy) terminateDestroy = nullptr;
    decltype(&::mpv_set_option_string) setOptionString = nullptr;
    decltype(&::mpv_stream_cb_add_ro) streamCallbackAdd = nullptr;
    decltype(&::mpv_set_wakeup_callback) setWakeupCallback = nullptr;
    decltype(&::mpv_command_async) commandAsync = nullptr;
    decltype(&::mpv_set_property_async) setPropertyAsync = nullptr;
    decltype(&::mpv_get_property_async) getPropertyAsync = nullptr;
    decltype(&::mpv_wait_event) waitEvent = nullptr;
    decltype(&::mpv_error_string) errorString = nullptr;

    /// Null where the library is missing or another one than was built for. The first call takes its time; any thread.
    [[nodiscard]] static const Mpv *library();
};

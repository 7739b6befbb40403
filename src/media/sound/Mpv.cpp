#include "media/sound/Mpv.h"

#include <dlfcn.h>

#include <optional>

namespace {

std::optional<Mpv> load()
{
    void *const library = ::dlopen("libmpv.so.2", RTLD_NOW | RTLD_LOCAL); // stays for the life of the process
    if (!library) {
        return std::nullopt;
    }
    bool complete = true;
    const auto find = [library, &complete](const char *name, auto &function) {
        function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(::dlsym(library, name));
        complete = complete && function;
    };
    Mpv mpv;
    decltype(&::mpv_client_api_version) version = nullptr;
    find("mpv_client_api_version", version);
    find("mpv_create", mpv.create);
    find("mpv_initialize", mpv.initialize);
    find("mpv_terminate_destroy", mpv.terminateDestroy);
    find("mpv_set_option_string", mpv.setOptionString);
    find("mpv_stream_cb_add_ro", mpv.streamCallbackAdd);
    find("mpv_set_wakeup_callback", mpv.setWakeupCallback);
    find("mpv_command_async", mpv.commandAsync);
    find("mpv_set_property_async", mpv.setPropertyAsync);
    find("mpv_get_property_async", mpv.getPropertyAsync);
    find("mpv_wait_event", mpv.waitEvent);
    find("mpv_error_string", mpv.errorString);
    const auto majorOf = [](unsigned long number) { return number >> 16; };
    return complete && majorOf(version()) == majorOf(MPV_CLIENT_API_VERSION) ? std::optional(mpv) : std::nullopt;
}

} // namespace

const Mpv *Mpv::library()
{
    static const std::optional<Mpv> loaded = load();
    return loaded ? &*loaded : nullptr;
}

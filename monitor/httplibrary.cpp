#include "httplibrary.h"

#include <dlfcn.h>
#include <stdexcept>
#include <string>

namespace monitor {

namespace {

constexpr char libraryName[] = "libmicrohttpd.so.12";

template <class Function> void find(void* library, char const* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(library, name));
    if (function == nullptr) {
        throw std::runtime_error(std::string(libraryName) + " has no " + name);
    }
}

} // namespace

Microhttpd const& Microhttpd::get() {
    static Microhttpd const library;
    return library;
}

Microhttpd::Microhttpd() {
    void* const library = dlopen(libraryName, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        throw std::runtime_error(dlerror());
    }
    find(library, "MHD_start_daemon", startDaemon);
    find(library, "MHD_stop_daemon", stopDaemon);
    find(library, "MHD_get_daemon_info", daemonInfo);
    find(library, "MHD_run", run);
    find(library, "MHD_get_timeout", timeout);
    find(library, "MHD_get_connection_info", connectionInfo);
    find(library, "MHD_lookup_connection_value", lookup);
    find(library, "MHD_create_response_from_buffer", createResponse);
    find(library, "MHD_add_response_header", addHeader);
    find(library, "MHD_queue_response", queueResponse);
    find(library, "MHD_destroy_response", destroyResponse);
}

} // namespace monitor

// Watches the session's state in GLib's main loop, until so many states.
//
//     c++ -std=c++17 glib.cpp -lkelvarissdk $(pkg-config --cflags --libs glib-2.0) -o glib
//     ./glib [PORT [COUNT]]

#include <cstdio>
#include <cstdlib>

#include <glib-unix.h>
#include <glib.h>

#include <kelvarissdk/kelvarissdk.hpp>

static gboolean dispatch(gint /*fd*/, GIOCondition /*condition*/, gpointer client) {
    static_cast<kelvaris::Client const*>(client)->dispatch();
    return G_SOURCE_CONTINUE;
}

int main(int argc, char* argv[]) {
    kelvaris::CreateSettings settings;
    settings.delivery = kelvaris::Delivery::byQueue();
    if (argc > 1) {
        settings.port = static_cast<std::uint16_t>(std::atoi(argv[1]));
    }
    long left = argc > 2 ? std::atol(argv[2]) : -1; // below 0: no end
    kelvaris::Client client(settings);

    GMainLoop* const loop = g_main_loop_new(nullptr, FALSE);
    auto const states =
        client.getState().subscribe([&](kelvaris::Result<kelvaris::StateResult> const& state) {
            std::puts(state ? toString(state->state) : state.error().message.c_str());
            std::fflush(stdout);
            if (--left == 0) {
                g_main_loop_quit(loop);
            }
        });
    guint const source = g_unix_fd_add(client.fd(), G_IO_IN, dispatch, &client);
    g_main_loop_run(loop);
    g_source_remove(source);
    g_main_loop_unref(loop);
    return 0;
}

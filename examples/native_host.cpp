// A GTK program with the monitor dialog: native_host [SECONDS].
//
// Windows and main loop are GTK's; the library starts the toolkit that its dialogs are made of by itself. The
// compiler needs the toolkit's headers for the class that is created here, and that is all.

#include <dlfcn.h>
#include <gtk/gtk.h>

#include <cstdio>
#include <cstdlib>

#include "made_up_traffic.h"
#include "pgn_vistel/pgn_dlg.h"
#include "pgn_vistel/product_name.h"

// What the dialog shows as its title.
PGN_VISTEL_PRODUCT_NAME("Chart Table")

namespace {

struct Host {
    GtkWidget* window = nullptr;
    PGN_VistelDlg_c* monitor = nullptr;
    std::uint32_t messages = 0;
    int shown = 0, paused = 0, refused = 0;
};

/// The dialog lies above the host's window, which must be realized: only then it has a handle. The handle
/// is the window's GdkWindow.
PGN_VistelDlg_c* open_monitor(GtkWidget* window) {
    constexpr unsigned long most_streams = 200, flags = 0;
    auto* const monitor = new PGN_VistelDlg_c;
    monitor->SetModule(static_cast<HINSTANCE>(dlopen(nullptr, RTLD_LAZY)));  // this program
    monitor->Create(reinterpret_cast<HWND>(gtk_widget_get_window(window)), most_streams, flags);
    return monitor;
}

gboolean feed(gpointer context) {
    auto& host = *static_cast<Host*>(context);
    N2KMsg msg = made_up::traffic(host.messages++);
    switch (host.monitor->PutMsg(&msg)) {
        case 0: ++host.shown; break;   // or filtered out by its source
        case 2: ++host.paused; break;  // the user has pressed Pause
        default: ++host.refused;       // no room for another stream, or there is no dialog
    }
    return G_SOURCE_CONTINUE;
}

/// The user's close button only hides the dialog.
void show_monitor(GtkButton*, gpointer context) {
    static_cast<Host*>(context)->monitor->Show();
}

gboolean end(gpointer) {
    gtk_main_quit();
    return G_SOURCE_REMOVE;
}

gboolean close_requested(GtkWidget*, GdkEvent*, gpointer) {
    gtk_main_quit();
    return TRUE;  // the window goes below, after the dialog
}

}  // namespace

int main(int argc, char** argv) {
    gtk_init(&argc, &argv);
    Host host;
    host.window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_title(GTK_WINDOW(host.window), "Chart Table");
    GtkWidget* const button = gtk_button_new_with_label("Monitor");
    gtk_container_add(GTK_CONTAINER(host.window), button);
    g_signal_connect(button, "clicked", G_CALLBACK(show_monitor), &host);
    g_signal_connect(host.window, "delete-event", G_CALLBACK(close_requested), nullptr);
    gtk_widget_show_all(host.window);

    host.monitor = open_monitor(host.window);
    host.monitor->Show();
    const guint feeding = g_timeout_add(50, feed, &host);
    if (argc > 1) g_timeout_add(static_cast<guint>(1000 * std::atof(argv[1])), end, nullptr);
    gtk_main();

    g_source_remove(feeding);
    std::printf("title: %s\n", gtk_window_get_title(GTK_WINDOW(host.monitor->GetHandle())));
    std::printf("%d shown, %d paused, %d refused\n", host.shown, host.paused, host.refused);
    delete host.monitor;  // before the window that it lies above, with which it would go
    gtk_widget_destroy(host.window);
    return 0;
}

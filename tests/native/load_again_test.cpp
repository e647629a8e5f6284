// The library is loaded and unloaded, again and again, while a GTK host and its window live on. What the
// toolkit registers with GTK must neither end with the library nor call what went with it.

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include "pgn_vistel/native.h"

namespace {

/// The host's main loop for a while.
void run(guint milliseconds) {
    const auto end = [](gpointer) -> gboolean {
        gtk_main_quit();
        return G_SOURCE_REMOVE;
    };
    g_timeout_add(milliseconds, end, nullptr);
    gtk_main();
}

TEST(NativeHost, OutlivesTheLibrary) {
    gtk_init(nullptr, nullptr);
    GtkWidget* const window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_widget_show_all(window);
    run(100);
    for (int round = 1; round <= 3; ++round) {
        void* const plugin = dlopen(PLUGIN, RTLD_NOW);
        ASSERT_NE(plugin, nullptr) << dlerror();
        const auto open_monitor = reinterpret_cast<int (*)(HWND)>(dlsym(plugin, "open_monitor"));
        const auto close_monitor = reinterpret_cast<void (*)()>(dlsym(plugin, "close_monitor"));
        EXPECT_EQ(open_monitor(reinterpret_cast<HWND>(gtk_widget_get_window(window))), 0);
        run(200);
        close_monitor();
        if (round == 3) run(100);  // what the toolkit put off runs before the library goes, or never
        dlclose(plugin);
        EXPECT_EQ(dlopen(LIBRARY, RTLD_NOW | RTLD_NOLOAD), nullptr) << "it is unloaded";
        gtk_window_resize(GTK_WINDOW(window), 300 + 10 * round, 200);
        run(100);
    }
    gtk_widget_destroy(window);
    run(50);
}

}  // namespace

// The library is loaded and unloaded, again and again, while a GTK host and its window live on. What the
// toolkit registers with GTK must neither end with the library nor call what went with it.

#include <gtk/gtk.h>

#include <optional>

#include "loaded_module.h"
#include "pgn_vistel/native.h"

namespace pgn_vistel::test {
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
        std::optional<LoadedModule> plugin(PLUGIN);
        const auto handle = reinterpret_cast<HWND>(gtk_widget_get_window(window));
        EXPECT_EQ(plugin->function<int(HWND)>("open_monitor")(handle), 0);
        run(200);
        plugin->function<void()>("close_monitor")();
        EXPECT_TRUE(is_loaded(LIBRARY));
        if (round == 3) run(100);  // what the toolkit put off runs before the library goes, or never
        plugin.reset();
        EXPECT_FALSE(is_loaded(LIBRARY));
        gtk_window_resize(GTK_WINDOW(window), 300 + 10 * round, 200);
        run(100);
    }
    gtk_widget_destroy(window);
    run(50);
}

}  // namespace
}  // namespace pgn_vistel::test

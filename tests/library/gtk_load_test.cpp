// The library is loaded and unloaded, again and again, while a GTK host and its window live on. What the
// toolkit registers with GTK must neither end with the library nor call what went with it.

#include <gtk/gtk.h>

#include <algorithm>
#include <cstdint>
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

class NativeHost : public testing::Test {
  protected:
    NativeHost() {
        gtk_init(nullptr, nullptr);
        window_ = gtk_window_new(GTK_WINDOW_TOPLEVEL);
        gtk_widget_show_all(window_);
        run(100);
    }
    ~NativeHost() override {
        gtk_widget_destroy(window_);
        run(50);
    }
    void open_monitor(const LoadedModule& plugin) const {
        const auto handle = reinterpret_cast<HWND>(gtk_widget_get_window(window_));
        EXPECT_EQ(plugin.function<int(HWND)>("open_monitor")(handle), 0);
    }
    GtkWidget* window_;
};

TEST_F(NativeHost, OutlivesTheLibrary) {
    for (int round = 1; round <= 3; ++round) {
        std::optional<LoadedModule> plugin(PLUGIN);
        open_monitor(*plugin);
        run(200);
        plugin->function<void()>("close_monitor")();
        EXPECT_TRUE(is_loaded(LIBRARY));
        if (round == 3) run(100);  // what the toolkit put off runs before the library goes, or never
        plugin.reset();
        EXPECT_FALSE(is_loaded(LIBRARY));
        gtk_window_resize(GTK_WINDOW(window_), 300 + 10 * round, 200);
        run(100);
    }
}

/// Lines of text that the display shows at the left of a window's lower part.
int shown_lines(GtkWidget* window) {
    constexpr int below_buttons = 40, width = 150, margin = 10;
    GdkWindow* const area = gtk_widget_get_window(window);
    const int height = gdk_window_get_height(area) - below_buttons - margin;
    GdkPixbuf* const picture = gdk_pixbuf_get_from_window(area, margin, below_buttons, width, height);
    const std::size_t pixel = static_cast<std::size_t>(gdk_pixbuf_get_n_channels(picture));
    int lines = 0;
    bool was_blank = true;
    for (int y = 0; y < height; ++y) {
        const guchar* const row = gdk_pixbuf_read_pixels(picture) + y * gdk_pixbuf_get_rowstride(picture);
        const bool is_blank = std::equal(row + pixel, row + width * pixel, row);
        lines += was_blank && !is_blank;
        was_blank = is_blank;
    }
    g_object_unref(picture);
    return lines;
}

TEST_F(NativeHost, ShowsWhatACallHasDone) {
    const LoadedModule plugin(PLUGIN);
    const auto put = plugin.function<int(std::uint8_t)>("put_message");
    open_monitor(plugin);
    run(300);
    auto* const monitor = static_cast<GtkWidget*>(plugin.function<void*()>("monitor_widget")());
    EXPECT_EQ(shown_lines(monitor), 1);
    // The host draws what it was told to, and no event comes in between.
    for (std::uint8_t source = 1; source < 5; ++source) {
        EXPECT_EQ(put(source), 0);
        run(100);
        EXPECT_EQ(shown_lines(monitor), 1 + source);
    }
    EXPECT_EQ(plugin.function<int()>("clear_messages")(), 0);
    run(100);
    EXPECT_EQ(shown_lines(monitor), 0);
    plugin.function<void()>("close_monitor")();
    run(100);
}

}  // namespace
}  // namespace pgn_vistel::test

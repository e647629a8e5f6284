#pragma once

#include <dlfcn.h>
#include <gtk/gtk.h>
#include <wx/image.h>
#include <wx/toplevel.h>
#include <wx/treectrl.h>
#include <wx/utils.h>

#include "pgn_vistel/native.h"
#include "pgn_vistel/native_tree.h"
#include "pgn_vistel/product_name.h"

/// What the tests of windows need of the platform: windows of a host that are not the toolkit's.
namespace pgn_vistel::test {

/// Makes the product name of the program that is compiled with it.
#define PGN_VISTEL_TEST_PRODUCT_NAME(name) PGN_VISTEL_PRODUCT_NAME(name)

/// The program itself.
inline HINSTANCE program() {
    return static_cast<HINSTANCE>(dlopen(nullptr, RTLD_LAZY | RTLD_NOLOAD));
}
/// A module that has a note, but none of ours.
inline HINSTANCE module_without_name() {
    return static_cast<HINSTANCE>(dlopen("libc.so.6", RTLD_LAZY | RTLD_NOLOAD));
}

/// Waits until the display has done what it was asked for.
inline void synchronise() {
    gdk_display_sync(gdk_display_get_default());
}

/// What a window shows, of an area of the screen.
inline wxImage picture_of(const wxTopLevelWindow& window, const wxRect& area) {
    const wxPoint at = area.GetPosition() - window.GetScreenPosition();
    GdkPixbuf* const shown = gdk_pixbuf_get_from_window(gtk_widget_get_window(window.GetHandle()), at.x, at.y,
                                                        area.width, area.height);
    wxImage picture(area.GetSize());
    for (int y = 0; y < area.height; ++y)
        for (int x = 0; x < area.width; ++x) {
            const guchar* const pixel = gdk_pixbuf_read_pixels(shown) + y * gdk_pixbuf_get_rowstride(shown) +
                                        x * gdk_pixbuf_get_n_channels(shown);
            picture.SetRGB(x, y, pixel[0], pixel[1], pixel[2]);
        }
    g_object_unref(shown);
    return picture;
}

/// How much more room, in pixels, a centred text may have on one side.
constexpr int off_centre = 2;

/// What the title bar's close button sends.
inline void send_close(wxTopLevelWindow& window) {
    GdkEvent* const event = gdk_event_new(GDK_DELETE);
    event->any.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(window.GetHandle())));
    gdk_event_put(event);
    gdk_event_free(event);
}

/// A top-level window of the host's.
class HostWindow {
  public:
    HostWindow() {
        gtk_window_set_default_size(GTK_WINDOW(window_), 400, 300);
        gtk_widget_show(window_);
        while (width() != 400) wxYield();
    }
    ~HostWindow() { destroy(); }
    HWND handle() const { return reinterpret_cast<HWND>(gtk_widget_get_window(window_)); }
    int width() const { return gdk_window_get_width(gtk_widget_get_window(window_)); }
    bool owns(const wxTopLevelWindow& window) const {
        return gtk_window_get_transient_for(GTK_WINDOW(window.GetHandle())) == GTK_WINDOW(window_);
    }
    void resize(int width, int height) { gtk_window_resize(GTK_WINDOW(window_), width, height); }
    /// Whether something else lies over what the host shows.
    bool is_covered() const {
        GList* const children = gdk_window_peek_children(gtk_widget_get_window(window_));
        const auto is_visible = [](const void* child, const void*) -> gint {
            return !gdk_window_is_visible(GDK_WINDOW(child));
        };
        return g_list_find_custom(children, nullptr, is_visible) != nullptr;
    }
    void destroy() {
        if (window_ != nullptr) gtk_widget_destroy(window_);
        window_ = nullptr;
    }

  private:
    GtkWidget* window_ = gtk_window_new(GTK_WINDOW_TOPLEVEL);
};

/// What a line of the toolkit's tree shows.
inline std::wstring whole_text(const wxTreeCtrl& tree, const wxTreeItemId& item) {
    return tree.GetItemText(item).ToStdWstring();
}
/// How many messages a tree shows in a few seconds.
constexpr std::uint32_t much_traffic = 10000;

/// A native tree control of the host's.
class NativeControl : public CTreeCtrl {
  public:
    explicit NativeControl(const HostWindow* = nullptr) {}
    static bool is_expanded(const _TREEITEM* item) { return item->expanded; }
};

}  // namespace pgn_vistel::test

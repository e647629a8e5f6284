// A GTK program that shows the monitor's lines itself: native_tree_host [SECONDS].
//
// The monitor tree writes into a CTreeCtrl, the native tree control: lines in memory. This program draws them
// in a drawing area; a click on a line opens or closes it. No toolkit is started.

#include <gtk/gtk.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

#include "made_up_traffic.h"
#include "pgn_vistel/native_tree.h"
#include "pgn_vistel/pgn_tree.h"

namespace {

constexpr int line_height = 20, indent = 24, margin = 8;

struct Host {
    GtkWidget* area = nullptr;
    CTreeCtrl lines;
    PGN_VistelTree_c* monitor = nullptr;
    unsigned long drawn_changes = 0;
    std::uint32_t messages = 0;
};

/// The lines that can be seen, from top to bottom.
std::vector<_TREEITEM*> visible_lines(const CTreeCtrl& tree) {
    std::vector<_TREEITEM*> visible;
    for (auto* top = tree.GetChildItem(nullptr); top != nullptr; top = tree.GetNextSiblingItem(top)) {
        visible.push_back(top);
        if (!top->expanded) continue;
        for (auto* line = tree.GetChildItem(top); line != nullptr; line = tree.GetNextSiblingItem(line))
            visible.push_back(line);
    }
    return visible;
}

gboolean draw(GtkWidget* area, cairo_t* cairo, gpointer context) {
    const auto& host = *static_cast<Host*>(context);
    const NativeRect& rect = host.lines.GetRect();
    cairo_rectangle(cairo, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top);
    cairo_clip(cairo);
    PangoLayout* const layout = gtk_widget_create_pango_layout(area, nullptr);
    int y = rect.top;
    for (const _TREEITEM* const line : visible_lines(host.lines)) {
        const auto* const wide = reinterpret_cast<const char*>(line->text.data());
        char* const text = g_convert(wide, static_cast<gssize>(line->text.size() * sizeof(wchar_t)), "UTF-8",
                                     "WCHAR_T", nullptr, nullptr, nullptr);
        pango_layout_set_text(layout, text != nullptr ? text : "", -1);
        cairo_move_to(cairo, rect.left + (line->parent != nullptr ? indent : 0), y);
        pango_cairo_show_layout(cairo, layout);
        g_free(text);
        y += line_height;
    }
    g_object_unref(layout);
    return TRUE;
}

gboolean click(GtkWidget*, GdkEventButton* event, gpointer context) {
    auto& host = *static_cast<Host*>(context);
    const std::vector<_TREEITEM*> visible = visible_lines(host.lines);
    const double y = event->y - host.lines.GetRect().top;
    const auto hit = static_cast<std::size_t>(y / line_height);
    if (y >= 0 && hit < visible.size()) host.lines.Expand(visible[hit], !visible[hit]->expanded);
    return TRUE;
}

gboolean feed(gpointer context) {
    auto& host = *static_cast<Host*>(context);
    N2KMsg msg = made_up::traffic(host.messages++);
    PGN_VistelTree_PutMsg(host.monitor, &msg);  // the shape of a callback; monitor->PutMsg(&msg) is the same
    if (host.drawn_changes != host.lines.GetChangeCount()) gtk_widget_queue_draw(host.area);
    host.drawn_changes = host.lines.GetChangeCount();
    return G_SOURCE_CONTINUE;
}

/// Keeps the control's distances to the edges of the area.
void resized(GtkWidget*, GdkRectangle*, gpointer context) {
    static_cast<Host*>(context)->monitor->OnSize();
}

gboolean end(gpointer) {
    gtk_main_quit();
    return G_SOURCE_REMOVE;
}

gboolean close_requested(GtkWidget*, GdkEvent*, gpointer) {
    gtk_main_quit();
    return TRUE;  // the window goes below, after the monitor
}

}  // namespace

int main(int argc, char** argv) {
    gtk_init(&argc, &argv);
    Host host;
    GtkWidget* const window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_default_size(GTK_WINDOW(window), 420, 600);
    host.area = gtk_drawing_area_new();
    gtk_widget_add_events(host.area, GDK_BUTTON_PRESS_MASK);
    gtk_container_add(GTK_CONTAINER(window), host.area);
    gtk_widget_show_all(window);

    GdkWindow* const area_window = gtk_widget_get_window(host.area);
    host.lines.MoveWindow({margin, margin, gdk_window_get_width(area_window) - margin,
                           gdk_window_get_height(area_window) - margin});
    constexpr unsigned long most_streams = 200, flags = 0;
    host.monitor =
        new PGN_VistelTree_c(reinterpret_cast<HWND>(area_window), &host.lines, most_streams, flags);
    host.monitor->OnInit();

    g_signal_connect(host.area, "draw", G_CALLBACK(draw), &host);
    g_signal_connect(host.area, "button-press-event", G_CALLBACK(click), &host);
    g_signal_connect(host.area, "size-allocate", G_CALLBACK(resized), &host);
    g_signal_connect(window, "delete-event", G_CALLBACK(close_requested), nullptr);
    const guint feeding = g_timeout_add(50, feed, &host);
    if (argc > 1) g_timeout_add(static_cast<guint>(1000 * std::atof(argv[1])), end, nullptr);
    gtk_main();

    g_source_remove(feeding);
    const std::vector<_TREEITEM*> visible = visible_lines(host.lines);
    std::printf("%zu lines\n", visible.size());
    for (const _TREEITEM* const line : visible)
        std::printf("%s%ls\n", line->parent != nullptr ? "    " : "", line->text.c_str());
    delete host.monitor;
    gtk_widget_destroy(window);
}

#include "platform/platform.h"

#include <gtk/gtk.h>
#include <wx/artprov.h>
#include <wx/icon.h>
#include <wx/toplevel.h>

namespace pgn_vistel::platform {

Size client_size(NativeWindow window) {
    if (window == nullptr) return {};
    auto* const gdk_window = reinterpret_cast<GdkWindow*>(window);
    return {gdk_window_get_width(gdk_window), gdk_window_get_height(gdk_window)};
}

void set_program_icon(wxTopLevelWindow& window) {
    // Icons are found by name in the themes and art providers of the running program.
    const wxIcon icon = wxArtProvider::GetIcon("ICON_PROGRAM", wxART_FRAME_ICON);
    if (icon.IsOk()) window.SetIcon(icon);
}

void let_tab_pass(wxTopLevelWindow&) {}

void remove_padding(wxWindow& button) {
    GtkCssProvider* const provider = gtk_css_provider_new();
    gtk_css_provider_load_from_data(provider, "* { padding: 0; }", -1, nullptr);
    gtk_style_context_add_provider(gtk_widget_get_style_context(button.GetHandle()),
                                   GTK_STYLE_PROVIDER(provider), GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
    g_object_unref(provider);
}

}  // namespace pgn_vistel::platform

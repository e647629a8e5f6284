#include "platform/platform.h"

#include <gtk/gtk.h>
#include <wx/artprov.h>
#include <wx/icon.h>
#include <wx/nativewin.h>
#include <wx/toplevel.h>

namespace pgn_vistel::platform {

namespace {

// A host's window handle is the GdkWindow of one of its realized widgets.
GdkWindow* gdk_window(HWND window) {
    return reinterpret_cast<GdkWindow*>(window);
}

}  // namespace

Size client_size(HWND window) {
    if (window == nullptr) return {};
    return {gdk_window_get_width(gdk_window(window)), gdk_window_get_height(gdk_window(window))};
}

wxWindow* wrap_native_window(HWND window) {
    if (window == nullptr) return nullptr;
    auto* const container = new wxNativeContainerWindow(gdk_window(window));
    if (container->GetHandle() != nullptr) return container;
    delete container;
    return nullptr;
}

std::wstring product_name(HINSTANCE) {
    return {};  // an ELF module carries no product name
}

void set_program_icon(wxTopLevelWindow& window) {
    // Icons are found by name in the themes and art providers of the running program.
    const wxIcon icon = wxArtProvider::GetIcon("ICON_PROGRAM", wxART_FRAME_ICON);
    if (icon.IsOk()) window.SetIcon(icon);
}

void remove_padding(wxWindow& button) {
    GtkCssProvider* const provider = gtk_css_provider_new();
    gtk_css_provider_load_from_data(provider, "* { padding: 0; }", -1, nullptr);
    gtk_style_context_add_provider(gtk_widget_get_style_context(button.GetHandle()),
                                   GTK_STYLE_PROVIDER(provider), GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
    g_object_unref(provider);
}

}  // namespace pgn_vistel::platform

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

/// Stands for a host's window: one pane for each, which goes when the host's window does.
class HostPane final : public wxNativeContainerWindow {
  public:
    explicit HostPane(GdkWindow* host)
        : wxNativeContainerWindow(host), host_(GDK_WINDOW(g_object_ref(host))) {
        Hide();  // it lies within the host's window and would cover what is there
        g_object_set_data(G_OBJECT(host_), key, this);
        gdk_window_get_user_data(host_, &widget_);
        if (widget_ != nullptr) unrealize_ = g_signal_connect(widget_, "unrealize", G_CALLBACK(leave), this);
    }
    ~HostPane() override {
        if (widget_ != nullptr) g_signal_handler_disconnect(widget_, unrealize_);
        g_object_set_data(G_OBJECT(host_), key, nullptr);
        g_object_unref(host_);
    }
    static HostPane* of(GdkWindow* host) {
        return static_cast<HostPane*>(g_object_get_data(G_OBJECT(host), key));
    }

  private:
    static void leave(GtkWidget*, HostPane* pane) { delete pane; }

    static constexpr const char* key = "pgn-vistel-pane";
    GdkWindow* host_;
    gpointer widget_ = nullptr;
    gulong unrealize_ = 0;
};

}  // namespace

Size client_size(HWND window) {
    if (window == nullptr) return {};
    return {gdk_window_get_width(gdk_window(window)), gdk_window_get_height(gdk_window(window))};
}

wxWindow* wrap_native_window(HWND window) {
    if (window == nullptr) return nullptr;
    if (HostPane* const known = HostPane::of(gdk_window(window))) return known;
    auto* const pane = new HostPane(gdk_window(window));
    if (pane->GetHandle() != nullptr) return pane;
    delete pane;
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

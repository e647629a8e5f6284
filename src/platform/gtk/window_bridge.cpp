#include <dlfcn.h>
#include <gtk/gtk.h>
#include <wx/app.h>
#include <wx/init.h>
#include <wx/nativewin.h>
#include <wx/toplevel.h>
#include <wx/utils.h>

#include "platform/platform.h"

namespace pgn_vistel::platform {

namespace {

/// The toolkit in a host that does not run it itself: it works inside the host's own main loop.
class Toolkit {
  public:
    Toolkit() {
        if (wxTheApp != nullptr) return;
        // What it registers with GTK stays for the life of the process, so its code must stay, too: the part
        // that has the windows (wxBell), which keeps the others.
        Dl_info toolkit;
        if (dladdr(reinterpret_cast<const void*>(&wxBell), &toolkit) == 0 ||
            dlopen(toolkit.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE) == nullptr)
            return;
        wxApp::SetInstance(new App);
        started_ = wxInitialize();
    }
    ~Toolkit() {
        if (started_) wxUninitialize();
    }
    static bool is_running() { return wxTheApp != nullptr; }

  private:
    class App final : public wxApp {
      public:
        App() { SetExitOnFrameDelete(false); }  // the main loop is the host's
        /// Without what the toolkit would do to a program of its own: GTK runs already, and would warn, and
        /// the environment and the conversion of file names are the host's.
        bool Initialize(int& argc, wxChar** argv) override {
            // NOLINTNEXTLINE(bugprone-parent-virtual-call): wxApp's own is what is left out
            if (!wxAppBase::Initialize(argc, argv)) return false;
            wxConvCurrent = &wxConvUTF8;
            g_type_class_ref(GTK_TYPE_WIDGET);  // CleanUp() gives it back
            WakeUpIdle();
            return true;
        }
    };
    bool started_ = false;
};

// A host's window handle is the GdkWindow of one of its realized widgets.
GdkWindow* gdk_window(NativeWindow window) {
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
        // A toolkit window listens to the clock of its top-level window, which usually ends with it; this one
        // is the host's and goes on.
        if (GdkFrameClock* const clock = gdk_window_get_frame_clock(host_))
            g_signal_handlers_disconnect_by_data(clock, static_cast<wxWindowGTK*>(this));
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

wxWindow* wrap_native_window(NativeWindow window) {
    if (window == nullptr) return nullptr;
    static const Toolkit toolkit;
    if (!Toolkit::is_running()) return nullptr;
    if (HostPane* const known = HostPane::of(gdk_window(window))) return known;
    auto* const pane = new HostPane(gdk_window(window));
    if (pane->GetHandle() != nullptr) return pane;
    delete pane;
    return nullptr;
}

void keep_above(wxTopLevelWindow& window, NativeWindow owner) {
    gpointer widget = nullptr;
    gdk_window_get_user_data(gdk_window(owner), &widget);
    GtkWidget* const top = widget != nullptr ? gtk_widget_get_toplevel(GTK_WIDGET(widget)) : nullptr;
    if (GTK_IS_WINDOW(top)) gtk_window_set_transient_for(GTK_WINDOW(window.GetHandle()), GTK_WINDOW(top));
}

}  // namespace pgn_vistel::platform

#include <wx/app.h>
#include <wx/evtloop.h>
#include <wx/init.h>
#include <wx/msw/private.h>
#include <wx/nativewin.h>
#include <wx/toplevel.h>

#include <memory>

#include "platform/platform.h"
#include "platform/win32/own_thread.h"

namespace pgn_vistel::platform {

namespace {

/// Stands for a host's window, whose procedure stays as it is: no message of that window comes here. It is
/// among the toolkit's top-level windows, so that a modal dialog disables the host's window, too.
class HostPane final : public wxNativeContainerWindow {
  public:
    explicit HostPane(HWND host) {
        SetHWND(host);
        wxTopLevelWindows.Append(this);
    }
    ~HostPane() override {
        DestroyChildren();
        SetHWND(nullptr);  // or it would be destroyed
    }
    /// What the toolkit wants to close or end, the host does when it likes.
    bool Destroy() override { return false; }

    /// The first pane that `holds(its window)`; null for none.
    template <class Condition>
    static HostPane* find(Condition holds) {
        for (wxWindow* const window : wxTopLevelWindows)
            if (auto* const pane = dynamic_cast<HostPane*>(window); pane != nullptr && holds(pane->GetHWND()))
                return pane;
        return nullptr;
    }
};

/// The toolkit in a host that does not run it itself. It works inside the host's own message loops, of which
/// it asks nothing: hooks of the host's thread see each message that a loop takes from the queue, and a timer
/// fires when the queue is empty.
class Toolkit {
  public:
    Toolkit() {
        const DWORD thread = GetCurrentThreadId();
        window_hook_ = SetWindowsHookExW(WH_CBT, see_window, nullptr, thread);
        if (wxTheApp != nullptr) return;
        HINSTANCE module = nullptr;
        GetModuleHandleExW(
            GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
            reinterpret_cast<const wchar_t*>(&idle_timer_), &module);
        wxSetInstance(module);
        wxApp::SetInstance(new App);
        started_ = wxInitialize();
        if (!started_) return;
        loop_ = std::make_unique<wxGUIEventLoop>();
        wxEventLoopBase::SetActive(loop_.get());
        message_hook_ = SetWindowsHookExW(WH_GETMESSAGE, take_message, nullptr, thread);
    }
    ~Toolkit() {
        // Of a process that ends, other threads may be gone with what they had locked, and the host's
        // objects, too.
        if (is_process_ending()) return;
        UnhookWindowsHookEx(window_hook_);
        if (!started_) return;
        UnhookWindowsHookEx(message_hook_);
        stop_idle_timer();
        wxEventLoopBase::SetActive(nullptr);
        while (HostPane* const pane = HostPane::find([](HWND) { return true; })) delete pane;
        wxUninitialize();
        loop_.reset();
    }
    Toolkit(const Toolkit&) = delete;
    Toolkit& operator=(const Toolkit&) = delete;

    static bool is_running() { return wxTheApp != nullptr; }

  private:
    class App final : public wxApp {
      public:
        App() {
            SetExitOnFrameDelete(false);  // the message loop is the host's
            // The end of the session is between it and the host.
            Bind(wxEVT_QUERY_END_SESSION, [](wxCloseEvent&) {});
            Bind(wxEVT_END_SESSION, [](wxCloseEvent&) {});
        }
    };

    static bool is_process_ending() {
        const auto answer = reinterpret_cast<BOOLEAN(WINAPI*)()>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll"), "RtlDllShutdownInProgress")));
        return answer != nullptr && answer();
    }
    /// Whether messages are taken by a loop of the host's, and not by one of a modal dialog of the toolkit's.
    static bool is_hosts_loop() { return loop_ != nullptr && wxEventLoopBase::GetActive() == loop_.get(); }

    static bool is_input(const MSG& message) {
        return (message.message >= WM_KEYFIRST && message.message <= WM_KEYLAST) ||
               (message.message >= WM_MOUSEFIRST && message.message <= WM_MOUSELAST);
    }
    static bool is_for_toolkit(const MSG& message) {
        return message.hwnd != nullptr && wxFindWinFromHandle(GetAncestor(message.hwnd, GA_ROOT)) != nullptr;
    }

    static LRESULT CALLBACK take_message(int code, WPARAM removal, LPARAM data) {
        auto& message = *reinterpret_cast<MSG*>(data);
        if (code == HC_ACTION && removal == PM_REMOVE && is_hosts_loop()) {
            const bool is_idle_timer =
                message.message == WM_TIMER && message.hwnd == nullptr && message.wParam == idle_timer_;
            if (is_input(message) && is_for_toolkit(message) && loop_->PreProcessMessage(&message)) {
                message.message = WM_NULL;  // which is how a hook takes a message away
                message.wParam = 0;
                message.lParam = 0;
            }
            if (!is_idle_timer && idle_timer_ == 0)
                idle_timer_ = SetTimer(nullptr, 0, USER_TIMER_MINIMUM, be_idle);
        }
        return CallNextHookEx(nullptr, code, removal, data);
    }

    static void CALLBACK be_idle(HWND, UINT, UINT_PTR, DWORD) {
        if (is_hosts_loop()) {
            wxTheApp->ProcessPendingEvents();
            if (wxTheApp->ProcessIdle()) return;  // and wants to be called again
        }
        stop_idle_timer();
    }
    static void stop_idle_timer() {
        if (idle_timer_ != 0) KillTimer(nullptr, idle_timer_);
        idle_timer_ = 0;
    }

    /// A window that is destroyed takes along those that it owns, and they go first: this is the last moment
    /// at which the toolkit can do it itself.
    static LRESULT CALLBACK see_window(int code, WPARAM window, LPARAM data) {
        if (code == HCBT_DESTROYWND) {
            const auto doomed = reinterpret_cast<HWND>(window);
            const auto goes = [doomed](HWND host) { return host == doomed || IsChild(doomed, host); };
            while (HostPane* const pane = HostPane::find(goes)) delete pane;
        }
        return CallNextHookEx(nullptr, code, window, data);
    }

    bool started_ = false;
    HHOOK message_hook_ = nullptr, window_hook_ = nullptr;
    static inline std::unique_ptr<wxGUIEventLoop> loop_;
    static inline UINT_PTR idle_timer_ = 0;
};

}  // namespace

wxWindow* wrap_native_window(NativeWindow window) {
    if (!is_of_this_thread(window)) return nullptr;
    static const Toolkit toolkit;
    if (!Toolkit::is_running()) return nullptr;
    HostPane* const known = HostPane::find([window](HWND host) { return host == window; });
    return known != nullptr ? known : new HostPane(window);
}

void keep_above(wxTopLevelWindow& window, NativeWindow owner) {
    SetWindowLongPtrW(window.GetHandle(), GWLP_HWNDPARENT,
                      reinterpret_cast<LONG_PTR>(GetAncestor(owner, GA_ROOT)));
}

}  // namespace pgn_vistel::platform

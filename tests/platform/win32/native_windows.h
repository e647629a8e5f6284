#pragma once

#include <wx/dcmemory.h>
#include <wx/dcscreen.h>
#include <wx/image.h>
#include <wx/msw/wrapwin.h>
#include <wx/toplevel.h>
#include <wx/treectrl.h>
// After it:
#include <commctrl.h>

#include "pgn_vistel/native.h"
#include "pgn_vistel/native_tree.h"

/// What the tests of windows need of the platform: windows of a host that are not the toolkit's.
namespace pgn_vistel::test {

/// The name stands in the program's version information (product_name.rc).
#define PGN_VISTEL_TEST_PRODUCT_NAME(name)

/// The program itself.
inline HINSTANCE program() {
    return GetModuleHandleW(nullptr);
}
/// A handle that is none of a loaded module.
inline HINSTANCE module_without_name() {
    static int no_module;
    return reinterpret_cast<HINSTANCE>(&no_module);
}

/// Waits until the display has done what it was asked for.
inline void synchronise() {
    Sleep(5);
}

/// What a window shows, of an area of the screen.
inline wxImage picture_of(const wxTopLevelWindow&, const wxRect& area) {
    wxScreenDC screen;
    wxBitmap picture(area.GetSize());
    wxMemoryDC(picture).Blit(wxPoint(), area.GetSize(), &screen, area.GetPosition());
    return picture.ConvertToImage();
}

/// How much more room, in pixels, a centred text may have on one side: Wine's margins differ.
constexpr int off_centre = 6;

/// What the title bar's close button sends.
inline void send_close(wxTopLevelWindow& window) {
    PostMessageW(window.GetHandle(), WM_SYSCOMMAND, SC_CLOSE, 0);
}

/// A top-level window of the host's. Its size is that of its client area.
class HostWindow {
  public:
    HostWindow() {
        resize(400, 300);
        ShowWindow(window_, SW_SHOW);
    }
    ~HostWindow() { destroy(); }
    HWND handle() const { return window_; }
    int width() const {
        RECT area{};
        GetClientRect(window_, &area);
        return area.right;
    }
    bool owns(const wxTopLevelWindow& window) const {
        return GetWindow(window.GetHandle(), GW_OWNER) == window_;
    }
    void resize(int width, int height) {
        RECT area{0, 0, width, height};
        AdjustWindowRect(&area, WS_OVERLAPPEDWINDOW, FALSE);
        SetWindowPos(window_, nullptr, 0, 0, area.right - area.left, area.bottom - area.top,
                     SWP_NOMOVE | SWP_NOZORDER);
    }
    /// Whether something else lies over what the host shows.
    bool is_covered() const {
        for (HWND child = GetWindow(window_, GW_CHILD); child != nullptr;
             child = GetWindow(child, GW_HWNDNEXT))
            if (IsWindowVisible(child)) return true;
        return false;
    }
    void destroy() {
        if (window_ != nullptr) DestroyWindow(window_);
        window_ = nullptr;
    }

  private:
    // Of no class that the toolkit registers.
    HWND window_ = CreateWindowExW(0, L"#32770", L"Host", WS_OVERLAPPEDWINDOW, 600, 40, 400, 300, nullptr,
                                   nullptr, nullptr, nullptr);
};

/// What a line of the toolkit's tree shows, of which the toolkit reads the first 511 characters.
inline std::wstring whole_text(const wxTreeCtrl& tree, const wxTreeItemId& item) {
    return CTreeCtrl(tree.GetHandle()).GetItemText(static_cast<_TREEITEM*>(item.GetID()));
}
/// How many messages a tree shows in a few seconds.
constexpr std::uint32_t much_traffic = 500;

/// The window of a native tree control, in a host's or at the top.
class ControlWindow {
  public:
    explicit ControlWindow(const HostWindow* host) {
        InitCommonControls();
        window_ =
            CreateWindowExW(0, WC_TREEVIEWW, L"", host != nullptr ? WS_CHILD | WS_VISIBLE : WS_POPUP, 0, 0,
                            100, 100, host != nullptr ? host->handle() : nullptr, nullptr, nullptr, nullptr);
    }
    ~ControlWindow() { DestroyWindow(window_); }
    ControlWindow(const ControlWindow&) = delete;
    ControlWindow& operator=(const ControlWindow&) = delete;

  protected:
    HWND window_;
};

/// A native tree control of the host's.
class NativeControl : private ControlWindow, public CTreeCtrl {
  public:
    explicit NativeControl(const HostWindow* host = nullptr) : ControlWindow(host), CTreeCtrl(window_) {}
    bool is_expanded(_TREEITEM* item) const {
        return (SendMessageW(window_, TVM_GETITEMSTATE, reinterpret_cast<WPARAM>(item), TVIS_EXPANDED) &
                TVIS_EXPANDED) != 0;
    }
};

}  // namespace pgn_vistel::test

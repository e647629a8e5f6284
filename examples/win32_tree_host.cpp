// A Win32 program with the monitor's lines in a tree control of its own: win32_tree_host [SECONDS].
//
// The control is a SysTreeView32, which the program creates and the monitor tree writes into. No toolkit is
// started.

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "made_up_traffic.h"
#include "pgn_vistel/native_tree.h"
#include "pgn_vistel/pgn_tree.h"
#include "tree_lines.h"

namespace {

constexpr int margin = 8;

struct Host {
    HWND control = nullptr;
    std::unique_ptr<CTreeCtrl> lines;
    std::unique_ptr<PGN_VistelTree_c> monitor;
    std::uint32_t messages = 0;
};

enum Timer : UINT_PTR { feeding = 1, ending };

void open_monitor(HWND window, Host& host) {
    RECT area;
    GetClientRect(window, &area);
    host.control = CreateWindowW(WC_TREEVIEWW, L"", WS_CHILD | WS_VISIBLE | WS_BORDER | WS_TABSTOP, margin,
                                 margin, area.right - 2 * margin, area.bottom - 2 * margin, window, nullptr,
                                 GetModuleHandleW(nullptr), nullptr);
    host.lines = std::make_unique<CTreeCtrl>(host.control);
    constexpr unsigned long most_streams = 200, flags = 0;
    host.monitor = std::make_unique<PGN_VistelTree_c>(window, host.lines.get(), most_streams, flags);
    host.monitor->OnInit();
}

void print_line(const wchar_t* text, int depth) {
    char utf8[4096] = "";
    WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8, sizeof utf8, nullptr, nullptr);
    std::printf("%*s%s\n", 4 * depth, "", utf8);
}

LRESULT CALLBACK handle(HWND window, UINT message, WPARAM wide, LPARAM data) {
    auto* const host = reinterpret_cast<Host*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    switch (message) {
        case WM_SIZE:
            if (host != nullptr && host->monitor)
                host->monitor->OnSize();  // keeps the distances to the edges
            return 0;
        case WM_TIMER:
            if (wide == feeding) {
                N2KMsg msg = made_up::traffic(host->messages++);
                // The shape of a callback; monitor->PutMsg(&msg) is the same.
                PGN_VistelTree_PutMsg(host->monitor.get(), &msg);
            } else {
                SendMessageW(window, WM_CLOSE, 0, 0);
            }
            return 0;
        case WM_CLOSE:
            host->monitor.reset();  // before the control
            read_lines(host->control, TreeView_GetRoot(host->control), print_line);
            DestroyWindow(window);
            return 0;
        case WM_DESTROY: PostQuitMessage(0); return 0;
        default: return DefWindowProcW(window, message, wide, data);
    }
}

}  // namespace

int main(int argc, char** argv) {
    InitCommonControls();
    Host host;
    WNDCLASSW kind{};
    kind.lpfnWndProc = handle;
    kind.hInstance = GetModuleHandleW(nullptr);
    kind.hCursor = LoadCursor(nullptr, IDC_ARROW);
    kind.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
    kind.lpszClassName = L"Chart Table";
    RegisterClassW(&kind);
    HWND const window = CreateWindowW(kind.lpszClassName, L"Chart Table", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT,
                                      CW_USEDEFAULT, 420, 600, nullptr, nullptr, kind.hInstance, nullptr);
    open_monitor(window, host);
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&host));
    ShowWindow(window, SW_SHOW);
    SetTimer(window, feeding, 50, nullptr);
    if (argc > 1) SetTimer(window, ending, static_cast<UINT>(1000 * std::atof(argv[1])), nullptr);

    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return 0;
}

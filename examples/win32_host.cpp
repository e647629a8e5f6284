// A Win32 program with the monitor dialog: win32_host [SECONDS].
//
// Windows and message loop are the program's own; the library starts the toolkit that its dialogs are made of
// by itself. The compiler needs the toolkit's headers for the class that is created here, and that is all.

#include <windows.h>

#include <cstdio>
#include <cstdlib>

#include "made_up_traffic.h"
#include "pgn_vistel/pgn_dlg.h"

namespace {

struct Host {
    PGN_VistelDlg_c* monitor = nullptr;
    std::uint32_t messages = 0;
    int shown = 0, paused = 0, refused = 0;
};

enum Timer : UINT_PTR { feeding = 1, ending };

/// The dialog lies above the host's window. Its title is the product name in the version information of a
/// module, here of the program (win32_host.rc).
PGN_VistelDlg_c* open_monitor(HWND window) {
    constexpr unsigned long most_streams = 200, flags = 0;
    auto* const monitor = new PGN_VistelDlg_c;
    monitor->SetModule(GetModuleHandleW(nullptr));
    monitor->Create(window, most_streams, flags);
    return monitor;
}

void feed(Host& host) {
    N2KMsg msg = made_up::traffic(host.messages++);
    switch (host.monitor->PutMsg(&msg)) {
        case 0: ++host.shown; break;   // or filtered out by its source
        case 2: ++host.paused; break;  // the user has pressed Pause
        default: ++host.refused;       // no room for another stream, or there is no dialog
    }
}

void report(const Host& host) {
    char title[64] = "";
    GetWindowTextA(static_cast<HWND>(host.monitor->GetHandle()), title, sizeof title);
    std::printf("title: %s\n", title);
    std::printf("%d shown, %d paused, %d refused\n", host.shown, host.paused, host.refused);
}

LRESULT CALLBACK handle(HWND window, UINT message, WPARAM wide, LPARAM data) {
    auto* const host = reinterpret_cast<Host*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    switch (message) {
        case WM_COMMAND: host->monitor->Show(); return 0;  // the user's close button only hides it
        case WM_TIMER:
            if (wide == feeding)
                feed(*host);
            else
                SendMessageW(window, WM_CLOSE, 0, 0);
            return 0;
        case WM_CLOSE:
            report(*host);
            delete host->monitor;  // before the window that it lies above, with which it would go
            host->monitor = nullptr;
            DestroyWindow(window);
            return 0;
        case WM_DESTROY: PostQuitMessage(0); return 0;
        default: return DefWindowProcW(window, message, wide, data);
    }
}

HWND open_window(HINSTANCE program, Host& host) {
    WNDCLASSW kind{};
    kind.lpfnWndProc = handle;
    kind.hInstance = program;
    kind.hCursor = LoadCursor(nullptr, IDC_ARROW);
    kind.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
    kind.lpszClassName = L"Chart Table";
    RegisterClassW(&kind);
    HWND const window = CreateWindowW(kind.lpszClassName, L"Chart Table", WS_OVERLAPPEDWINDOW, 20, 20, 300,
                                      140, nullptr, nullptr, program, nullptr);
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&host));
    CreateWindowW(L"BUTTON", L"Monitor", WS_CHILD | WS_VISIBLE | WS_TABSTOP, 10, 10, 120, 30, window, nullptr,
                  program, nullptr);
    ShowWindow(window, SW_SHOW);
    return window;
}

}  // namespace

int main(int argc, char** argv) {
    Host host;
    HWND const window = open_window(GetModuleHandleW(nullptr), host);
    host.monitor = open_monitor(window);
    host.monitor->Show();
    SetTimer(window, feeding, 50, nullptr);
    if (argc > 1) SetTimer(window, ending, static_cast<UINT>(1000 * std::atof(argv[1])), nullptr);

    // Any loop will do: the dialog's keys and its idle work need nothing in it.
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (IsDialogMessageW(window, &message)) continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return 0;
}

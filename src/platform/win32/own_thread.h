#pragma once

#include <windows.h>

namespace pgn_vistel::platform {

/// Whether a handle is that of a window of the calling thread. What is no window is nobody's. Windows of
/// other threads have other message queues, and in those of other processes addresses mean something else.
inline bool is_of_this_thread(HWND window) {
    return GetWindowThreadProcessId(window, nullptr) == GetCurrentThreadId();
}

}  // namespace pgn_vistel::platform

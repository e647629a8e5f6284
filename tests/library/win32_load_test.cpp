// The library in a Win32 host with a message loop of its own: it comes and goes while the host's window lives
// on, under the user's keys and mouse.

#include <windows.h>
// After it:
#include <commctrl.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <future>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "loaded_module.h"

namespace pgn_vistel::test {
namespace {

/// The host's message loop until a condition holds; false when it does not within the limit.
bool run_until(const std::function<bool()>& holds, DWORD milliseconds = 10000) {
    const DWORD start = GetTickCount();
    while (!holds()) {
        if (GetTickCount() - start > milliseconds) return false;
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        Sleep(1);
    }
    return true;
}
void run(DWORD milliseconds) {
    run_until([] { return false; }, milliseconds);
}

std::wstring text_of(HWND window) {
    wchar_t text[256] = L"";
    GetWindowTextW(window, text, 256);
    return text;
}
std::wstring class_of(HWND window) {
    wchar_t name[256] = L"";
    GetClassNameW(window, name, 256);
    return name;
}

using Windows = std::vector<HWND>;
BOOL CALLBACK add_window(HWND window, LPARAM found) {
    reinterpret_cast<Windows*>(found)->push_back(window);
    return TRUE;
}
/// The windows of this thread, or those within one.
Windows windows(HWND within = nullptr) {
    Windows found;
    if (within != nullptr)
        EnumChildWindows(within, add_window, reinterpret_cast<LPARAM>(&found));
    else
        EnumThreadWindows(GetCurrentThreadId(), add_window, reinterpret_cast<LPARAM>(&found));
    return found;
}
template <class Condition>
HWND first_of(const Windows& all, Condition fits) {
    const auto found = std::find_if(all.begin(), all.end(), fits);
    return found != all.end() ? *found : nullptr;
}
HWND visible(const wchar_t* title) {
    return first_of(windows(),
                    [title](HWND each) { return IsWindowVisible(each) && text_of(each) == title; });
}
HWND child(HWND window, const wchar_t* kind) {
    return first_of(windows(window), [kind](HWND each) { return class_of(each) == kind; });
}

void press(WORD key) {
    INPUT input[2]{};
    for (INPUT& each : input) {
        each.type = INPUT_KEYBOARD;
        each.ki.wVk = key;
    }
    input[1].ki.dwFlags = KEYEVENTF_KEYUP;
    SendInput(2, input, sizeof input[0]);
}

class HostWindow {
  public:
    HostWindow() { ShowWindow(handle, SW_SHOW); }
    ~HostWindow() {
        if (IsWindow(handle)) DestroyWindow(handle);
    }
    const HWND handle = CreateWindowW(L"#32770", L"Host", WS_OVERLAPPEDWINDOW, 40, 40, 300, 200, nullptr,
                                      nullptr, nullptr, nullptr);
};

/// Objects of GDI by the table that it shares with the process: Wine does not count them (GetGuiResources).
std::size_t drawing_objects() {
    constexpr std::size_t place_of_table = 0x94, rows = 0x4000;
    struct Row {
        std::uint64_t object;
        std::uint16_t process, count, unique;
        std::uint8_t type, flags;
        std::uint64_t data;
    };
    const auto process_block = reinterpret_cast<const char*(WINAPI*)()>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll"), "RtlGetCurrentPeb")));
    const Row* table;
    std::memcpy(&table, process_block() + place_of_table, sizeof table);
    return static_cast<std::size_t>(
        std::count_if(table, table + rows, [](const Row& row) { return row.type != 0; }));
}

/// Handles of the kernel, which Wine does not count either (GetProcessHandleCount).
std::size_t kernel_handles() {
    std::size_t count = 0;
    DWORD flags;
    for (std::uintptr_t value = 4; value < 0x4000; value += 4)
        if (GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags)) ++count;
    return count;
}

/// Memory that is in use on the heap, in bytes.
std::size_t memory() {
    std::size_t sum = 0;
    PROCESS_HEAP_ENTRY block{};
    while (HeapWalk(GetProcessHeap(), &block))
        if ((block.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) sum += block.cbData;
    return sum;
}

class Win32Host : public testing::Test {
  protected:
    void load() { plugin_.emplace(PLUGIN); }
    void unload() {
        EXPECT_TRUE(is_loaded(LIBRARY));
        plugin_.reset();
        EXPECT_FALSE(is_loaded(LIBRARY));
    }
    template <class Result = void, class... Arguments>
    Result call(const char* name, Arguments... arguments) {
        return plugin_->function<Result(Arguments...)>(name)(arguments...);
    }
    HWND open(HWND parent, HINSTANCE module = nullptr, const wchar_t* title = L"PGN Vistel") {
        call("open_monitor", parent, module);
        EXPECT_TRUE(run_until([&] { return visible(title) != nullptr; }));
        return visible(title);
    }

    HostWindow host_;
    std::optional<LoadedModule> plugin_;
};

TEST_F(Win32Host, OutlivesTheLibrary) {
    constexpr int rounds = 20, warm = 10;
    std::size_t objects_before = 0, windows_before = 0, handles_before = 0, memory_before = 0;
    for (int round = 1; round <= rounds; ++round) {
        SCOPED_TRACE(round);
        load();
        HWND const monitor = open(host_.handle);
        EXPECT_EQ(GetWindow(monitor, GW_OWNER), host_.handle);
        EXPECT_EQ(call<int>("put_message", std::uint8_t{1}), 0);
        run(20);
        EXPECT_EQ(SendMessageW(child(monitor, WC_TREEVIEWW), TVM_GETCOUNT, 0, 0), 9);
        if (round % 2 == 0) call("close_monitor");  // or it goes with the library
        unload();
        EXPECT_FALSE(IsWindow(monitor));
        run(20);  // no hook or timer is left
        if (round != warm) continue;
        objects_before = drawing_objects();
        windows_before = windows().size();
        handles_before = kernel_handles();
        memory_before = memory();
    }
    EXPECT_EQ(drawing_objects(), objects_before);
    EXPECT_EQ(windows().size(), windows_before);
    EXPECT_LE(kernel_handles(), handles_before + (rounds - warm) * 9) << "8 of thread runtimes, 1 of Wine";
    EXPECT_LT(memory(), memory_before + (rounds - warm) * 500) << "what the loader and the runtime keep";
}

TEST_F(Win32Host, GoesFirst) {
    load();
    HWND const monitor = open(host_.handle);
    EXPECT_EQ(call<int>("put_message", std::uint8_t{1}), 0);
    DestroyWindow(host_.handle);
    EXPECT_FALSE(IsWindow(monitor));
    run(50);
    HostWindow other;
    EXPECT_NE(open(other.handle), nullptr) << "the library works on";
    call("close_monitor");
    unload();
}

TEST_F(Win32Host, PassesKeysToTheMonitor) {
    load();
    HWND const monitor = open(host_.handle);
    HWND const filter = child(monitor, L"Edit");
    SetForegroundWindow(monitor);
    SetFocus(filter);
    for (const int key : {VK_END, VK_BACK, VK_BACK, int{'2'}, VK_TAB}) {
        press(static_cast<WORD>(key));
        run(30);
    }
    EXPECT_TRUE(run_until([&] { return GetFocus() != filter; })) << "Tab goes on";
    EXPECT_EQ(text_of(filter), L"2");
    EXPECT_EQ(call<int>("put_message", std::uint8_t{1}), 0);
    EXPECT_EQ(SendMessageW(child(monitor, WC_TREEVIEWW), TVM_GETCOUNT, 0, 0), 0) << "filtered out";
    EXPECT_EQ(call<int>("put_message", std::uint8_t{2}), 0);
    EXPECT_EQ(SendMessageW(child(monitor, WC_TREEVIEWW), TVM_GETCOUNT, 0, 0), 9);
    PostMessageW(monitor, WM_SYSCOMMAND, SC_CLOSE, 0);
    EXPECT_TRUE(run_until([&] { return !IsWindowVisible(monitor); }));
    EXPECT_TRUE(IsWindow(monitor));
    call("close_monitor");
    unload();
}

/// What the user does in a modal dialog, a step at a time.
struct ModalUser {
    HWND host;
    std::vector<HWND> focused{};
    bool host_was_enabled = true;

    static inline ModalUser* acting = nullptr;
    static void CALLBACK act(HWND, UINT, UINT_PTR timer, DWORD) {
        constexpr std::size_t tabs = 30;
        HWND const dialog = visible(L"Unit Selection");
        if (dialog == nullptr) return;
        if (acting->focused.empty()) SetForegroundWindow(dialog);
        acting->focused.push_back(GetFocus());
        acting->host_was_enabled = IsWindowEnabled(acting->host);
        if (acting->focused.size() <= tabs) return press(VK_TAB);
        KillTimer(nullptr, timer);
        PostMessageW(dialog, WM_SYSCOMMAND, SC_CLOSE, 0);
    }
};

TEST_F(Win32Host, WaitsForAModalDialog) {
    load();
    ModalUser user{host_.handle};
    ModalUser::acting = &user;
    SetTimer(nullptr, 0, 50, ModalUser::act);
    call("choose_units", host_.handle);
    EXPECT_FALSE(user.host_was_enabled);
    EXPECT_TRUE(IsWindowEnabled(host_.handle));
    // Through 22 choices and 3 buttons, and from the first one on again.
    const std::vector<HWND> round(user.focused.begin() + 1, user.focused.begin() + 26);
    EXPECT_EQ(std::set<HWND>(round.begin(), round.end()).size(), round.size());
    EXPECT_EQ(user.focused[26], user.focused[1]);
    unload();
}

HWND tree_control() {
    return CreateWindowW(WC_TREEVIEWW, L"", WS_POPUP, 0, 0, 90, 90, nullptr, nullptr, nullptr, nullptr);
}

TEST_F(Win32Host, MayHandOverWhatIsNoWindow) {
    load();
    std::promise<HWND> made;
    std::thread other_thread([&] {
        made.set_value(tree_control());
        for (MSG message; GetMessageW(&message, nullptr, 0, 0) > 0;) DispatchMessageW(&message);
    });
    HWND const others = made.get_future().get(), gone = tree_control();
    EXPECT_EQ(call<int>("put_in_tree", gone), 0);
    DestroyWindow(gone);
    static int no_window;
    const std::pair<const char*, HWND> cases[] = {{"none", nullptr},
                                                  {"destroyed", gone},
                                                  {"another process's", GetDesktopWindow()},
                                                  {"another thread's", others},
                                                  {"a pointer", reinterpret_cast<HWND>(&no_window)}};
    for (const auto& [name, window] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(call<int>("put_in_tree", window), -1);
        call("open_monitor", window, HINSTANCE{});
        EXPECT_EQ(call<int>("put_message", std::uint8_t{1}), -1);
        run(20);
        EXPECT_EQ(visible(L"PGN Vistel"), nullptr);
        call("close_monitor");
        call("choose_units", window);
    }
    PostThreadMessageW(GetWindowThreadProcessId(others, nullptr), WM_QUIT, 0, 0);
    other_thread.join();
    unload();
}

TEST_F(Win32Host, MayHandOverAModuleWithoutAName) {
    load();
    static int no_module;
    for (HINSTANCE const module : {GetModuleHandleA(PLUGIN), reinterpret_cast<HINSTANCE>(&no_module)}) {
        EXPECT_NE(open(host_.handle, module, L""), nullptr);
        call("close_monitor");
    }
    unload();
}

}  // namespace
}  // namespace pgn_vistel::test

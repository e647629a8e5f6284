// What Windows hands a program that is no text, and the console that it shares with others. VISTEL is the
// program.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <thread>

namespace vistel {
namespace {

/// The exit status of a command line, with its messages written to `messages`.
DWORD run(std::wstring line, HANDLE messages) {
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = start.hStdOutput = INVALID_HANDLE_VALUE;
    start.hStdError = messages;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(VISTEL, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &process))
        return GetLastError() + 1000;
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD status = 0;
    GetExitCodeProcess(process.hProcess, &status);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return status;
}

SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};

TEST(Arguments, AreText) {
    const std::pair<const wchar_t*, const char*> cases[] = {{L"\xD800", "UTF-16"},
                                                            {L"x\xDC00y", "UTF-16"},
                                                            {L"\xDC00\xD800", "UTF-16"},
                                                            {L"\xD83D\xDE00", "\U0001F600: No such file"}};
    for (const auto& [word, message] : cases) {
        HANDLE from, to;
        ASSERT_TRUE(CreatePipe(&from, &to, &inherited, 4096));
        EXPECT_EQ(run(std::wstring(L"vistel decode ") + word, to), 2u);
        CloseHandle(to);
        char told[4096];
        DWORD size = 0;
        ReadFile(from, told, sizeof told, &size, nullptr);
        CloseHandle(from);
        EXPECT_NE(std::string(told, size).find(message), std::string::npos) << std::string(told, size);
    }
}

TEST(Console, ShowsTextAndIsLeftAsItWas) {
    FreeConsole();
    ASSERT_TRUE(AllocConsole());
    HANDLE const screen =
        CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                    OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(screen, INVALID_HANDLE_VALUE);
    constexpr UINT old_code_page = 437;
    constexpr DWORD old_mode = ENABLE_PROCESSED_OUTPUT | ENABLE_WRAP_AT_EOL_OUTPUT;
    ASSERT_TRUE(SetConsoleOutputCP(old_code_page) && SetConsoleMode(screen, old_mode));
    EXPECT_EQ(run(L"vistel encode 127250 \"Heading Sensor Reading=400\"", screen), 2u);
    std::wstring shown(2000, L' ');
    DWORD size = 0, mode = 0;
    ReadConsoleOutputCharacterW(screen, shown.data(), static_cast<DWORD>(shown.size()), {}, &size);
    EXPECT_NE(shown.find(L"375.4707 \u00B0"), std::wstring::npos)
        << testing::PrintToString(shown.substr(0, 160));
    // The second of interrupts that come at once ends a program the hard way.
    SetConsoleCtrlHandler([](DWORD) WINAPI -> BOOL { return TRUE; }, TRUE);
    std::thread user([] {
        while (GetConsoleOutputCP() != CP_UTF8) Sleep(1);
        for (int i = 0; i < 8; ++i) GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0);
    });
    run(L"vistel decode udp://127.0.0.1:9", screen);
    user.join();
    EXPECT_EQ(GetConsoleOutputCP(), old_code_page);
    EXPECT_TRUE(GetConsoleMode(screen, &mode));
    EXPECT_EQ(mode, old_mode);
    CloseHandle(screen);
    HWND const window = GetConsoleWindow();
    FreeConsole();
    PostMessageW(window, WM_CLOSE, 0, 0);  // Wine's stays else
}

}  // namespace
}  // namespace vistel

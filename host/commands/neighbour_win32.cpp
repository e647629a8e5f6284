#include <windows.h>

#include <algorithm>

#include "commands/neighbour.h"
#include "text/windows_text.h"

namespace vistel {

namespace {

std::wstring file_of_this_program() {
    std::wstring file(MAX_PATH, L'\0');
    for (;;) {
        const DWORD size = GetModuleFileNameW(nullptr, file.data(), static_cast<DWORD>(file.size()));
        if (size < file.size()) {
            file.resize(size);
            return file;
        }
        file.resize(2 * file.size());  // it was cut off
    }
}

/// An interrupt from the keyboard is for both programs; this one lives on to say what became of the other.
BOOL WINAPI go_on(DWORD) {
    return TRUE;
}

/// A word as programs take it out of their command line: quoted, with a backslash before quotes, and twice
/// the backslashes where they stand before one.
std::wstring quoted(const std::wstring& word) {
    std::wstring text = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t c : word) {
        if (c == L'"') text.append(backslashes + 1, L'\\');
        backslashes = c == L'\\' ? backslashes + 1 : 0;
        text += c;
    }
    return text.append(backslashes, L'\\') + L'"';
}

}  // namespace

Result<int> run_neighbour(const std::string& name, const std::string&,
                          const std::vector<std::string>& arguments) {
    const std::wstring self = file_of_this_program();
    const std::wstring program = self.substr(0, self.find_last_of(L'\\') + 1) + wide(name) + L".exe";
    std::wstring line = quoted(program);
    for (const std::string& argument : arguments) line += L' ' + quoted(wide(argument));

    SetConsoleCtrlHandler(go_on, TRUE);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start,
                        &process)) {
        const DWORD error = GetLastError();
        return failure(narrow(program).value_or(name), ": ", windows_error_text(error));
    }
    DWORD status = 0;
    WaitForSingleObject(process.hProcess, INFINITE);
    GetExitCodeProcess(process.hProcess, &status);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return static_cast<int>(status);
}

}  // namespace vistel

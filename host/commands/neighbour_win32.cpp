#include <windows.h>

#include <algorithm>

#include "commands/neighbour.h"
#include "text/windows_text.h"

namespace vistel {

namespace {

/// Empty where that cannot be known.
std::wstring file_of_this_program() {
    constexpr std::size_t longest_path = 32768;
    for (std::wstring file(MAX_PATH, L'\0'); file.size() < 2 * longest_path; file.resize(2 * file.size())) {
        const DWORD size = GetModuleFileNameW(nullptr, file.data(), static_cast<DWORD>(file.size()));
        if (size < file.size()) return file.substr(0, size);  // or it was cut off
    }
    return {};
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
    const std::size_t folder = self.find_last_of(L'\\');
    // Without a folder it would be a program of the working directory.
    if (folder == std::wstring::npos) return failure("it is unknown where this program lies");
    const std::wstring program = self.substr(0, folder + 1) + wide(name) + L".exe";
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

#include <fcntl.h>
#include <io.h>
#include <windows.h>
// The order matters.
#include <shellapi.h>

#include <cstdio>
#include <optional>

#include "command_line/start.h"
#include "text/windows_text.h"

namespace vistel {

namespace {

/// The console is the user's: it is left as it was found.
class Console {
  public:
    Console() {
        if (code_page_ != 0) SetConsoleOutputCP(CP_UTF8);
        // Progress takes itself off the screen by an escape sequence.
        if (has_mode_) SetConsoleMode(errors_, mode_ | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
    }
    ~Console() {
        if (code_page_ != 0) SetConsoleOutputCP(code_page_);
        if (has_mode_) SetConsoleMode(errors_, mode_);
    }
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

  private:
    const UINT code_page_ = GetConsoleOutputCP();  // 0 where there is none
    const HANDLE errors_ = GetStdHandle(STD_ERROR_HANDLE);
    DWORD mode_ = 0;
    const bool has_mode_ = GetConsoleMode(errors_, &mode_) != 0;
};

}  // namespace

bool start_program(int, char**, std::vector<std::string>& words) {
    for (std::FILE* const stream : {stdin, stdout, stderr}) _setmode(_fileno(stream), _O_BINARY);
    static const Console console;
    int count = 0;
    wchar_t** const given = CommandLineToArgvW(GetCommandLineW(), &count);
    bool readable = given != nullptr;
    for (int i = count; readable && --i > 0;) {
        std::optional<std::string> word = narrow(given[i]);
        if (word)
            words.push_back(*std::move(word));
        else
            readable = false;
    }
    LocalFree(given);
    if (!readable) std::fputs("vistel: an argument is no text (no well-formed UTF-16)\n", stderr);
    return readable;
}

}  // namespace vistel

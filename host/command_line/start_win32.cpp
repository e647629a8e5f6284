#include <fcntl.h>
#include <io.h>
#include <windows.h>
// The order matters.
#include <shellapi.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <optional>
#include <thread>

#include "command_line/start.h"
#include "text/windows_text.h"

namespace vistel {

namespace {

/// Sends what is told to a console in whole messages, soon after. The runtime would hand over byte by byte,
/// and not every console makes characters of such bytes.
class WholeMessages {
  public:
    WholeMessages() {
        constexpr std::size_t room = 1 << 14;
        std::setvbuf(stderr, nullptr, _IOFBF, room);
    }
    ~WholeMessages() {
        {
            const std::lock_guard lock(mutex_);
            is_over_ = true;
        }
        changed_.notify_one();
        flusher_.join();
        std::fflush(stderr);
    }
    WholeMessages(const WholeMessages&) = delete;
    WholeMessages& operator=(const WholeMessages&) = delete;

  private:
    void flush_until_over() {
        std::unique_lock lock(mutex_);
        while (!changed_.wait_for(lock, std::chrono::milliseconds(30), [this] { return is_over_; }))
            std::fflush(stderr);
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    bool is_over_ = false;
    std::thread flusher_{&WholeMessages::flush_until_over, this};
};

/// The console is the user's: it is left as it was found, also by a program that an interrupt ends.
class Console {
  public:
    Console() {
        used = this;
        SetConsoleCtrlHandler(leave, TRUE);
        if (code_page_ != 0) SetConsoleOutputCP(CP_UTF8);
        // Progress takes itself off the screen by an escape sequence.
        if (!has_mode_) return;
        SetConsoleMode(errors_, mode_ | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
        whole_messages_.emplace();
    }
    ~Console() {
        whole_messages_.reset();  // while the console still takes them
        restore();
        SetConsoleCtrlHandler(leave, FALSE);
    }
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

  private:
    /// Called where nothing that was added later has kept the program alive: it ends without destructors.
    static BOOL WINAPI leave(DWORD) {
        used->restore();
        return FALSE;
    }
    void restore() const {
        if (code_page_ != 0) SetConsoleOutputCP(code_page_);
        if (has_mode_) SetConsoleMode(errors_, mode_);
    }

    static inline const Console* used = nullptr;
    const UINT code_page_ = GetConsoleOutputCP();  // 0 where there is none
    const HANDLE errors_ = GetStdHandle(STD_ERROR_HANDLE);
    DWORD mode_ = 0;
    const bool has_mode_ = GetConsoleMode(errors_, &mode_) != 0;
    std::optional<WholeMessages> whole_messages_;
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

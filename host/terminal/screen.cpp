#include "terminal/screen.h"

#include <curses.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <clocale>
#include <cstdlib>
#include <cwchar>

#include "terminal/keys.h"
#include "text/error_text.h"
#include "text/utf8.h"

namespace vistel {
namespace {

enum Pair : short { pair_changed = 1, pair_alarm };

/// A character that the locale can show, or one for it.
wchar_t shown(wchar_t c) {
    char bytes[MB_LEN_MAX];
    std::mbstate_t state{};
    if (std::wcrtomb(bytes, c, &state) != static_cast<std::size_t>(-1)) return c;
    switch (c) {
        case L'\u00B0': return L'd';
        case L'\u00B5':
        case L'\u03BC': return L'u';
        case L'\u00B2': return L'2';
        case L'\u00B3': return L'3';
        case L'\u00B7': return L'|';
        default: return L'?';
    }
}

std::uint32_t key_of(wint_t code) {
    switch (code) {
        case KEY_UP: return key_up;
        case KEY_DOWN: return key_down;
        case KEY_LEFT: return key_left;
        case KEY_RIGHT: return key_right;
        case KEY_PPAGE: return key_page_up;
        case KEY_NPAGE: return key_page_down;
        case KEY_HOME: return key_home;
        case KEY_END: return key_end;
        case KEY_ENTER: return key_enter;
        case KEY_BACKSPACE: return key_backspace;
        default: return 0;
    }
}

}  // namespace

Result<std::unique_ptr<Screen>> Screen::take_over() {
    std::setlocale(LC_CTYPE, "");
    std::unique_ptr<Screen> screen(new Screen);
    screen->terminal_ = std::fopen("/dev/tty", "r+e");
    if (screen->terminal_ == nullptr) return failure("no terminal to show it on: ", error_text(errno));
    const char* const kind = std::getenv("TERM");
    if (kind == nullptr || *kind == 0) return failure("the kind of terminal is not known (TERM is not set)");
    screen->screen_ = newterm(kind, screen->terminal_, screen->terminal_);
    if (screen->screen_ == nullptr) return failure("a terminal of the kind '", kind, "' is not known");
    cbreak();
    noecho();
    nonl();
    curs_set(0);
    set_escdelay(25);
    keypad(stdscr, TRUE);
    if (has_colors() && std::getenv("NO_COLOR") == nullptr) {
        start_color();
        use_default_colors();
        init_pair(pair_changed, COLOR_GREEN, -1);
        init_pair(pair_alarm, COLOR_RED, -1);
        screen->has_colours_ = true;
    }
    return screen;
}

Screen::~Screen() {
    if (screen_ != nullptr) {
        endwin();
        delscreen(static_cast<SCREEN*>(screen_));
    }
    if (terminal_ != nullptr) std::fclose(terminal_);
}

int Screen::width() const {
    return getmaxx(stdscr);
}

int Screen::height() const {
    return getmaxy(stdscr);
}

void Screen::put(const std::string& text) {
    const auto units = utf16_of(text);
    if (!units) return;
    for (std::size_t i = 0; i < units->size(); ++i) {
        const char16_t c = (*units)[i];
        const bool is_surrogate = c >= 0xD800 && c < 0xE000;
        const wchar_t one[] = {is_surrogate ? L'?' : shown(static_cast<wchar_t>(c)), 0};
        if (is_surrogate) ++i;
        addwstr(one);
    }
}

void Screen::show(const Page& page) {
    const auto look = [this](Style style) -> attr_t {
        switch (style) {
            case Style::strong: return A_BOLD;
            case Style::faint: return A_DIM;
            case Style::changed: return has_colours_ ? COLOR_PAIR(pair_changed) : A_BOLD;
            case Style::marked: return A_REVERSE;
            case Style::heading: return A_UNDERLINE;
            case Style::alarm: return A_BOLD | (has_colours_ ? COLOR_PAIR(pair_alarm) : 0);
            case Style::plain: break;
        }
        return A_NORMAL;
    };
    erase();
    int row = 0;
    for (const PageLine& line : page) {
        move(row++, 0);
        for (const PageLine::Piece& piece : line.pieces()) {
            attrset(static_cast<int>(look(piece.style)));
            put(piece.text);
        }
    }
    attrset(static_cast<int>(A_NORMAL));
    refresh();
}

std::optional<std::uint32_t> Screen::wait_for_key(int milliseconds) {
    timeout(milliseconds);
    wint_t code = 0;
    switch (get_wch(&code)) {
        case KEY_CODE_YES: break;
        case OK:
            switch (code) {
                case '\r':
                case '\n': return key_enter;
                case 27: return key_escape;
                case 8:
                case 127: return key_backspace;
                default: return static_cast<std::uint32_t>(code);
            }
        default: return {};
    }
    const std::uint32_t key = key_of(code);
    return key != 0 ? std::optional(key) : std::nullopt;
}

bool Screen::is_lost() const {
    pollfd request{fileno(terminal_), POLLIN, 0};
    return ::poll(&request, 1, 0) > 0 && (request.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0;
}

}  // namespace vistel

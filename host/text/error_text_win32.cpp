#include <windows.h>

#include <array>

#include "text/error_text.h"
#include "text/windows_text.h"
#include "text/words.h"

namespace vistel {

// The standard library's own words are in the user's language by the ANSI code page.
std::string error_text(const std::error_code& error) {
    const std::error_condition meaning = error.default_error_condition();
    if (meaning.category() != std::system_category()) return meaning.message();
    std::array<wchar_t, 1024> room;
    const DWORD size = FormatMessageW(
        FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK, nullptr,
        static_cast<DWORD>(error.value()), 0, room.data(), room.size(), nullptr);
    std::wstring_view text(room.data(), size);
    while (text.ends_with(L' ') || text.ends_with(L'.')) text.remove_suffix(1);
    const std::string told = narrow(text).value_or("");
    return told.empty() ? concat("error ", static_cast<DWORD>(error.value()), " of Windows") : told;
}

}  // namespace vistel

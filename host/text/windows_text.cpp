#include "text/windows_text.h"

#include <windows.h>

#include "text/error_text.h"
#include "text/utf8.h"

namespace vistel {

std::wstring wide(std::string_view text) {
    const std::u16string units = utf16_of(text).value_or(u"");
    return {units.begin(), units.end()};
}

std::optional<std::string> narrow(std::wstring_view text) {
    if (text.empty()) return "";
    const auto convert = [text](char* to, int size) {
        return WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, text.data(), static_cast<int>(text.size()),
                                   to, size, nullptr, nullptr);
    };
    std::string result(static_cast<std::size_t>(convert(nullptr, 0)), '\0');
    if (convert(result.data(), static_cast<int>(result.size())) == 0) return {};
    return result;
}

std::string windows_error_text(unsigned long error) {
    return error_text(std::error_code(static_cast<int>(error), std::system_category()));
}

}  // namespace vistel

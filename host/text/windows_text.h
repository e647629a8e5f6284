#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vistel {

/// A UTF-8 text as Windows takes it; empty where it is not well-formed.
std::wstring wide(std::string_view text);

/// A text of Windows as UTF-8; nothing where it is not well-formed.
[[nodiscard]] std::optional<std::string> narrow(std::wstring_view text);

/// What a result of GetLastError() means (`error_text`).
std::string windows_error_text(unsigned long error);

}  // namespace vistel

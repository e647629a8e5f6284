#pragma once

#include <string_view>

namespace vistel {

/// What a file that is no recording seems to be by its first bytes: "a PNG picture"; empty when there is no
/// telling.
std::string_view guess_file(std::string_view head);

/// What holds recordings instead of being one, by its beginning; empty for anything else. A recording in a
/// tar archive could be read, but its lines would not be all there is.
std::string_view archive_kind(std::string_view head);

}  // namespace vistel

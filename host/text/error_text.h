#pragma once

#include <string>
#include <system_error>

namespace vistel {

/// What an error of the system means, in UTF-8. Errors that Windows has numbers of its own for have the words
/// of other platforms where these have any.
std::string error_text(const std::error_code& error);

/// The same of a value of errno.
inline std::string error_text(int error) {
    return error_text(std::error_code(error, std::generic_category()));
}

}  // namespace vistel

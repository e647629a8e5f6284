#include "text/error_text.h"

namespace vistel {

std::string error_text(const std::error_code& error) {
    return error.message();
}

}  // namespace vistel

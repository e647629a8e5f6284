#pragma once

#include <string>
#include <string_view>

#include "can/record.h"

namespace vistel {

/// Appends what makes a gateway put a single frame on its bus: in the format that it speaks itself, and of
/// the kind that its own records have. `bus` is its name, where the gateway tells several apart. Most
/// gateways send with a source address of their own. False where nothing can be sent in this format.
[[nodiscard]] bool append_transmission(std::string_view format, const Record& frame, std::string_view bus,
                                       std::string& out);

}  // namespace vistel

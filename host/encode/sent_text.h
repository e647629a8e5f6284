#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "pgn_vistel/core/decode.h"

namespace vistel {

/// A text as a field of the format `text_short` or `text_medium`: in 8 bits a character where that is enough,
/// else in 16. It may be longer than the format allows.
std::vector<std::uint8_t> sent_text(pgn_vistel::core::DF df, std::u16string_view text);

}  // namespace vistel

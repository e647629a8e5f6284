#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "pgn_vistel/core/catalogue.h"

namespace vistel {

/// A name without regard to case and to what is neither letter nor digit, so that "Wind Speed", "windSpeed"
/// and the key wind_speed are one.
std::string compared_name(std::string_view name);

/// The field of a corrected definition that canboat's analyzer calls so, or null. `variant` is that of the
/// definition in the catalogue.
const pgn_vistel::core::FieldDef* find_analyzed(const pgn_vistel::core::PgnDef& definition,
                                                std::string_view variant, std::string_view name);

/// The code, of flags the number of the bit, that it calls so in a set of texts, by the name of the set.
[[nodiscard]] std::optional<std::uint32_t> find_code(std::string_view set, std::string_view text);

}  // namespace vistel

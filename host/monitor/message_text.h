#pragma once

#include <string>
#include <string_view>

#include "network/streams.h"

namespace vistel {

/// @{ The latest message of a stream for the clipboard: as `vistel decode` writes it, with the bus unless
/// that is empty.
std::string as_text(const Stream& stream, std::string_view bus, const pgn_vistel::core::UnitSelection& units,
                    pgn_vistel::core::Definitions definitions);
std::string as_json(const Stream& stream, std::string_view bus, pgn_vistel::core::Definitions definitions);
/// @}

/// The key of the field at a position of the message, from 0; empty where there is none.
std::string key_of_field(const N2KMsg& msg, std::size_t position, pgn_vistel::core::Definitions definitions);

}  // namespace vistel

#pragma once

#include <string>

#include "network/streams.h"

namespace vistel {

/// @{ The latest message of a stream for the clipboard: as `vistel decode` writes it.
std::string as_text(const Stream& stream, const pgn_vistel::core::UnitSelection& units,
                    pgn_vistel::core::Definitions definitions);
std::string as_json(const Stream& stream, pgn_vistel::core::Definitions definitions);
/// @}

/// The key of the field at a position of the message, from 0; empty where there is none.
std::string key_of_field(const N2KMsg& msg, std::size_t position, pgn_vistel::core::Definitions definitions);

}  // namespace vistel

#pragma once

#include <string>
#include <string_view>

#include "pgn_vistel/core/catalogue.h"
#include "pgn_vistel/n2k_msg.h"
#include "text/result.h"

namespace vistel {

/// The message in the plain text format, as one line; behind a "# format=FAST" where it would be taken for a
/// piece of a fast packet. `time` is a time stamp of that format, or empty. The definitions say which PGNs
/// are fast packets.
std::string plain_lines(const N2KMsg& msg, std::string_view time, pgn_vistel::core::Definitions definitions);

/// The message as candump shows its frames: one, those of a fast packet with this sequence (0 .. 7), or those
/// of a broadcast by transport protocol. Some cannot be sent so.
Result<std::string> candump_lines(const N2KMsg& msg, std::string_view time, unsigned sequence,
                                  pgn_vistel::core::Definitions definitions);

}  // namespace vistel

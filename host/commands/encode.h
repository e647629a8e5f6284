#pragma once

#include <string>
#include <vector>

#include "can/identifier.h"
#include "commands/unit_options.h"
#include "pgn_vistel/core/catalogue.h"

namespace vistel {

struct EncodeOptions {
    std::string pgn;      ///< number or name
    std::string variant;  ///< name of a variant of the PGN; empty for any
    pgn_vistel::core::Definitions definitions = pgn_vistel::core::Definitions::corrected;
    std::vector<std::string> fields;  ///< LABEL=VALUE[ UNIT]
    bool list = false;                ///< show the fields instead
    bool all_choices = false;         ///< of coded fields, in that list
    std::string format = "plain";     ///< one of written_formats()
    std::string time;                 ///< empty for none
    int priority = -1;                ///< negative: that of the catalogue
    int source = 0;
    int destination = everyone;
    int sequence = 0;  ///< of a fast packet
    UnitOptions units;
};

/// Builds a message from typed fields and prints it as lines that decoding reads, or shows its fields.
/// Returns the exit status.
int run_encode(const EncodeOptions& options);

}  // namespace vistel

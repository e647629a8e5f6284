#pragma once

#include <string>
#include <vector>

#include "can/identifier.h"
#include "commands/unit_options.h"

namespace vistel {

struct EncodeOptions {
    std::string pgn;                  ///< number or name
    std::vector<std::string> fields;  ///< LABEL=VALUE[ UNIT]
    bool list = false;                ///< show the fields instead
    bool all_choices = false;         ///< of coded fields, in that list
    std::string format = "plain";
    std::string time;   ///< empty for none
    int priority = -1;  ///< negative: that of the catalogue
    int source = 0;
    int destination = everyone;
    int sequence = 0;  ///< of a fast packet
    UnitOptions units;
};

/// Names of the formats that `run_encode` writes.
std::vector<std::string> encode_formats();

/// Builds a message from typed fields and prints it as lines that decoding reads, or shows its fields.
/// Returns the exit status.
int run_encode(const EncodeOptions& options);

}  // namespace vistel

#pragma once

#include <CLI/CLI.hpp>
#include <map>
#include <string>

#include "pgn_vistel/core/catalogue.h"

namespace vistel {

/// What both programs say of a command line that they cannot read.
inline std::string usage_error(const CLI::App* command, const CLI::Error& error) {
    return "vistel: " + CLI::FailureMessage::simple(command, error);
}

/// The option for the set of definitions; `definitions` has the default.
inline void add_definitions(CLI::App& command, pgn_vistel::core::Definitions& definitions) {
    using pgn_vistel::core::Definitions;
    static const std::map<std::string, Definitions> names{{"corrected", Definitions::corrected},
                                                          {"fixed", Definitions::fixed}};
    command
        .add_option(
            "--definitions", definitions,
            "What messages are read by: corrected (what devices send; the default) or fixed (what the "
            "library's interface shows)")
        ->transform(CLI::CheckedTransformer(names).description(""))
        ->type_name("SET");
}

}  // namespace vistel

#pragma once

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "pgn_vistel/core/catalogue.h"
#include "readers/content_kind.h"

namespace vistel {

/// The words behind the program's name, the last one first, as `CLI::App::parse` takes them. Some kernels
/// start a program without even its name.
inline std::vector<std::string> words(int argc, char** argv) {
    return {std::reverse_iterator(argv + argc), std::reverse_iterator(argv + std::min(argc, 1))};
}

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

/// The option for what the lines of plain text hold.
inline void add_contents(CLI::App& command, ContentKind& contents) {
    static const std::map<std::string, ContentKind> names{{"messages", ContentKind::messages},
                                                          {"frames", ContentKind::frames}};
    command
        .add_option("--contents", contents,
                    "What plain text holds: whole messages, or frames; told by its lines if not given")
        ->transform(CLI::CheckedTransformer(names).description(""))
        ->type_name("WHAT");
}

}  // namespace vistel

#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "command_line/pgn_choice.h"
#include "pgn_vistel/core/catalogue.h"
#include "readers/content_kind.h"
#include "readers/formats.h"
#include "text/printable.h"

namespace vistel {

/// What both programs say of a command line that they cannot read.
inline std::string usage_error(const CLI::App* command, const CLI::Error& error) {
    const std::string_view what = error.what();
    std::string text = CLI::FailureMessage::simple(command, error);
    if (text.starts_with(what)) text.replace(0, what.size(), harmless(what));
    return "vistel: " + text;
}

/// The option for the set of definitions; `definitions` has the default.
inline void add_definitions(CLI::App& command, pgn_vistel::core::Definitions& definitions) {
    using pgn_vistel::core::Definitions;
    command
        .add_option_function<std::string>(
            "--definitions",
            [&definitions](const std::string& name) {
                if (name != "corrected" && name != "fixed")
                    throw CLI::ValidationError("--definitions", "no such set; there are: corrected, fixed");
                definitions = name == "fixed" ? Definitions::fixed : Definitions::corrected;
            },
            "What messages are read by: corrected (what devices send; the default) or fixed (what the "
            "library's interface shows)")
        ->type_name("SET");
}

/// The option for the PGNs that are shown.
inline void add_pgns(CLI::App& command, std::vector<std::uint32_t>& pgns) {
    command
        .add_option_function<std::vector<std::string>>(
            "--pgn",
            [&pgns](const std::vector<std::string>& texts) {
                for (const std::string& text : texts) {
                    auto parsed = parse_pgns(text);
                    if (!parsed) throw CLI::ValidationError("--pgn", parsed.error().text);
                    pgns.insert(pgns.end(), parsed->begin(), parsed->end());
                }
                for (const std::uint32_t pgn : pgns)
                    if (!is_catalogued(pgn))
                        std::fprintf(stderr, "vistel: PGN %u is not in the catalogue; it is shown as bytes\n",
                                     static_cast<unsigned>(pgn));
            },
            "Only these PGNs: numbers or names, with commas between them")
        ->type_name("PGN")
        ->allow_extra_args(false);
}

/// The option for the source addresses that are shown.
template <class Address>
void add_sources(CLI::App& command, std::vector<Address>& sources) {
    command
        .add_option("--source", sources, "Only messages of these source addresses, with commas between them")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(CLI::Range(0, 255));
}

/// The options for units: a named set, and single ones.
inline void add_units(CLI::App& command, std::string& set, std::vector<std::string>& units) {
    command.add_option("--units", set, "Units for everything: default, metric, nautical, us or si");
    command
        .add_option("--unit", units,
                    "QUANTITY=UNIT, as in --unit Depth=m (see 'vistel catalogue quantities')")
        ->allow_extra_args(false);
}

/// The option to leave the user's configuration alone.
inline void add_no_config(CLI::App& command, bool& no_config) {
    command.add_flag("--no-config", no_config, "Without the configuration file (see the manual)");
}

/// The option for the speed at which a recording is played; 0 stands for "max".
inline void add_speed(CLI::App& command, std::optional<double>& speed) {
    command
        .add_option_function<std::string>(
            "--speed",
            [&speed](const std::string& text) {
                char* end = nullptr;
                const double times = text == "max" ? 0 : std::strtod(text.c_str(), &end);
                if (text != "max" && (*end != 0 || !(times > 0 && times <= 1e6)))
                    throw CLI::ValidationError("--speed", "is neither a positive number nor max");
                speed = times;
            },
            "Times the recording's own pace, or max")
        ->type_name("TEXT");
}

/// The option for the format of what is read.
inline void add_format(CLI::App& command, std::string& format, const std::string& about) {
    command.add_option("--format", format, about)->check([](const std::string& name) {
        const auto found = find_format(name);
        return found ? std::string() : found.error().text;
    });
}

/// The option for what the lines of plain text hold.
inline void add_contents(CLI::App& command, ContentKind& contents) {
    command
        .add_option_function<std::string>(
            "--contents",
            [&contents](const std::string& name) {
                if (name != "messages" && name != "frames")
                    throw CLI::ValidationError("--contents", "no such contents; there are: messages, frames");
                contents = name == "frames" ? ContentKind::frames : ContentKind::messages;
            },
            "What plain text holds: whole messages, or frames; told by its lines if not given")
        ->type_name("WHAT");
}

}  // namespace vistel

#pragma once

#include "command_line/command_line.h"
#include "commands/unit_options.h"
#include "monitor/player.h"

namespace vistel {

/// What the command lines of window and terminal have in common.
struct PlayArguments {
    PlayOptions play;
    UnitOptions units;
    StreamFilter filter;
};

/// Adds the options for them, and the inputs as positionals; `inputs` says what stands for none.
inline CLI::Option* add_play_arguments(CLI::App& app, PlayArguments& arguments, const std::string& inputs) {
    app.allow_windows_style_options(false);  // /tmp/boat.log is a file
    auto& [play, units, filter] = arguments;
    CLI::Option* const names =
        app.add_option("FILE", play.input.names, "Recordings or sources to show" + inputs)->default_str("");
    app.add_flag("--merge", play.input.merge, "Several recordings by time instead of one after the other");
    app.add_option("--format", play.input.format,
                   "Format of the recordings; recognised by their contents if not given");
    add_contents(app, play.input.contents);
    add_speed(app, play.speed);
    app.add_flag("--loop", play.loop, "From the start again at the end");
    add_pgns(app, filter.pgns);
    app.add_option("--source", filter.sources, "Only messages of these source addresses")
        ->allow_extra_args(false);
    add_units(app, units.set, units.units);
    add_definitions(app, play.definitions);
    app.failure_message(usage_error);
    return names;
}

}  // namespace vistel

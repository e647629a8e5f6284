#pragma once

#include "command_line/command_line.h"
#include "commands/unit_options.h"
#include "commands/user_settings.h"
#include "monitor/player.h"

namespace vistel {

/// What the command lines of window and terminal have in common.
struct PlayArguments {
    PlayOptions play;
    UnitOptions units;
    StreamFilter filter;
    bool no_config = false;
};

/// Adds the options for them, and the inputs as positionals; `inputs` says what stands for none.
inline CLI::Option* add_play_arguments(CLI::App& app, PlayArguments& arguments, const std::string& inputs) {
    app.allow_windows_style_options(false);  // /tmp/boat.log is a file
    auto& [play, units, filter, no_config] = arguments;
    CLI::Option* const names =
        app.add_option("FILE", play.input.names, "Recordings or sources to show" + inputs)->default_str("");
    app.add_flag("--merge", play.input.merge, "Several recordings by time instead of one after the other");
    add_format(app, play.input.format, "Format of the recordings; recognised by their contents if not given");
    add_contents(app, play.input.contents);
    add_speed(app, play.speed);
    app.add_flag("--loop", play.loop, "From the start again at the end");
    add_pgns(app, filter.pgns);
    add_sources(app, filter.sources);
    add_units(app, units.set, units.units);
    add_definitions(app, play.definitions);
    add_no_config(app, no_config);
    app.failure_message(usage_error);
    return names;
}

/// What the user usually wants, behind what the command line says.
inline Status add_settings(PlayArguments& arguments) {
    if (arguments.no_config) return done;
    auto settings = usual_settings();
    if (!settings) return settings.error();
    settings->apply(arguments.units);
    for (std::string& name : arguments.play.input.names) settings->apply(name);
    return done;
}

}  // namespace vistel

// `vistel top`: a program of its own, so that decoding needs nothing of the terminal's library.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <iostream>
#include <sstream>

#include "command_line/start.h"
#include "commands/interrupt.h"
#include "commands/output_status.h"
#include "completion/option_table.h"
#include "monitor/play_arguments.h"
#include "terminal/screen.h"
#include "terminal/top.h"

namespace {

using namespace vistel;

constexpr int bad_usage = 2;

/// Several selections of units to go through, the one of the command line first.
Result<std::vector<Top::NamedUnits>> unit_sets(const UnitOptions& options) {
    std::vector<Top::NamedUnits> sets;
    pgn_vistel::core::UnitSelection units;
    if (auto selected = select_units(units, options); !selected) return selected.error();
    const bool is_own = !options.is_empty();
    const std::string& set = options.set.empty() ? options.usual_set : options.set;
    if (is_own) sets.push_back({set.empty() ? "own" : set, units});
    const bool is_set_alone = options.units.empty() && (!options.set.empty() || options.usual_units.empty());
    for (const std::string& name : unit_set_names()) {
        if (is_own && is_set_alone && set == name) continue;
        units = {};
        if (auto selected = select_units(units, name); !selected) return selected.error();
        sets.push_back({name, units});
    }
    return sets;
}

int run(const PlayArguments& arguments) {
    auto units = unit_sets(arguments.units);
    if (!units) {
        std::fprintf(stderr, "vistel: %s\n", harmless(units.error().text).c_str());
        return bad_usage;
    }
    Player player(arguments.play);
    if (auto opened = player.open(); !opened) {
        std::fprintf(stderr, "vistel: %s\n", harmless(opened.error().text).c_str());
        return bad_usage;
    }
    watch_interrupts();
    ignore_closed_pipes();
    auto screen = Screen::take_over();
    if (!screen) {
        std::fprintf(stderr, "vistel: %s; 'vistel decode' shows the messages as text\n",
                     screen.error().text.c_str());
        return bad_usage;
    }
    {
        Top top(player, std::move(*units), arguments.filter);
        constexpr int frame_ms = 100;
        while (!interrupted() && !(*screen)->is_lost()) {
            top.advance();
            if (player.ended() && player.counters().messages == 0 && player.is_unreadable()) break;
            (*screen)->show(top.page((*screen)->width(), (*screen)->height()));
            auto key = (*screen)->wait_for_key(frame_ms);
            bool leaves = false;
            for (; key && !leaves; key = (*screen)->wait_for_key(0)) leaves = !top.press(*key);
            if (leaves) break;
        }
    }
    screen->reset();
    if (player.counters().problems > 0)
        std::fprintf(stderr, "%s\nvistel: places that could not be read: %llu\n",
                     harmless(player.first_problem()).c_str(),
                     static_cast<unsigned long long>(player.counters().problems));
    return player.is_unreadable() ? bad_usage : 0;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> words;
    if (!start_program(argc, argv, words)) return bad_usage;
    CLI::App app("Show recordings or live streams in the terminal, rewritten in place");
    app.name("vistel top");
    app.set_version_flag("--version", PGN_VISTEL_VERSION);
    PlayArguments arguments;
    add_play_arguments(app, arguments, "; - is standard input, as is none");
    app.add_flag("--ask", arguments.play.input.sends,
                 "Ask the devices of a live source for what they have not said; otherwise nothing is sent");
    if (print_option_table(app, words)) return 0;
    try {
        app.parse(std::move(words));
    } catch (const CLI::ParseError& error) {
        std::ostringstream shown;
        return app.exit(error, shown, std::cerr) == 0 ? print_out(shown.str()) : bad_usage;
    }
    if (const Status settled = add_settings(arguments); !settled) {
        std::fprintf(stderr, "vistel: %s\n", settled.error().text.c_str());
        return bad_usage;
    }
    return run(arguments);
}

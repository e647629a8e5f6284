// `vistel top`: a program of its own, so that decoding needs nothing of the terminal's library.
#include <CLI/CLI.hpp>
#include <cstdio>

#include "command_line/command_line.h"
#include "command_line/start.h"
#include "commands/interrupt.h"
#include "commands/unit_options.h"
#include "completion/option_table.h"
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
    const bool is_own = !options.set.empty() || !options.units.empty();
    if (is_own) sets.push_back({options.set.empty() ? "own" : options.set, units});
    for (const char* const name : {"default", "metric", "si"}) {
        if (is_own && options.units.empty() && options.set == name) continue;
        units = {};
        if (auto selected = select_units(units, name); !selected) return selected.error();
        sets.push_back({name, units});
    }
    return sets;
}

int run(const PlayOptions& play, const UnitOptions& unit_options, const StreamFilter& filter) {
    auto units = unit_sets(unit_options);
    if (!units) {
        std::fprintf(stderr, "vistel: %s\n", units.error().text.c_str());
        return bad_usage;
    }
    Player player(play);
    if (auto opened = player.open(); !opened) {
        std::fprintf(stderr, "vistel: %s: %s\n", play.file.c_str(), opened.error().text.c_str());
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
        Top top(player, std::move(*units), filter);
        constexpr int frame_ms = 100;
        while (!interrupted() && !(*screen)->is_lost()) {
            top.advance();
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
                     player.first_problem().c_str(),
                     static_cast<unsigned long long>(player.counters().problems));
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> words;
    if (!start_program(argc, argv, words)) return bad_usage;
    CLI::App app("Show a recording or a live stream in the terminal, rewritten in place");
    app.name("vistel top");
    PlayOptions play;
    UnitOptions units;
    StreamFilter filter;
    app.add_option("FILE", play.file, "Recording or source to show; - is standard input")
        ->capture_default_str();
    add_format(app, play.format, "Format of the recording; recognised by its contents if not given");
    add_contents(app, play.contents);
    add_speed(app, play.speed);
    app.add_flag("--loop", play.loop, "From the start again at the end");
    app.add_flag("--ask", play.sends,
                 "Ask the devices of a live source for what they have not said; otherwise nothing is sent");
    app.add_option("--pgn", filter.pgns, "Only these PGNs")->allow_extra_args(false);
    app.add_option("--source", filter.sources, "Only messages of these source addresses")
        ->allow_extra_args(false);
    add_units(app, units.set, units.units);
    add_definitions(app, play.definitions);
    app.failure_message(usage_error);
    if (print_option_table(app, words)) return 0;
    try {
        app.parse(std::move(words));
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : bad_usage;
    }
    return run(play, units, filter);
}

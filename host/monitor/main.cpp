// The window of `vistel monitor`: a program of its own, so that decoding on a machine without a display needs
// none of the toolkit.

#include <unistd.h>
#include <wx/app.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <iostream>
#include <sstream>

#include "command_line/command_line.h"
#include "command_line/start.h"
#include "commands/output_status.h"
#include "commands/unit_options.h"
#include "commands/user_settings.h"
#include "monitor/display.h"
#include "monitor/window.h"

namespace {

using namespace vistel;

constexpr int bad_usage = 2;

class MonitorApp : public wxApp {
  public:
    MonitorApp(MonitorWindow::Options options, UnitOptions units, std::unique_ptr<Player> player)
        : options_(std::move(options)), units_(std::move(units)), player_(std::move(player)) {}
    bool OnInit() override {
        SetAppName("vistel");
        // What it remembers, but for what the command line says.
        options_.settings_file = Settings::usual_file();
        options_.settings.load(options_.settings_file);
        if (!units_.is_empty()) {
            options_.units = options_.settings.units;
            if (!select_units(*options_.units, units_)) return false;
        }
        auto* const window = new MonitorWindow(std::move(options_));
        window->Show();
        if (player_)
            window->play(std::move(player_));
        else
            window->CallAfter([window] { window->choose_source(); });
        return true;
    }

  private:
    MonitorWindow::Options options_;
    UnitOptions units_;
    std::unique_ptr<Player> player_;
};

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> words;
    if (!start_program(argc, argv, words)) return bad_usage;
    CLI::App app("Show a recording or a live stream in the monitor window");
    app.name("vistel monitor");
    app.allow_windows_style_options(false);  // /tmp/boat.log is a file
    PlayOptions play;
    UnitOptions units;
    StreamFilter filter;
    const CLI::Option* const file =
        app.add_option("FILE", play.file,
                       "Recording or source to show; - is standard input. Without it the window asks, unless "
                       "something is piped in");
    app.add_option("--format", play.format,
                   "Format of the recording; recognised by its contents if not given");
    add_contents(app, play.contents);
    add_speed(app, play.speed);
    app.add_flag("--loop", play.loop, "From the start again at the end");
    add_pgns(app, filter.pgns);
    app.add_option("--source", filter.sources, "Only messages of these source addresses")
        ->allow_extra_args(false);
    add_units(app, units.set, units.units);
    add_definitions(app, play.definitions);
    bool no_config = false;
    add_no_config(app, no_config);
    app.failure_message(usage_error);
    try {
        app.parse(std::move(words));
    } catch (const CLI::ParseError& error) {
        std::ostringstream shown;
        return app.exit(error, shown, std::cerr) == 0 ? print_out(shown.str()) : bad_usage;
    }

    if (!no_config) {
        auto settings = usual_settings();
        if (!settings) {
            std::fprintf(stderr, "vistel: %s\n", settings.error().text.c_str());
            return bad_usage;
        }
        settings->apply(units);
        settings->apply(play.file);
    }
    if (!has_display()) {
        std::fprintf(stderr,
                     "vistel: no display to open a window on; 'vistel decode' shows the messages as text\n");
        return bad_usage;
    }
    pgn_vistel::core::UnitSelection selection;
    if (const auto selected = select_units(selection, units); !selected) {
        std::fprintf(stderr, "vistel: %s\n", vistel::harmless(selected.error().text).c_str());
        return bad_usage;
    }
    std::unique_ptr<Player> player;
    if (file->count() > 0 || isatty(STDIN_FILENO) == 0) {
        player = std::make_unique<Player>(play);
        if (const auto opened = player->open(); !opened) {
            std::fprintf(stderr, "vistel: %s: %s\n", vistel::harmless(play.file).c_str(),
                         opened.error().text.c_str());
            return bad_usage;
        }
    }
    wxApp::SetInstance(new MonitorApp({play, filter}, units, std::move(player)));
    char name[] = "vistel-monitor";
    char* name_alone[] = {name, nullptr};
    int count = 1;
    return wxEntry(count, name_alone);
}

// The window of `vistel monitor`: a program of its own, so that decoding on a machine without a display needs
// none of the toolkit.

#include <sys/stat.h>
#include <unistd.h>
#include <wx/app.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <iostream>
#include <sstream>

#include "command_line/start.h"
#include "commands/output_status.h"
#include "completion/option_table.h"
#include "monitor/display.h"
#include "monitor/play_arguments.h"
#include "monitor/window.h"

namespace {

using namespace vistel;

constexpr int bad_usage = 2;

/// Whether something is piped in. Started from a menu, standard input is /dev/null or none.
bool has_input() {
    struct stat status {};
    if (fstat(STDIN_FILENO, &status) != 0) return false;
#ifdef S_ISSOCK
    if (S_ISSOCK(status.st_mode)) return true;
#endif
    return S_ISFIFO(status.st_mode) || S_ISREG(status.st_mode);
}

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
    CLI::App app("Show recordings or live streams in the monitor window");
    app.name("vistel monitor");
    app.set_version_flag("--version", PGN_VISTEL_VERSION);
    PlayArguments arguments;
    const CLI::Option* const names = add_play_arguments(
        app, arguments, "; - is standard input. Without one the window asks, unless something is piped in");
    if (print_option_table(app, words)) return 0;
    try {
        app.parse(std::move(words));
    } catch (const CLI::ParseError& error) {
        std::ostringstream shown;
        return app.exit(error, shown, std::cerr) == 0 ? print_out(shown.str()) : bad_usage;
    }

    if (const vistel::Status settled = add_settings(arguments); !settled) {
        std::fprintf(stderr, "vistel: %s\n", settled.error().text.c_str());
        return bad_usage;
    }
    if (!has_display()) {
        std::fprintf(stderr,
                     "vistel: no display to open a window on; 'vistel decode' shows the messages as text\n");
        return bad_usage;
    }
    pgn_vistel::core::UnitSelection selection;
    if (const auto selected = select_units(selection, arguments.units); !selected) {
        std::fprintf(stderr, "vistel: %s\n", vistel::harmless(selected.error().text).c_str());
        return bad_usage;
    }
    std::unique_ptr<Player> player;
    if (names->count() > 0 || has_input()) {
        player = std::make_unique<Player>(arguments.play);
        if (const auto opened = player->open(); !opened) {
            std::fprintf(stderr, "vistel: %s\n", vistel::harmless(opened.error().text).c_str());
            return bad_usage;
        }
    }
    int status = 0;
    MonitorWindow::Options options{.play = arguments.play, .filter = arguments.filter};
    options.closed = [&status](const Player* shown) {
        if (shown == nullptr || !shown->is_unreadable()) return;
        std::fprintf(stderr, "%s\n", shown->first_problem().c_str());
        status = bad_usage;
    };
    wxApp::SetInstance(new MonitorApp(std::move(options), arguments.units, std::move(player)));
    char name[] = "vistel-monitor";
    char* name_alone[] = {name, nullptr};
    int count = 1;
    const int ended = wxEntry(count, name_alone);
    return ended != 0 ? ended : status;
}

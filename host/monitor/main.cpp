// The window of `vistel monitor`: a program of its own, so that decoding on a machine without a display needs
// none of the toolkit.

#include <sys/stat.h>
#include <unistd.h>
#include <wx/app.h>

#include <CLI/CLI.hpp>
#include <cstdio>

#include "command_line/command_line.h"
#include "command_line/start.h"
#include "commands/unit_options.h"
#include "completion/option_table.h"
#include "monitor/display.h"
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
        if (!units_.set.empty() || !units_.units.empty()) {
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
    add_format(app, play.format, "Format of the recording; recognised by its contents if not given");
    add_contents(app, play.contents);
    add_speed(app, play.speed);
    app.add_flag("--loop", play.loop, "From the start again at the end");
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

    if (!has_display()) {
        std::fprintf(stderr,
                     "vistel: no display to open a window on; 'vistel decode' shows the messages as text\n");
        return bad_usage;
    }
    pgn_vistel::core::UnitSelection selection;
    if (const auto selected = select_units(selection, units); !selected) {
        std::fprintf(stderr, "vistel: %s\n", selected.error().text.c_str());
        return bad_usage;
    }
    std::unique_ptr<Player> player;
    if (file->count() > 0 || has_input()) {
        player = std::make_unique<Player>(play);
        if (const auto opened = player->open(); !opened) {
            std::fprintf(stderr, "vistel: %s: %s\n", play.file.c_str(), opened.error().text.c_str());
            return bad_usage;
        }
    }
    wxApp::SetInstance(new MonitorApp({play, filter}, units, std::move(player)));
    char name[] = "vistel-monitor";
    char* name_alone[] = {name, nullptr};
    int count = 1;
    return wxEntry(count, name_alone);
}

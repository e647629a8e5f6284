// The window of `vistel monitor`: a program of its own, so that decoding on a machine without a display needs
// none of the toolkit.

#include <wx/app.h>

#include <CLI/CLI.hpp>
#include <cstdio>

#include "command_line/command_line.h"
#include "command_line/start.h"
#include "monitor/display.h"
#include "monitor/window.h"

namespace {

constexpr int bad_usage = 2;

class MonitorApp : public wxApp {
  public:
    explicit MonitorApp(std::unique_ptr<vistel::Player> player) : player_(std::move(player)) {}
    bool OnInit() override {
        SetAppName("vistel");
        window_ = std::make_unique<vistel::MonitorWindow>(std::move(player_));
        window_->show();
        return true;
    }
    int OnExit() override {
        window_.reset();
        return 0;
    }

  private:
    std::unique_ptr<vistel::Player> player_;
    std::unique_ptr<vistel::MonitorWindow> window_;
};

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> words;
    if (!vistel::start_program(argc, argv, words)) return bad_usage;
    CLI::App app("Show a recording or a live stream in the monitor window");
    app.name("vistel monitor");
    vistel::PlayOptions options;
    app.add_option("FILE", options.file, "Recording to play; - is standard input")->capture_default_str();
    app.add_option("--format", options.format,
                   "Format of the recording; recognised by its contents if not given");
    vistel::add_contents(app, options.contents);
    vistel::add_speed(app, options.speed);
    app.add_flag("--loop", options.loop, "From the start again at the end");
    vistel::add_definitions(app, options.definitions);
    app.failure_message(vistel::usage_error);
    try {
        app.parse(std::move(words));
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : bad_usage;
    }

    if (!vistel::has_display()) {
        std::fprintf(stderr,
                     "vistel: no display to open a window on; 'vistel decode' shows the messages as text\n");
        return bad_usage;
    }
    auto player = std::make_unique<vistel::Player>(options);
    if (const auto opened = player->open(); !opened) {
        std::fprintf(stderr, "vistel: %s: %s\n", options.file.c_str(), opened.error().text.c_str());
        return bad_usage;
    }
    wxApp::SetInstance(new MonitorApp(std::move(player)));
    char name[] = "vistel-monitor";
    char* name_alone[] = {name, nullptr};
    int count = 1;
    return wxEntry(count, name_alone);
}

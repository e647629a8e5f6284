// The window of `vistel monitor`: a program of its own, so that decoding on a machine without a display needs
// none of the toolkit.

#include <wx/app.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>

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

// Times the recording's own pace, or "max" for 0.
std::string check_speed(const std::string& text) {
    if (text == "max") return {};
    char* end;
    const double speed = std::strtod(text.c_str(), &end);
    return *end == 0 && speed > 0 && speed <= 1e6 ? std::string() : "is neither a positive number nor max";
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> words;
    if (!vistel::start_program(argc, argv, words)) return bad_usage;
    CLI::App app("Show a recording or a live stream in the monitor window");
    app.name("vistel monitor");
    vistel::PlayOptions options;
    std::string speed = "1";
    app.add_option("FILE", options.file, "Recording to play; - is standard input")->capture_default_str();
    app.add_option("--format", options.format,
                   "Format of the recording; recognised by its contents if not given");
    app.add_option("--speed", speed, "Times the recording's own pace, or max")
        ->check(check_speed)
        ->capture_default_str();
    app.add_flag("--loop", options.loop, "From the start again at the end");
    vistel::add_definitions(app, options.definitions);
    app.failure_message(vistel::usage_error);
    try {
        app.parse(std::move(words));
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : bad_usage;
    }
    options.speed = speed == "max" ? 0 : std::strtod(speed.c_str(), nullptr);

    if (!vistel::has_display()) {
        std::fprintf(stderr,
                     "vistel: no display to open a window on; 'vistel decode' shows the messages as text\n");
        return bad_usage;
    }
    auto player = std::make_unique<vistel::Player>(options);
    if (std::string error; !player->open(error)) {
        std::fprintf(stderr, "vistel: %s: %s\n", options.file.c_str(), error.c_str());
        return bad_usage;
    }
    wxApp::SetInstance(new MonitorApp(std::move(player)));
    char name[] = "vistel-monitor";
    char* name_alone[] = {name, nullptr};
    int count = 1;
    return wxEntry(count, name_alone);
}

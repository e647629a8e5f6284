#include <CLI/CLI.hpp>
#include <cstdio>

#include "commands/catalogue.h"
#include "commands/decode.h"
#include "commands/monitor.h"
#include "readers/formats.h"

namespace {

std::vector<std::string> format_names() {
    std::vector<std::string> names;
    for (const vistel::Format& format : vistel::all_formats()) names.emplace_back(format.name);
    return names;
}

// Options that say what to do with it later, when all of them are known.
struct Arguments {
    vistel::DecodeOptions decode;
    bool json = false;
    bool csv = false;
    std::string table;
    std::vector<std::string> monitor;
};

void add_decode(CLI::App& app, Arguments& arguments) {
    CLI::App* const command =
        app.add_subcommand("decode", "Decode a recording or a live stream, message by message");
    vistel::DecodeOptions& options = arguments.decode;
    command->add_option("FILE", options.file, "Recording to read; - is standard input")
        ->capture_default_str();
    command
        ->add_option("--format", options.format,
                     "Format of the recording; recognised by its contents if not given")
        ->check(CLI::IsMember(format_names()));
    CLI::Option* const json = command->add_flag("--json", arguments.json, "One JSON object a message");
    command->add_flag("--csv", arguments.csv, "One CSV row a field")->excludes(json);
    command->add_option("--pgn", options.pgns, "Only these PGNs")->allow_extra_args(false);
    command->add_option("--source", options.sources, "Only messages of these source addresses")
        ->allow_extra_args(false)
        ->check(CLI::Range(0, 255));
    command->add_option("--units", options.unit_set, "Units for everything: default or metric");
    command
        ->add_option("--unit", options.units,
                     "QUANTITY=UNIT, as in --unit Depth=m (see 'vistel catalogue quantities')")
        ->allow_extra_args(false);
    command->add_flag("--plain-numbers", options.plain_numbers, "Numbers without their hexadecimal form");
    command->add_flag("--stats", options.statistics, "Say at the end what was read, on standard error");
}

void add_catalogue(CLI::App& app, Arguments& arguments) {
    CLI::App* const command =
        app.add_subcommand("catalogue", "Print a table of the catalogue as tab-separated text");
    command->add_option("TABLE", arguments.table, "Which one")
        ->required()
        ->check(CLI::IsMember(vistel::catalogue_tables()));
}

void add_monitor(CLI::App& app, Arguments& arguments) {
    CLI::App* const command = app.add_subcommand("monitor", "Show a recording or a live stream in a window");
    command->set_help_flag();  // the window's program knows its options
    command->prefix_command();
    command->callback([command, &arguments] { arguments.monitor = command->remaining(); });
}

// Says which there are where there is no such command.
bool has_command(const CLI::App& app, const std::string& name) {
    std::string names;
    for (const CLI::App* const command : app.get_subcommands([](const CLI::App*) { return true; })) {
        if (command->get_name() == name) return true;
        names.append(names.empty() ? "" : ", ").append(command->get_name());
    }
    std::fprintf(stderr, "vistel: no command '%s'; there are: %s\n", name.c_str(), names.c_str());
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app("NMEA 2000 traffic, decoded");
    app.name("vistel");
    app.set_version_flag("--version", PGN_VISTEL_VERSION);
    app.require_subcommand(1);
    Arguments arguments;
    add_decode(app, arguments);
    add_catalogue(app, arguments);
    add_monitor(app, arguments);
    if (argc > 1 && argv[1][0] != '-' && !has_command(app, argv[1])) return vistel::EXIT_FAILED;
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const int status = app.exit(error);
        return status == 0 ? vistel::EXIT_CLEAN : vistel::EXIT_FAILED;
    }

    if (app.got_subcommand("monitor")) return vistel::run_monitor(arguments.monitor);
    if (app.got_subcommand("catalogue")) return vistel::run_catalogue(arguments.table);
    if (arguments.json) arguments.decode.form = vistel::DecodeOptions::Form::json;
    if (arguments.csv) arguments.decode.form = vistel::DecodeOptions::Form::csv;
    return vistel::run_decode(arguments.decode);
}

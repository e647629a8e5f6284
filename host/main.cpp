#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <iostream>
#include <sstream>

#include "command_line/command_line.h"
#include "command_line/start.h"
#include "commands/catalogue.h"
#include "commands/convert.h"
#include "commands/decode.h"
#include "commands/devices.h"
#include "commands/encode.h"
#include "commands/neighbour.h"
#include "commands/output_status.h"
#include "commands/record.h"
#include "commands/replay.h"
#include "commands/user_settings.h"
#include "completion/option_table.h"
#include "readers/formats.h"
#include "text/printable.h"
#include "text/words.h"
#include "writers/written_formats.h"

namespace {

/// The formats of recordings, with a line on each.
std::string format_notes() {
    std::string notes = "Formats of recordings:";
    for (const vistel::Format& format : vistel::all_formats()) {
        constexpr std::size_t column = 26;
        const std::string names = vistel::concat(format.name, format.also.empty() ? "" : ", ", format.also);
        notes.append("\n  ").append(names);
        notes.append(column - std::min(column, names.size()), ' ').append(format.about);
    }
    return notes;
}

void add_timeout(CLI::App& command, double& timeout) {
    command
        .add_option("--timeout", timeout,
                    "Seconds without traffic until a live source is told to be silent; 0 is never")
        ->check(CLI::Range(0.0, 86400.0))
        ->capture_default_str();
}

void add_quiet(CLI::App& command, bool& quiet) {
    command.add_flag("-q,--quiet", quiet, "Tell nothing but what makes the exit status another than 0");
}

/// What the recordings of a command hold.
void add_format(CLI::App& command, vistel::InputOptions& options) {
    vistel::add_format(command, options.format,
                       "Format of the recordings; recognised by their contents if not given");
    vistel::add_contents(command, options.contents);
    command.footer(format_notes());
}

/// What every command takes that reads recordings and live sources.
void add_input(CLI::App& command, vistel::InputOptions& options) {
    command
        .add_option("FILE", options.names,
                    "Recordings or live source: files, which are read one after the other, - for standard "
                    "input, can0, tcp://HOST:PORT, udp://:PORT, tcp-listen://:PORT or serial:DEVICE (see the "
                    "manual)")
        ->default_str("-");
    command.add_flag("--merge", options.merge, "Several recordings by time instead of one after the other");
    add_format(command, options);
    add_timeout(command, options.timeout);
    add_quiet(command, options.quiet);
}

/// The option for a format to write.
CLI::Option* add_written_format(CLI::App& command, const char* names, std::string& format,
                                const char* about) {
    const auto usual_name = [](const std::string& name) {
        auto found = vistel::find_format(name);
        return found ? std::string((*found)->name) : name;
    };
    return command.add_option(names, format, about)
        ->transform(CLI::IsMember(vistel::written_formats(), usual_name));
}

// Options that say what to do with it later, when all of them are known.
struct Arguments {
    vistel::DecodeOptions decode;
    vistel::ConvertOptions convert;
    vistel::RecordOptions record;
    vistel::ReplayOptions replay;
    vistel::DevicesOptions devices;
    vistel::EncodeOptions encode;
    bool json = false;
    bool csv = false;
    std::string table;
    pgn_vistel::core::Definitions listed = pgn_vistel::core::Definitions::corrected;
    std::vector<std::string> of_program;
    bool no_config = false;
};

/// What the user usually wants, in the arguments of all commands. False where that cannot be read.
bool apply_configuration(Arguments& arguments) {
    if (arguments.no_config) return true;
    auto settings = vistel::usual_settings();
    if (!settings) {
        std::fprintf(stderr, "vistel: %s\n", settings.error().text.c_str());
        return false;
    }
    settings->apply(arguments.decode.units);
    settings->apply(arguments.encode.units);
    for (vistel::InputOptions* const input : {&arguments.decode.input, &arguments.convert.input,
                                              &arguments.devices.input, &arguments.replay.input})
        for (std::string& name : input->names) settings->apply(name);
    settings->apply(arguments.record.source);
    settings->apply(arguments.replay.to);
    return true;
}

void add_decode(CLI::App& app, Arguments& arguments) {
    CLI::App* const command =
        app.add_subcommand("decode", "Decode recordings or a live stream, message by message");
    vistel::DecodeOptions& options = arguments.decode;
    add_input(*command, options.input);
    CLI::Option* const json = command->add_flag("--json", arguments.json, "One JSON object a message");
    command->add_flag("--csv", arguments.csv, "One CSV row a field")->excludes(json);
    vistel::add_pgns(*command, options.pgns);
    vistel::add_sources(*command, options.sources);
    vistel::add_units(*command, options.units.set, options.units.units);
    vistel::add_definitions(*command, options.definitions);
    command->add_flag("--plain-numbers", options.plain_numbers, "Numbers without their hexadecimal form");
    command->add_flag("--bus", options.bus, "Tell the bus of each message, in CSV in a last column");
    command->add_flag("--stats", options.statistics, "Say at the end what was read, on standard error");
}

void add_devices(CLI::App& app, Arguments& arguments) {
    CLI::App* const command =
        app.add_subcommand("devices", "List the devices on the bus of recordings or a live stream");
    vistel::DevicesOptions& options = arguments.devices;
    add_input(*command, options.input);
    CLI::Option* const json = command->add_flag("--json", arguments.json, "One JSON object a device");
    command->add_flag("--csv", arguments.csv, "One CSV row a device")->excludes(json);
    command->add_flag(
        "--ask", options.input.sends,
        "Ask the devices of a live source for what they have not said; otherwise nothing is sent");
    command->add_flag("--pgns", options.by_pgn, "What each device sends, too, by PGN");
    command
        ->add_option("--every", options.every,
                     "Print the table of a live stream again after so many seconds; 0 for once, at its end")
        ->check(CLI::Range(0.0, 86'400.0));
}

void add_record(CLI::App& app, Arguments& arguments) {
    CLI::App* const command =
        app.add_subcommand("record", "Keep what a live source brings, with its times, until interrupted");
    vistel::RecordOptions& options = arguments.record;
    command
        ->add_option("SOURCE", options.source, "Live source: can0, tcp://HOST:PORT, serial:DEVICE and so on")
        ->required();
    command->add_option("FILE", options.output, "File to write; - is standard output")->required();
    command
        ->add_option_function<std::string>(
            "--rotate",
            [&options](const std::string& text) {
                auto rotation = vistel::parse_rotation(text);
                if (!rotation) throw CLI::ValidationError("--rotate", rotation.error().text);
                options.rotation = *rotation;
            },
            "A new file at each size or time, as in 100M or 1h; the time is put into its name")
        ->type_name("LIMIT");
    add_timeout(*command, options.timeout);
    add_quiet(*command, options.quiet);
}

void add_replay(CLI::App& app, Arguments& arguments) {
    CLI::App* const command =
        app.add_subcommand("replay", "Play recordings to other programs, in their own time");
    vistel::ReplayOptions& options = arguments.replay;
    command->add_option("FILE", options.input.names, "Recordings, which are played one after the other")
        ->required();
    command
        ->add_option("--to", options.to,
                     "Where: can0, udp://HOST:PORT, tcp-listen://:PORT or tcp://HOST:PORT")
        ->required();
    add_written_format(*command, "--as", options.as, "Format to send; yacht-devices if not given");
    vistel::add_speed(*command, options.speed);
    command->add_flag("--loop", options.loop, "From the start again at the end");
    add_format(*command, options.input);
    add_quiet(*command, options.input.quiet);
    vistel::add_definitions(*command, options.definitions);
}

void add_convert(CLI::App& app, Arguments& arguments) {
    CLI::App* const command =
        app.add_subcommand("convert", "Write recordings or a live stream in another format");
    vistel::ConvertOptions& options = arguments.convert;
    add_input(*command, options.input);
    add_written_format(*command, "--to", options.to, "Format to write")->required();
    command->add_option("-o,--output", options.output, "File to write; - is standard output")
        ->type_name("FILE")
        ->capture_default_str();
    vistel::add_definitions(*command, options.definitions);
}

constexpr const char* encode_notes =
    R"(Labels and values are what 'vistel decode' shows, so that its "Label: value unit" can be given back as
"Label=value unit". Without a unit the selected one is meant; '-' stands for not available, as do fields
that are not given. A coded field takes its text or number. A label that is shown several times ("NMEA
Reserved", fields of a repeating group) is given several times, the n-th for the n-th; numbered ones as
they are shown ("PGN supported #2"). The count before a repeating group is filled in. Data=01 02 FF gives
the payload as bytes, with fields the bytes behind them.
A PGN has variants, which manufacturer, function code and the like tell apart. The one that the fields fit
is sent; its name stands for it, too, in place of the PGN. What tells it is filled in.
  vistel encode "Furuno: Heave" "Heave=1.2 m"
  vistel encode 127250 "Heading Sensor Reading=123.4 °" "Heading Sensor Reference=Magnetic")";

void add_encode(CLI::App& app, Arguments& arguments) {
    CLI::App* const command =
        app.add_subcommand("encode", "Build a message from typed fields, as a line that 'decode' reads");
    command->footer(encode_notes);
    vistel::EncodeOptions& options = arguments.encode;
    command->add_option("PGN", options.pgn, "Number or name of the PGN, or name of a variant")->required();
    command->add_option("FIELDS", options.fields, "LABEL=VALUE[ UNIT] ...")->option_text(" ");
    CLI::Option* const list = command->add_flag(
        "--list", options.list, "Show the fields of the PGN (size, units, choices) or its variants");
    command->add_flag("--all-choices", options.all_choices, "Long choices to their end in that list")
        ->needs(list);
    add_written_format(*command, "--format", options.format, "Of the line, or of lines with a frame each")
        ->capture_default_str();
    command
        ->add_option("--priority", options.priority, "0 (highest) to 7; that of the catalogue if not given")
        ->check(CLI::Range(0, 7));
    command->add_option("--source", options.source, "Source address")
        ->check(CLI::Range(0, 255))
        ->capture_default_str();
    command->add_option("--destination", options.destination, "Destination address; 255 is everyone")
        ->check(CLI::Range(0, 255))
        ->capture_default_str();
    command->add_option("--time", options.time,
                        "Time stamp, as in 2026-09-10T08:00:00.25Z; none if not given");
    command->add_option("--sequence", options.sequence, "Sequence of a fast packet's frames")
        ->check(CLI::Range(0, 7))
        ->capture_default_str();
    vistel::add_units(*command, options.units.set, options.units.units);
    command->add_option("--variant", options.variant,
                        "Variant of the PGN, by its name or as in 'vistel catalogue pgns'");
    vistel::add_definitions(*command, options.definitions);
}

void add_catalogue(CLI::App& app, Arguments& arguments) {
    CLI::App* const command =
        app.add_subcommand("catalogue", "Print a table of the catalogue as tab-separated text");
    command->add_option("TABLE", arguments.table, "Which one")
        ->required()
        ->check(CLI::IsMember(vistel::catalogue_tables()));
    vistel::add_definitions(*command, arguments.listed);
}

// Commands that are programs of their own, which know their options.
void add_program(CLI::App& app, const char* name, const char* about, Arguments& arguments) {
    CLI::App* const command = app.add_subcommand(name, about);
    command->set_help_flag();
    command->prefix_command();
    command->callback([command, &arguments] { arguments.of_program = command->remaining(); });
}

// Says which there are where there is no such command.
bool has_command(const CLI::App& app, const std::string& name) {
    std::string names;
    for (const CLI::App* const command : app.get_subcommands([](const CLI::App*) { return true; })) {
        if (command->get_name() == name) return true;
        names.append(names.empty() ? "" : ", ").append(command->get_name());
    }
    std::fprintf(stderr, "vistel: no command '%s'; there are: %s\n", vistel::harmless(name).c_str(),
                 names.c_str());
    return false;
}

int run_program(const char* command, const char* own_name, const std::vector<std::string>& arguments) {
    const std::string name = std::string("vistel-") + command;
    auto status = vistel::run_neighbour(name, own_name, arguments);
    if (status) return *status;
    std::fprintf(stderr, "vistel: cannot start %s (%s); 'vistel decode' shows the messages as text\n",
                 name.c_str(), status.error().text.c_str());
    return vistel::EXIT_FAILED;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> words;
    if (!vistel::start_program(argc, argv, words)) return vistel::EXIT_FAILED;
    CLI::App app("NMEA 2000 traffic, decoded");
    app.name("vistel");
    app.allow_windows_style_options(false);  // /tmp/boat.log is a file
    app.set_version_flag("--version", PGN_VISTEL_VERSION);
    app.require_subcommand(1);
    app.failure_message(vistel::usage_error);
    Arguments arguments;
    add_decode(app, arguments);
    add_devices(app, arguments);
    add_convert(app, arguments);
    add_record(app, arguments);
    add_replay(app, arguments);
    add_encode(app, arguments);
    for (CLI::App* const command : app.get_subcommands([](const CLI::App*) { return true; }))
        vistel::add_no_config(*command, arguments.no_config);
    add_catalogue(app, arguments);
    add_program(app, "monitor", "Show a recording or a live stream in a window", arguments);
    add_program(app, "top", "Show a recording or a live stream in the terminal, rewritten in place",
                arguments);
    if (vistel::print_option_table(app, words)) return vistel::EXIT_CLEAN;
    if (!words.empty() && !words.back().starts_with('-') && !has_command(app, words.back()))
        return vistel::EXIT_FAILED;
    // The parser drops empty words, which here are fields that somebody forgot to fill in.
    if (std::count(words.begin(), words.end(), "") > 0) {
        std::fputs("vistel: an argument is empty\n", stderr);
        return vistel::EXIT_FAILED;
    }
    try {
        app.parse(std::move(words));
    } catch (const CLI::ParseError& error) {
        std::ostringstream shown;  // help, or the version
        return app.exit(error, shown, std::cerr) == 0 ? vistel::print_out(shown.str()) : vistel::EXIT_FAILED;
    }

    for (const char* const name : {"monitor", "top"})  // which read it themselves
        if (app.got_subcommand(name)) return run_program(name, argc > 0 ? argv[0] : "", arguments.of_program);
    if (app.got_subcommand("catalogue")) return vistel::run_catalogue(arguments.table, arguments.listed);
    if (!apply_configuration(arguments)) return vistel::EXIT_FAILED;
    if (app.got_subcommand("record")) return vistel::run_record(arguments.record);
    if (app.got_subcommand("replay")) return vistel::run_replay(arguments.replay);
    if (app.got_subcommand("convert")) return vistel::run_convert(arguments.convert);
    if (app.got_subcommand("encode")) return vistel::run_encode(arguments.encode);
    if (app.got_subcommand("devices")) {
        if (arguments.json) arguments.devices.form = vistel::TableForm::json;
        if (arguments.csv) arguments.devices.form = vistel::TableForm::csv;
        return vistel::run_devices(arguments.devices);
    }
    if (arguments.json) arguments.decode.form = vistel::DecodeOptions::Form::json;
    if (arguments.csv) arguments.decode.form = vistel::DecodeOptions::Form::csv;
    return vistel::run_decode(arguments.decode);
}

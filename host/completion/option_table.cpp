#include "completion/option_table.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

#include "commands/unit_options.h"

namespace vistel {

namespace {

constexpr const char* no_value = "?";

/// The words of a list, each up to `end_mark`.
std::vector<std::string> split(std::string_view list, std::string_view separator, std::string_view end_mark) {
    std::vector<std::string> words;
    for (std::size_t start = 0; start <= list.size();) {
        const std::size_t end = std::min(list.find(separator, start), list.size());
        const std::string_view word = list.substr(start, end - start);
        words.emplace_back(word.substr(0, word.find(end_mark)));
        start = end + separator.size();
    }
    return words;
}

/// "...; there are: a, b" or "...; known are a, b", and the parser's own "... {a,b}" and "... {a->0,b->1}".
std::vector<std::string> choices_in(std::string_view refusal) {
    for (const std::string_view own : {"; there are: ", "; known are "})
        if (const std::size_t at = refusal.find(own); at != refusal.npos)
            return split(refusal.substr(at + own.size()), ", ", "\n");
    const std::size_t begin = refusal.find('{');
    const std::size_t end = refusal.find('}');
    if (begin == refusal.npos || end == refusal.npos || end < begin) return {};
    return split(refusal.substr(begin + 1, end - begin - 1), ",", "->");
}

std::vector<std::string> choices_of(const Status& refusal) {
    return refusal ? std::vector<std::string>() : choices_in(refusal.error().text);
}

std::vector<std::string> units() {
    std::vector<std::string> choices;
    pgn_vistel::core::UnitSelection selection;
    for (const std::string& quantity : choices_of(select_unit(selection, "?=?")))
        for (const std::string& unit : choices_of(select_unit(selection, quantity + "=?")))
            choices.push_back(quantity + "=" + unit);
    return choices;
}

std::vector<std::string> choices_of(CLI::Option& option) {
    // These are looked at when all of the command line is known.
    pgn_vistel::core::UnitSelection selection;
    if (option.check_lname("units")) return choices_of(select_units(selection, no_value));
    if (option.check_lname("unit")) return units();
    try {
        option.add_result(no_value);
        option.run_callback();
    } catch (const CLI::ParseError& refusal) {
        return choices_in(refusal.what());
    }
    return {};
}

void print_option(CLI::Option& option, const std::string& name) {
    std::string names;
    for (const std::string& short_name : option.get_snames()) names += " -" + short_name;
    for (const std::string& long_name : option.get_lnames()) names += " --" + long_name;
    const bool has_value = option.get_items_expected_max() > 0;
    std::string value = option.get_positional() ? option.get_name(true) : option.get_type_name();
    if (!has_value) value.clear();
    std::string row = "option\t" + name + "\t" + (names.empty() ? "" : names.substr(1)) + "\t" +
                      value.substr(0, value.find_first_of(": ")) + "\t" +
                      (option.get_items_expected_max() > 1 ? "many" : "") + "\t" + option.get_description();
    if (has_value)
        for (const std::string& choice : choices_of(option)) row += "\t" + choice;
    std::printf("%s\n", row.c_str());
}

void print_command(CLI::App& command, const std::string& name) {
    std::printf("command\t%s\t%s\n", name.c_str(), command.get_description().c_str());
    for (CLI::Option* const option : command.get_options()) print_option(*option, name);
}

}  // namespace

bool print_option_table(CLI::App& app, const std::vector<std::string>& words) {
    if (words.size() != 1 || words[0] != "--option-table") return false;
    print_command(app, "");
    for (CLI::App* const command : app.get_subcommands([](const CLI::App*) { return true; }))
        print_command(*command, command->get_name());
    return true;
}

}  // namespace vistel

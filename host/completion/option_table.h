#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace vistel {

/// Whether a command line is nothing but "--option-table", which help does not show. `app` is then printed on
/// standard output, a row a line with tabs between its cells, for those who make completions for shells of
/// it:
///
///   command  NAME  what it does; the NAME of the program itself is empty
///   option   NAME of the command  "-o --output", empty for a word without  value's name, empty for none
///            "many" where it may be given again  what it is  choice ...
///
/// The choices are those that a refusal of "?" names: they are what the program takes, and listed nowhere
/// else.
[[nodiscard]] bool print_option_table(CLI::App& app, const std::vector<std::string>& words);

}  // namespace vistel

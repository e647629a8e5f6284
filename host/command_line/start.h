#pragma once

#include <string>
#include <vector>

namespace vistel {

/// What a program does before anything else: it makes standard streams pass bytes as they are, and a console
/// show UTF-8. `words` receives the words behind the program's name in UTF-8, the last one first, as
/// `CLI::App::parse` takes them. False where that cannot be, which standard error says.
[[nodiscard]] bool start_program(int argc, char** argv, std::vector<std::string>& words);

}  // namespace vistel

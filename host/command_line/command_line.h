#pragma once

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

namespace vistel {

/// The words behind the program's name, the last one first, as `CLI::App::parse` takes them. Some kernels
/// start a program without even its name.
inline std::vector<std::string> words(int argc, char** argv) {
    return {std::reverse_iterator(argv + argc), std::reverse_iterator(argv + std::min(argc, 1))};
}

/// What both programs say of a command line that they cannot read.
inline std::string usage_error(const CLI::App* command, const CLI::Error& error) {
    return "vistel: " + CLI::FailureMessage::simple(command, error);
}

}  // namespace vistel

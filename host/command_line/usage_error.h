#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace vistel {

/// What both programs say of a command line that they cannot read.
inline std::string usage_error(const CLI::App* command, const CLI::Error& error) {
    return "vistel: " + CLI::FailureMessage::simple(command, error);
}

}  // namespace vistel

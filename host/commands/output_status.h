#pragma once

#include <string>

#include "output/sink.h"

namespace vistel {

/// The exit status that standard output leads to, when all is written. A reader that has gone (`| head`) has
/// seen what it wanted; any other failure is told.
int output_status(const Sink& out);

/// Writes a text to standard output. Returns the exit status that it leads to.
int print_out(const std::string& text);

}  // namespace vistel

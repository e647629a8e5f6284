#pragma once

#include <string>
#include <vector>

#include "readers/content_kind.h"

namespace vistel {

/// Which recordings a command reads, and how.
struct InputOptions {
    std::vector<std::string> names = {"-"};           ///< of files or live sources (sources/source_name.h)
    std::string format;                               ///< name of a format; empty to recognise each
    ContentKind contents = ContentKind::as_it_seems;  ///< for formats that do not tell
    bool merge = false;                               ///< by time, instead of one after the other
    bool sends = false;                               ///< frames are going to be sent to live sources
    bool quiet = false;                               ///< nothing is told but what the exit status stands for
    double timeout = 30;    ///< seconds without traffic until a live source says so; 0 never
    int patience_ms = 250;  ///< longest wait for input; 0 for those who look again themselves
};

}  // namespace vistel

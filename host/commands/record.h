#pragma once

#include <string>

#include "commands/recorded_file.h"
#include "readers/recording.h"
#include "sources/link_watch.h"

namespace vistel {

struct RecordOptions {
    std::string source;
    std::string output;
    Rotation rotation;
    bool quiet = false;   ///< nothing is told but what the exit status stands for
    double timeout = 30;  ///< seconds without traffic until that is told; 0 never
};

/// Keeps what a live source brings in a file that other commands read, until it is interrupted: the bytes of
/// a gateway as they come, with their times, frames of a CAN interface as a capture. Returns the exit status.
int run_record(const RecordOptions& options);

/// The same for a source of frames that is open, with its account.
int record_frames(const RecordOptions& options, Recording& source, const LinkCounters& counters);

}  // namespace vistel

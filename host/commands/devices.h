#pragma once

#include "commands/device_table.h"
#include "inputs/input_options.h"

namespace vistel {

struct DevicesOptions {
    InputOptions input;  ///< `sends`: devices are asked for what they have not said
    TableForm form = TableForm::text;
    bool by_pgn = false;  ///< what each device sends, too
    /// Seconds after which the table is printed again while a live source goes on; 0 for once, at its end.
    /// Negative: every second where a terminal shows it as text, else once.
    double every = -1;
};

/// Prints the devices of recordings or of a live source to standard output; problems go to standard error.
/// Returns the exit status.
int run_devices(const DevicesOptions& options);

}  // namespace vistel

#pragma once

#include <string>
#include <string_view>

#include "network/network.h"

namespace vistel {

/// How a table of devices is printed.
enum class TableForm {
    text,  ///< columns for people
    json,  ///< an object a device, each in a line of its own
    csv,   ///< a row a device
};

/// The header line of CSV, which comes once; empty for other forms.
std::string device_header(TableForm form, bool by_pgn);

/// The devices of a network. `bus` is its name, or empty. `by_pgn`: what each of them sends,
/// too; of CSV a row a PGN of a device. JSON has that in any case.
std::string device_table(const Network& network, std::string_view bus, TableForm form, bool by_pgn);

}  // namespace vistel

#pragma once

#include <array>
#include <string>

#include "network/streams.h"

namespace vistel {

/// Names of the orders, by their numbers.
inline constexpr std::array stream_order_names = {"appearance", "PGN", "source", "rate", "latest"};

/// The name of a bus in so many columns, of a long one the end, by which sources differ: "~.0.1:1457".
std::string short_bus(const std::string& name, std::size_t columns);

/// "0.3s", "12s", "5m", "3h"
std::string age_text(PlayTime age);

/// "12/s"; of slow streams the time from one message to the next, "20s"; "-" where it is not known.
std::string rate_text(double rate);

}  // namespace vistel

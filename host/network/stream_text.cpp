#include "network/stream_text.h"

#include <algorithm>

#include "text/words.h"

namespace vistel {

std::string short_bus(const std::string& name, std::size_t columns) {
    if (name.size() <= columns) return name;
    std::size_t from = name.size() - columns + 1;
    while (from < name.size() && (name[from] & 0xC0) == 0x80) ++from;  // in the middle of a character
    return "~" + name.substr(from);
}

std::string age_text(PlayTime age) {
    const double seconds = static_cast<double>(std::max<PlayTime>(0, age)) / one_second;
    if (seconds < 9.95) return formatted("%.1fs", seconds);
    if (seconds < 600) return formatted("%.0fs", seconds);
    if (seconds < 6000) return formatted("%.0fm", seconds / 60);
    return formatted("%.0fh", seconds / 3600);
}

std::string rate_text(double rate) {
    if (rate <= 0) return "-";
    if (rate < 0.095) return formatted("%.0fs", 1 / rate);  // so long from one to the next
    return formatted(rate < 9.95 ? "%.1f/s" : "%.0f/s", rate);
}

}  // namespace vistel

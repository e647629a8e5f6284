#include "writers/candump_writer.h"

#include <algorithm>

#include "text/hex.h"
#include "text/words.h"
#include "writers/time_text.h"

namespace vistel {
namespace {

bool may_be_name(std::string_view name) {
    constexpr std::size_t most = 15;
    const auto is_shown = [](char c) { return c > ' ' && c <= '~' && c != '#' && c != '(' && c != '/'; };
    return !name.empty() && name.size() <= most && std::ranges::all_of(name, is_shown);
}

}  // namespace

bool CandumpWriter::is_taken(std::string_view name) const {
    return std::ranges::find(names_, name) != names_.end();
}

std::string_view CandumpWriter::name_bus(std::uint8_t bus, std::string_view name) {
    if (names_.size() <= bus) names_.resize(bus + std::size_t{1});
    names_[bus].clear();
    std::string chosen(name);
    if (!may_be_name(name) || is_taken(name)) {
        unsigned number = bus;
        while (is_taken(chosen = concat("can", number))) ++number;
    }
    return names_[bus] = std::move(chosen);
}

void CandumpWriter::put_frame(std::uint32_t identifier, const Record& record, std::string& out) {
    if (record.time.origin != RecordTime::Origin::none) {
        append_seconds(out += '(', record.time);
        out += ") ";
    }
    if (record.bus < names_.size() && !names_[record.bus].empty()) {
        out += names_[record.bus];
    } else {
        append_part(out += "can", unsigned{record.bus});
    }
    append_hex(out += ' ', identifier, 8);
    out += '#';
    for (const std::uint8_t byte : payload_of(record)) append_hex(out, byte, 2);
    out += '\n';
}

}  // namespace vistel

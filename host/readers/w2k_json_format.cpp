#include "readers/w2k_json_format.h"

#include <charconv>

#include "text/quotes.h"
#include "text/words.h"

namespace vistel {
namespace {

constexpr std::string_view beginning = "{\"pgn\":", payload = "\"payload\":[";
constexpr std::uint8_t received_message = 0x93;

}  // namespace

bool W2kJsonFormat::resembles(std::string_view line) {
    return line.starts_with(beginning) && line.find(payload) != std::string_view::npos;
}

LineResult W2kJsonFormat::read(std::string_view line, Record& record, Problem& problem) {
    const std::size_t found = line.find(payload);
    if (!line.starts_with(beginning) || found == std::string_view::npos) {
        describe(problem, quoted(line.substr(0, 80)), " is not {\"pgn\":...,\"payload\":[...]}");
        return LineResult::problem;
    }
    line.remove_prefix(found + payload.size());
    std::size_t count = 0;
    for (char separator = ','; separator == ','; ++count) {
        line = trimmed(line);
        std::uint8_t byte = 0;
        const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), byte);
        line.remove_prefix(static_cast<std::size_t>(end - line.data()));
        line = trimmed(line);
        separator = line.empty() ? '\0' : line[0];
        if (error != std::errc{} || (separator != ',' && separator != ']') || count == bytes_.size()) {
            describe(problem, "number ", count + 1, " of the payload is no byte");
            return LineResult::problem;
        }
        bytes_[count] = byte;
        line.remove_prefix(1);
    }
    if (bytes_[0] != received_message) return LineResult::foreign;
    return records_.read_message({bytes_.data(), count}, record, problem) == Found::record
               ? LineResult::record
               : LineResult::problem;
}

}  // namespace vistel

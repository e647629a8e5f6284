#include "readers/twocan_format.h"

#include <algorithm>

#include "can/identifier.h"
#include "readers/scan.h"
#include "text/hex.h"
#include "text/quotes.h"

namespace vistel {
namespace {

constexpr unsigned identifier_bytes = 4, line_bytes = identifier_bytes + max_frame_bytes;

bool read_line(std::string_view line, std::uint8_t (&bytes)[line_bytes]) {
    for (std::uint8_t& byte : bytes) {
        const std::string_view cell = take_cell(line);
        std::uint32_t value = 0;
        if (cell.size() != 4 || !cell.starts_with("0x") || !parse_hex(cell.substr(2), value)) return false;
        byte = static_cast<std::uint8_t>(value);
    }
    return line.empty();
}

}  // namespace

bool TwocanFormat::resembles(std::string_view line) {
    std::uint8_t bytes[line_bytes];
    return read_line(line, bytes);
}

LineResult TwocanFormat::read(std::string_view line, Record& record, Problem& problem) {
    std::uint8_t bytes[line_bytes];
    if (!read_line(line, bytes)) {
        describe(problem, quoted(line), " is not ", line_bytes, " bytes as 0xhh");
        return LineResult::problem;
    }
    std::uint32_t identifier = 0;
    for (unsigned i = identifier_bytes; i > 0; --i) identifier = identifier << 8 | bytes[i - 1];
    record.time = {};
    set_frame(record, identifier & max_identifier);
    std::copy(bytes + identifier_bytes, std::end(bytes), record.msg.data);
    record.msg.length = max_frame_bytes;
    return LineResult::record;
}

}  // namespace vistel

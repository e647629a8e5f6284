#include "readers/python_can_format.h"

#include <algorithm>

#include "can/identifier.h"
#include "readers/scan.h"
#include "readers/timestamp.h"
#include "text/base64.h"
#include "text/quotes.h"

namespace vistel {

bool PythonCanFormat::resembles(std::string_view line) {
    return line.starts_with("timestamp,arbitration_id,");
}

LineResult PythonCanFormat::read(std::string_view line, Record& record, Problem& problem) {
    if (resembles(line)) return LineResult::nothing;
    const std::string_view time = take_cell(line);
    if (!parse_seconds(time, record.time)) {
        describe(problem, "time ", quoted(time), " is not a number of seconds");
        return LineResult::problem;
    }
    const std::string_view id = take_cell(line);
    const bool is_extended = take_cell(line) == "1", is_remote = take_cell(line) == "1",
               is_error = take_cell(line) == "1";
    std::uint32_t identifier = 0, length = 0;
    if (!read_number(take_cell(line), "length", 64, length, problem)) return LineResult::problem;
    if (!is_extended || is_remote || is_error || length > max_frame_bytes) return LineResult::foreign;
    if (!read_number_as_identifier(id, 16, identifier, problem)) return LineResult::problem;
    std::uint8_t bytes[max_frame_bytes];
    const std::string_view data = take_cell(line);
    const auto given = read_base64(data, bytes);
    if (given != length) {
        describe(problem, "data ", quoted(data), " are not ", length, " bytes in base64");
        return LineResult::problem;
    }
    set_frame(record, identifier);
    std::copy_n(bytes, length, record.msg.data);
    record.msg.length = static_cast<std::uint16_t>(length);
    return LineResult::record;
}

}  // namespace vistel

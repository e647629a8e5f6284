#include "readers/slcan_format.h"

#include <algorithm>

#include "can/identifier.h"
#include "readers/scan.h"
#include "text/hex.h"
#include "text/quotes.h"

namespace vistel {
namespace {

constexpr std::string_view ends = "\r\a\n";
constexpr std::size_t most_item = 160;  // a frame of 64 bytes and its time take 142
constexpr std::size_t identifier_digits = 8, header_size = 1 + identifier_digits + 1, time_digits = 4;

/// A frame of 29 bits that is no other kind; `x` is how one adapter writes the letter.
bool begins_frame(std::string_view item) {
    return item.starts_with('T') || item.starts_with('x');
}

/// Number of bytes, or more than a frame has.
unsigned length_of(std::string_view item) {
    if (item.size() < header_size) return max_frame_bytes + 1;
    const char digit = item[header_size - 1];
    return digit >= '0' && digit <= '8' ? static_cast<unsigned>(digit - '0') : max_frame_bytes + 1;
}

bool is_frame(std::string_view item) {
    std::uint32_t identifier = 0;
    const unsigned length = length_of(item);
    if (!begins_frame(item) || length > max_frame_bytes ||
        !parse_hex(item.substr(1, identifier_digits), identifier))
        return false;
    const std::size_t size = header_size + 2 * std::size_t{length};
    return (item.size() == size || item.size() == size + time_digits) &&
           std::all_of(item.begin() + header_size, item.end(), [](char c) { return hex_digit(c) < not_hex; });
}

/// What adapter and program say to each other begins so.
bool is_dialogue(char letter) {
    constexpr std::string_view letters = "VvNFSsOLCZzMmWwUXYPA";
    return letters.find(letter) != std::string_view::npos;
}

}  // namespace

/// Frames, or dialogue and then a frame.
bool SlcanFormat::begins(std::string_view head) {
    constexpr std::size_t most_dialogue = 8;
    for (;;) {
        const std::size_t end = head.find_first_of(ends);
        if (end > most_item) return false;
        const std::string_view item = head.substr(0, end);
        if (is_frame(item)) return head[end] == '\r';
        if (!item.empty() && (item.size() > most_dialogue || !is_dialogue(item[0]))) return false;
        head.remove_prefix(end + 1);
    }
}

Found SlcanFormat::take(std::string_view bytes, bool last, std::size_t& size, Record& record,
                        Problem& problem) {
    std::size_t end = bytes.substr(0, most_item).find_first_of(ends);
    if (end == std::string_view::npos) {
        if (bytes.size() < most_item && !last) return Found::more;
        end = std::min(bytes.size(), most_item);
        size = end;
        if (end == most_item) {
            describe(problem, "no carriage return within ", most_item, " characters");
            return Found::problem;
        }
    } else {
        size = end + 1;
    }
    return end == 0 ? Found::nothing : read(bytes.substr(0, end), record, problem);
}

Found SlcanFormat::read(std::string_view item, Record& record, Problem& problem) {
    constexpr std::string_view other_frames = "tRrdDbB";
    if (!begins_frame(item)) {
        if (other_frames.find(item[0]) != std::string_view::npos) return Found::foreign;
        if (is_dialogue(item[0])) return Found::nothing;
        describe(problem, quoted(item), " begins like no frame and no answer");
        return Found::problem;
    }
    if (!is_frame(item)) {
        describe(problem, quoted(item), " is not T, identifier, length and bytes");
        return Found::problem;
    }
    std::uint32_t identifier = 0, milliseconds = 0;
    if (!read_identifier(item.substr(1, identifier_digits), identifier, problem)) return Found::problem;
    const std::size_t bytes_size = 2 * std::size_t{length_of(item)};
    const std::string_view bytes = item.substr(header_size, bytes_size);
    const std::string_view time = item.substr(header_size + bytes_size);
    record.time = {};
    if (parse_hex(time, milliseconds))
        record.time = {milliseconds_.unroll(milliseconds % 60'000) * 1'000'000, RecordTime::Origin::start};
    record.bus = 0;
    set_frame(record, identifier);
    return read_packed_bytes(bytes, max_frame_bytes, record.msg, problem) ? Found::record : Found::problem;
}

}  // namespace vistel

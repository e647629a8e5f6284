#include "readers/blf_format.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstring>
#include <limits>

#include "can/identifier.h"
#include "readers/byte_order.h"
#include "readers/unpacker.h"

namespace vistel {
namespace {

constexpr std::string_view file_mark = "LOGG", object_mark = "LOBJ";
constexpr std::size_t file_header = 72, object_header = 16, container_header = 32;

/// Containers usually hold 128 KiB.
constexpr std::size_t most_container = std::size_t{1} << 19, most_contents = std::size_t{1} << 20;

/// Objects that are read, and so what may be left of a container for the next one.
constexpr std::size_t most_object = 4096;

/// Bytes with which objects are filled up.
constexpr std::size_t most_padding = 8;

enum ObjectType : std::uint32_t {
    can_message = 1,
    container = 10,
    can_message2 = 86,
    can_fd_message = 100,
    can_fd_message64 = 101,
};

/// Where the objects of frames have what, from behind their headers.
struct FrameLayout {
    std::size_t channel_size, flags_at, flags_size, length_at, identifier_at, data_at;
    std::uint32_t remote;  // in the flags
    std::size_t fd_at;     // a byte of flags for CAN FD; 0 for none
    std::uint8_t fd;       // in it
};
constexpr FrameLayout classical{2, 2, 1, 3, 4, 8, 0x80, 0, 0};
constexpr FrameLayout with_fd{2, 2, 1, 3, 4, 20, 0x80, 13, 0x01};
constexpr FrameLayout with_fd64{1, 12, 4, 1, 4, 40, 0x10, 13, 0x10};

const FrameLayout* layout_of(std::uint32_t type) {
    switch (type) {
        case can_message:
        case can_message2: return &classical;
        case can_fd_message: return &with_fd;
        case can_fd_message64: return &with_fd64;
        default: return nullptr;
    }
}

template <class Number>
Number number_at(std::string_view bytes, std::size_t at) {
    return little_endian<Number>(bytes.data() + at);
}

/// Date and time as eight numbers, which may all be 0.
RecordTime read_date(std::string_view bytes) {
    std::uint16_t number[8];
    for (std::size_t i = 0; i < std::size(number); ++i) number[i] = number_at<std::uint16_t>(bytes, 2 * i);
    const auto [year, month, weekday, day, hour, minute, second, millisecond] = number;
    const std::chrono::year_month_day date{std::chrono::year{year}, std::chrono::month{month},
                                           std::chrono::day{day}};
    if (!date.ok() || year < 1970 || year > 2261 || hour > 23 || minute > 59 || second > 59 ||
        millisecond > 999)
        return {0, RecordTime::Origin::start};
    const auto time = std::chrono::sys_days(date) + std::chrono::hours(hour) + std::chrono::minutes(minute) +
                      std::chrono::seconds(second) + std::chrono::milliseconds(millisecond);
    return {std::chrono::nanoseconds(time.time_since_epoch()).count(), RecordTime::Origin::epoch};
}

/// Position of the next object, or of what may be the beginning of one at the end.
std::size_t find_object(std::string_view bytes, std::size_t from, bool last) {
    const std::size_t found = bytes.find(object_mark, from);
    if (found != std::string_view::npos) return found;
    return last ? bytes.size() : std::max(from, bytes.size() - (object_mark.size() - 1));
}

}  // namespace

BlfFormat::BlfFormat() : held_(std::make_unique_for_overwrite<char[]>(most_object + most_contents)) {}

bool BlfFormat::begins(std::string_view head) {
    return head.starts_with(file_mark) && head.size() >= file_mark.size() + 4 &&
           number_at<std::uint32_t>(head, file_mark.size()) >= file_header &&
           number_at<std::uint32_t>(head, file_mark.size()) <= most_object;
}

Found BlfFormat::take_header(std::string_view bytes, std::size_t& size, Problem& problem) {
    constexpr std::size_t start_at = 40;
    if (bytes.size() < file_header) return Found::more;
    size = file_header;
    if (!begins(bytes)) {
        describe(problem, "it does not begin as such a recording does");
        return Found::hopeless;
    }
    size = number_at<std::uint32_t>(bytes, file_mark.size());
    if (bytes.size() < size) return Found::more;
    start_ = read_date(bytes.substr(start_at));
    begun_ = true;
    return Found::nothing;
}

Found BlfFormat::take(std::string_view bytes, bool last, std::size_t& size, Record& record,
                      Problem& problem) {
    if (!begun_) return take_header(bytes, size, problem);
    const Found found = take_object(outer_, bytes, last, size, record, problem);
    gap_ = gap_ || found == Found::problem;
    return found;
}

Found BlfFormat::take_held(Record& record, Problem& problem) {
    while (held_begin_ < held_end_) {
        std::size_t size = 0;
        const Found found = take_object(inner_, {held_.get() + held_begin_, held_end_ - held_begin_}, false,
                                        size, record, problem);
        if (found == Found::more) break;
        held_begin_ += size;
        if (found != Found::nothing) return found;
    }
    return Found::more;
}

bool BlfFormat::is_within() const {
    return outer_.to_skip > 0 || inner_.to_skip > 0 || held_end_ - held_begin_ > most_padding;
}

std::string_view BlfFormat::bus_name(std::uint8_t bus) const {
    const auto end = std::to_chars(std::begin(bus_name_), std::end(bus_name_), bus + 1).ptr;
    return {bus_name_, static_cast<std::size_t>(end - bus_name_)};
}

Found BlfFormat::take_object(Sequence& sequence, std::string_view bytes, bool last, std::size_t& size,
                             Record& record, Problem& problem) {
    if (sequence.to_skip > 0) {
        size = static_cast<std::size_t>(std::min<std::uint64_t>(sequence.to_skip, bytes.size()));
        sequence.to_skip -= size;
        return Found::nothing;
    }
    if (bytes.size() < object_mark.size() && !last) return Found::more;
    if (!bytes.starts_with(object_mark)) {
        if (bytes.size() < most_padding + object_mark.size() && !last &&
            bytes.find(object_mark) == std::string_view::npos)
            return Found::more;
        size = find_object(bytes, 1, last);
        if (size <= most_padding || sequence.lost) return Found::nothing;
        sequence.lost = true;
        describe(problem, "here should an object begin");
        return Found::problem;
    }
    sequence.lost = false;
    if (bytes.size() < object_header) return Found::more;
    const auto whole = number_at<std::uint32_t>(bytes, 8);
    const auto type = number_at<std::uint32_t>(bytes, 12);
    if (whole < object_header) {
        size = object_mark.size();
        sequence.lost = true;
        describe(problem, "an object of ", whole, " bytes cannot be");
        return Found::problem;
    }
    const bool is_container = type == container && &sequence == &outer_;
    if (whole > (is_container ? most_container : most_object) ||
        (!is_container && layout_of(type) == nullptr)) {
        size = object_header;
        sequence.to_skip = whole - size;
        if (!is_container) return Found::nothing;
        describe(problem, "a container of ", whole, " bytes is too long");
        return Found::problem;
    }
    if (bytes.size() < whole) return Found::more;
    size = whole;
    bytes = bytes.substr(0, whole);
    return is_container ? open_container(bytes, problem) : read_frame(bytes, record, problem);
}

/// Puts the contents of a container behind what is left of the last one.
Found BlfFormat::open_container(std::string_view object, Problem& problem) {
    if (gap_) {
        held_begin_ = held_end_;
        inner_ = {0, true};
        gap_ = false;
    }
    const std::size_t left = held_end_ - held_begin_;
    std::memmove(held_.get(), held_.get() + held_begin_, left);
    held_begin_ = 0;
    held_end_ = left;
    constexpr std::uint16_t stored = 0, by_zlib = 2;
    const std::uint16_t method =
        object.size() < container_header ? by_zlib + 1 : number_at<std::uint16_t>(object, 16);
    const std::size_t announced = object.size() < container_header ? 0 : number_at<std::uint32_t>(object, 24);
    if (method > by_zlib || announced > most_contents) {
        describe(problem, "a container that cannot be opened");
        return Found::problem;
    }
    object.remove_prefix(container_header);
    std::span<char> room(held_.get() + left, announced);
    bool is_whole = object.size() >= announced;
    if (method == stored) {
        const std::size_t given = std::min(object.size(), announced);
        std::memcpy(room.data(), object.data(), given);
        room = room.subspan(given);
    } else {
        const auto unpacker = make_unpacker(Packing::zlib);
        is_whole = unpacker && unpacker->unpack(object, room) == Unpacker::Step::end;
    }
    const std::size_t given = announced - room.size();
    held_end_ += given;
    if (is_whole && room.empty()) return Found::nothing;
    describe(problem, "a container of ", announced, " bytes gives ", given);
    return Found::problem;
}

Found BlfFormat::read_frame(std::string_view object, Record& record, Problem& problem) const {
    constexpr std::size_t header_with_time = 32;
    const FrameLayout& layout = *layout_of(number_at<std::uint32_t>(object, 12));
    const std::size_t header = number_at<std::uint16_t>(object, 4);
    if (header < header_with_time || object.size() < header + layout.data_at) {
        describe(problem, "a frame of ", object.size(), " bytes is too short");
        return Found::problem;
    }
    const std::string_view body = object.substr(header);
    const auto word = number_at<std::uint32_t>(body, layout.identifier_at);
    const std::uint32_t flags = layout.flags_size == 4 ? number_at<std::uint32_t>(body, layout.flags_at)
                                                       : number_at<std::uint8_t>(body, layout.flags_at);
    constexpr std::uint32_t extended = 0x80000000;
    const bool is_fd = layout.fd_at != 0 && (static_cast<unsigned char>(body[layout.fd_at]) & layout.fd) != 0;
    if ((word & extended) == 0 || (flags & layout.remote) != 0 || is_fd) return Found::foreign;
    const std::size_t length =
        std::min<std::size_t>(number_at<std::uint8_t>(body, layout.length_at), max_frame_bytes);
    if (body.size() < layout.data_at + length) {
        describe(problem, "a frame of ", object.size(), " bytes is too short");
        return Found::problem;
    }
    constexpr std::uint32_t in_ten_microseconds = 1;
    const std::uint64_t unit = number_at<std::uint32_t>(object, 16) == in_ten_microseconds ? 10'000 : 1;
    const auto since = number_at<std::uint64_t>(object, 24);
    if (since >
        static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max() - start_.nanoseconds) / unit) {
        describe(problem, "the time of a frame is out of range");
        return Found::problem;
    }
    const unsigned channel =
        layout.channel_size == 1 ? number_at<std::uint8_t>(body, 0) : number_at<std::uint16_t>(body, 0);
    record.kind = Record::Kind::frame;
    record.bus = static_cast<std::uint8_t>(std::clamp(channel, 1u, 256u) - 1);
    record.time = {start_.nanoseconds + static_cast<std::int64_t>(since * unit), start_.origin};
    set_header(record.msg, word & max_identifier);
    record.msg.length = static_cast<std::uint16_t>(length);
    std::memcpy(record.msg.data, body.data() + layout.data_at, length);
    return Found::record;
}

}  // namespace vistel

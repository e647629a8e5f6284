#include "readers/bst_record.h"

#include <algorithm>
#include <cstring>
#include <numeric>

#include "can/identifier.h"
#include "readers/byte_order.h"

namespace vistel {
namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::uint8_t received_id = 0x93, to_send_id = 0x94, frame_id = 0x95, long_id = 0xD0;

/// Of the record whose beginning `bytes` is, without its checksum; 0 where it is too short to tell.
std::size_t announced_size(Bytes bytes) {
    if (bytes.size() < 3) return 0;
    const bool wide = bytes[0] >= 0xD0 && bytes[0] <= 0xDF;
    return wide ? little_endian<std::uint16_t>(&bytes[1]) : bytes[1] + std::size_t{2};
}

bool adds_up(Bytes bytes) {
    return (std::accumulate(bytes.begin(), bytes.end(), 0u) & 0xFF) == 0;
}

void set_payload(N2KMsg& msg, Bytes bytes) {
    msg.length = static_cast<std::uint16_t>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), msg.data);
}

/// Priority, PGN (3 bytes) and destination, as messages have them that are no identifier.
void set_addressing(N2KMsg& msg, const std::uint8_t* p) {
    msg.priority = p[0] & 7;
    msg.pgn = (p[1] | std::uint32_t{p[2]} << 8 | std::uint32_t{p[3]} << 16) & max_pgn;
    msg.destination = p[4];
    if (is_addressed(msg.pgn)) msg.pgn &= ~std::uint32_t{0xFF};
}

Found too_short(Problem& problem, Bytes bytes) {
    describe(problem, "a record of ", bytes.size(), " bytes is too short");
    return Found::problem;
}

Found wrong_length(Problem& problem, Bytes bytes, std::size_t announced) {
    describe(problem, "a record of ", bytes.size(), " bytes says that it has ", announced);
    return Found::problem;
}

}  // namespace

bool BstReader::is_known(Bytes bytes) {
    constexpr std::uint8_t ids[] = {0x93, 0x94, 0x95, 0x96, 0x9D, 0xA0, 0xA1, 0xA2, 0xA3, 0xA5, 0xD0, 0xD1};
    return std::ranges::find(ids, bytes[0]) != std::end(ids) && announced_size(bytes) + 1 == bytes.size() &&
           adds_up(bytes);
}

void BstReader::set_time(std::uint32_t milliseconds, Record& record) {
    constexpr std::uint32_t no_time = 0xFFFFFFFF;  // of devices that imitate the format
    record.time = {};
    if (milliseconds == no_time) return;
    record.time = {message_clock_.unroll(milliseconds) * 1'000'000, RecordTime::Origin::start};
}

Found BstReader::read(Bytes bytes, Checksum checksum, Record& record, Problem& problem) {
    const std::size_t size = announced_size(bytes);
    const bool bare = checksum == Checksum::perhaps && size == bytes.size();
    if (size == 0) return too_short(problem, bytes);
    if (!bare && size + 1 != bytes.size()) return wrong_length(problem, bytes, size + 1);
    if (!bare && !adds_up(bytes)) {
        describe(problem, "the checksum of a record is wrong");
        return Found::problem;
    }
    bytes = bytes.first(size);
    switch (bytes[0]) {
        case received_id: return read_message(bytes, record, problem);
        case frame_id: return read_frame(bytes, record, problem);
        case to_send_id: {
            constexpr std::size_t head = 8;
            if (size < head) return too_short(problem, bytes);
            if (size != head + bytes[7]) return wrong_length(problem, bytes, head + bytes[7]);
            set_addressing(record.msg, &bytes[2]);
            record.msg.source = nobody;
            record.time = {};
            set_payload(record.msg, bytes.subspan(head));
            break;
        }
        case long_id: {
            constexpr std::size_t head = 13;
            if (size < head) return too_short(problem, bytes);
            const std::uint32_t pdu_specific = bytes[5], pdu_format = bytes[6], page_and_priority = bytes[7];
            set_header(record.msg, (page_and_priority >> 2 & 7) << 26 | (page_and_priority & 3) << 24 |
                                       pdu_format << 16 | pdu_specific << 8 | bytes[4]);
            record.msg.destination = bytes[3];
            set_time(little_endian<std::uint32_t>(&bytes[9]), record);
            set_payload(record.msg, bytes.subspan(head));
            break;
        }
        default: return Found::foreign;
    }
    record.kind = Record::Kind::message;
    return Found::record;
}

Found BstReader::read_message(Bytes bytes, Record& record, Problem& problem) {
    constexpr std::size_t head = 13;
    if (bytes.size() < head) return too_short(problem, bytes);
    if (bytes.size() != head + bytes[12]) return wrong_length(problem, bytes, head + bytes[12]);
    set_addressing(record.msg, &bytes[2]);
    record.msg.source = bytes[7];
    record.kind = Record::Kind::message;
    set_time(little_endian<std::uint32_t>(&bytes[8]), record);
    set_payload(record.msg, bytes.subspan(head));
    return Found::record;
}

Found BstReader::read_frame(Bytes bytes, Record& record, Problem& problem) {
    constexpr std::size_t head = 8;
    if (bytes.size() < head) return too_short(problem, bytes);
    if (bytes.size() > head + max_frame_bytes) {
        describe(problem, "a frame of ", bytes.size() - head, " bytes cannot be");
        return Found::problem;
    }
    // The bits above the identifier: direction, and the unit of the time.
    const auto word = little_endian<std::uint32_t>(&bytes[4]);
    const unsigned unit = word >> 29 & 3;
    constexpr std::int64_t nanoseconds[] = {1'000'000, 100'000, 10'000, 1'000};
    if (unit != frame_unit_) {
        frame_unit_ = unit;
        frame_start_ = frame_time_;
        frame_clock_ = {frame_period, frame_period / 8};
    }
    const std::int64_t count = frame_clock_.unroll(little_endian<std::uint16_t>(&bytes[2]));
    frame_time_ = frame_start_ + count * nanoseconds[unit];
    record.kind = Record::Kind::frame;
    record.time = {frame_time_, RecordTime::Origin::start};
    set_header(record.msg, word & max_identifier);
    set_payload(record.msg, bytes.subspan(head));
    return Found::record;
}

}  // namespace vistel

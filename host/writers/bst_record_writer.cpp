#include "writers/bst_record_writer.h"

#include <numeric>

#include "writers/append_number.h"

namespace vistel {

void append_bst(std::string& record, char escape, std::string& out) {
    const unsigned sum = std::accumulate(record.begin(), record.end(), 0u, [](unsigned all, char byte) {
        return all + static_cast<unsigned char>(byte);
    });
    append_little_endian(record, 0u - sum, 1);

    constexpr char frame = 0x10;
    out += "\x10\x02";
    for (const char byte : record) {
        out += byte;
        if (byte == frame || (byte == escape && escape != 0)) out += byte;
    }
    out += "\x10\x03";
}

std::uint32_t BstRecordWriter::milliseconds_of(const RecordTime& time) {
    constexpr std::uint32_t no_time = 0xFFFFFFFF;
    if (time.origin == RecordTime::Origin::none) return no_time;
    const std::int64_t milliseconds = time.nanoseconds / 1'000'000;
    if (!start_) start_ = time.origin == RecordTime::Origin::start ? 0 : milliseconds;
    return static_cast<std::uint32_t>(milliseconds - *start_);
}

const char* BstRecordWriter::put(const Record& record, char escape, std::string& out) {
    constexpr unsigned received = 0x93, received_header = 11, any_length = 0xD0, any_length_header = 13;
    const N2KMsg& msg = record.msg;
    if (is_addressed(msg.pgn) && (msg.pgn & 0xFF) != 0) return why_unframed(msg);
    const std::uint32_t time = milliseconds_of(record.time);
    bytes_.clear();
    if (msg.length <= fast_packet::most_bytes) {
        append_little_endian(bytes_, received, 1);
        append_little_endian(bytes_, received_header + msg.length, 1);
        append_little_endian(bytes_, msg.priority, 1);
        append_little_endian(bytes_, msg.pgn, 3);
        append_little_endian(bytes_, msg.destination, 1);
        append_little_endian(bytes_, msg.source, 1);
        append_little_endian(bytes_, time, 4);
        append_little_endian(bytes_, msg.length, 1);
    } else {
        constexpr unsigned by_transport = 2;
        const std::uint32_t identifier = identifier_of(msg);
        append_little_endian(bytes_, any_length, 1);
        append_little_endian(bytes_, any_length_header + msg.length, 2);
        append_little_endian(bytes_, msg.destination, 1);
        append_little_endian(bytes_, msg.source, 1);
        append_little_endian(bytes_, identifier >> 8, 2);
        append_little_endian(bytes_, (identifier >> 24 & 3) | unsigned{msg.priority} << 2, 1);
        append_little_endian(bytes_, by_transport, 1);
        append_little_endian(bytes_, time, 4);
    }
    for (const std::uint8_t byte : payload_of(record)) bytes_ += static_cast<char>(byte);
    append_bst(bytes_, escape, out);
    return nullptr;
}

}  // namespace vistel

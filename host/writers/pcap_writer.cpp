#include "writers/pcap_writer.h"

#include <algorithm>
#include <limits>

#include "writers/append_number.h"

namespace vistel {

void PcapWriter::begin(Record::Kind /*kind*/, std::string& out) {
    constexpr std::uint32_t with_nanoseconds = 0xA1B23C4D, most_captured = 262'144, socket_can = 227;
    append_little_endian(out, with_nanoseconds, 4);
    append_little_endian(out, 2, 2);  // version 2.4
    append_little_endian(out, 4, 2);
    append_little_endian(out, 0, 8);
    append_little_endian(out, most_captured, 4);
    append_little_endian(out, socket_can, 4);
}

void PcapWriter::put_frame(std::uint32_t identifier, const Record& record, std::string& out) {
    constexpr std::int64_t second = 1'000'000'000, last_second = std::numeric_limits<std::uint32_t>::max();
    constexpr std::uint32_t extended = 0x80000000;
    constexpr unsigned packet_size = 16, header_size = 8;
    const std::int64_t time = std::max<std::int64_t>(0, record.time.nanoseconds);
    append_little_endian(out, static_cast<std::uint64_t>(std::min(time / second, last_second)), 4);
    append_little_endian(out, static_cast<std::uint64_t>(time % second), 4);
    append_little_endian(out, packet_size, 4);
    append_little_endian(out, packet_size, 4);
    append_big_endian(out, identifier | extended, 4);
    out += static_cast<char>(record.msg.length);
    out.append(3, '\0');
    for (const std::uint8_t byte : payload_of(record)) out += static_cast<char>(byte);
    out.append(packet_size - header_size - record.msg.length, '\0');
}

}  // namespace vistel

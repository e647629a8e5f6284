#include "readers/pcap_format.h"

#include "readers/timestamp.h"

namespace vistel {
namespace {

constexpr std::size_t file_header = 24, packet_header = 16;
constexpr std::uint32_t microseconds = 0xA1B2C3D4, nanoseconds = 0xA1B23C4D;

/// No capture of frames has larger packets, and no recorder writes larger ones.
constexpr std::uint32_t most_captured = 262'144;

const std::uint8_t* bytes_at(std::string_view text) {
    return reinterpret_cast<const std::uint8_t*>(text.data());
}

bool has_magic(std::string_view head, ByteOrder order) {
    constexpr std::size_t version_at = 4, with_version = 6;
    if (head.size() < with_version) return false;
    const auto magic = order.load<std::uint32_t>(head.data());
    return (magic == microseconds || magic == nanoseconds) &&
           order.load<std::uint16_t>(head.data() + version_at) == 2;
}

}  // namespace

bool PcapFormat::begins(std::string_view head) {
    return has_magic(head, {false}) || has_magic(head, {true});
}

Found PcapFormat::take_header(std::string_view bytes, std::size_t& size, Problem& problem) {
    if (bytes.size() < file_header) return Found::more;
    size = file_header;
    order_.big = has_magic(bytes, {true});
    if (!begins(bytes)) {
        describe(problem, "it does not begin as a capture does");
        return Found::hopeless;
    }
    fraction_ = order_.load<std::uint32_t>(bytes.data()) == nanoseconds ? 1 : 1000;
    const auto type = static_cast<std::uint16_t>(order_.load<std::uint32_t>(bytes.data() + 20));
    if (!can_read(type, problem)) return Found::hopeless;
    type_ = LinkType{type};
    begun_ = true;
    return Found::nothing;
}

Found PcapFormat::take(std::string_view bytes, bool, std::size_t& size, Record& record, Problem& problem) {
    if (!begun_) [[unlikely]]
        return take_header(bytes, size, problem);
    if (bytes.size() < packet_header) return Found::more;
    const auto captured = order_.load<std::uint32_t>(bytes.data() + 8);
    if (captured > most_captured) {
        size = packet_header;
        describe(problem, "a packet of ", captured, " bytes cannot be; nothing behind it can be read");
        return Found::hopeless;
    }
    if (bytes.size() < packet_header + captured) return Found::more;
    size = packet_header + captured;
    const Packet packet{{bytes_at(bytes) + packet_header, captured},
                        order_.load<std::uint32_t>(bytes.data() + 12),
                        type_,
                        order_};
    const Found found = read_can_packet(packet, record, problem);
    if (found == Found::record) {
        const std::int64_t seconds = order_.load<std::uint32_t>(bytes.data());
        const std::int64_t rest = order_.load<std::uint32_t>(bytes.data() + 4) * fraction_;
        record.time = {seconds * 1'000'000'000 + rest, origin_of_seconds(seconds)};
        if (type_ == LinkType::cooked_v2) record.bus = interfaces_.number_of(interface_of(packet));
    }
    return found;
}

}  // namespace vistel

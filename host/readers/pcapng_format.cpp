#include "readers/pcapng_format.h"

#include <algorithm>

#include "readers/timestamp.h"

namespace vistel {
namespace {

enum Block : std::uint32_t {
    section_block = 0x0A0D0D0A,  // the same in either byte order
    interface_block = 1,
    old_packet_block = 2,
    simple_packet_block = 3,
    statistics_block = 5,
    packet_block = 6,
};

constexpr std::size_t block_head = 8, block_tail = 4;
constexpr std::size_t most_block = std::size_t{1} << 19;  // of those that are looked at
constexpr std::size_t most_interfaces = 256;
constexpr std::uint32_t order_mark = 0x1A2B3C4D;

bool has_mark(std::string_view section, ByteOrder order) {
    return order.load<std::uint32_t>(section.data() + block_head) == order_mark;
}

}  // namespace

/// What the blocks of packets have in common.
struct PcapngFormat::PacketHead {
    std::size_t size;  // of all before the bytes of the packet
    std::uint32_t interface = 0;
    bool timed = true;
    std::uint64_t time = 0;
    std::uint32_t captured = 0, original = 0;
};

bool PcapngFormat::begins(std::string_view head) {
    constexpr std::size_t with_mark = block_head + 4;
    return head.size() >= with_mark && big_endian<std::uint32_t>(head.data()) == section_block &&
           (has_mark(head, {false}) || has_mark(head, {true}));
}

std::string_view PcapngFormat::bus_name(std::uint8_t bus) const {
    const bool named = bus < interfaces_.size() && interfaces_[bus].type != unsigned(LinkType::cooked_v2);
    return named ? std::string_view(interfaces_[bus].name) : std::string_view{};
}

Found PcapngFormat::broken(Problem& problem, const char* what) const {
    describe(problem, what, "; nothing behind it can be read");
    return Found::hopeless;
}

Found PcapngFormat::take(std::string_view bytes, bool, std::size_t& size, Record& record, Problem& problem) {
    if (to_skip_ > 0) {
        size = static_cast<std::size_t>(std::min<std::uint64_t>(to_skip_, bytes.size()));
        to_skip_ -= size;
        return Found::nothing;
    }
    if (bytes.size() < block_head + block_tail) return Found::more;
    size = block_head;
    if (begins(bytes)) {
        order_.big = has_mark(bytes, {true});
        begun_ = true;
    } else if (!begun_ || big_endian<std::uint32_t>(bytes.data()) == section_block) {
        return broken(problem, "here should a section begin");
    }
    const auto type = order_.load<std::uint32_t>(bytes.data());
    const auto total = order_.load<std::uint32_t>(bytes.data() + 4);
    if (total % 4 != 0 || total < block_head + block_tail)
        return broken(problem, "a block whose length cannot be");
    const bool looked_at = type == section_block || type == interface_block || type == old_packet_block ||
                           type == simple_packet_block || type == packet_block || type == statistics_block;
    if (!looked_at) {
        to_skip_ = total - size;
        return Found::nothing;
    }
    if (total > most_block) return broken(problem, "a block that is too long");
    if (bytes.size() < total) return Found::more;
    if (order_.load<std::uint32_t>(bytes.data() + total - block_tail) != total)
        return broken(problem, "a block whose two lengths differ");
    size = total;
    const std::string_view block = bytes.substr(0, total - block_tail);
    switch (type) {
        case section_block: return take_section(block, problem);
        case interface_block: return take_interface(block, problem);
        case statistics_block: return take_statistics(block);
        default: return take_packet(block, type, record, problem);
    }
}

Found PcapngFormat::take_section(std::string_view block, Problem& problem) {
    constexpr std::size_t version_at = 12, least = 24;
    if (block.size() < least || order_.load<std::uint16_t>(block.data() + version_at) != 1)
        return broken(problem, "a section of a version that is not known");
    dropped_before_ = dropped_frames();
    interfaces_.clear();
    return Found::nothing;
}

std::uint64_t PcapngFormat::dropped_frames() const {
    std::uint64_t sum = dropped_before_;
    for (const Interface& interface : interfaces_)
        sum += std::max(interface.dropped, interface.dropped_between);
    return sum;
}

/// Calls `take` with the code and the value of each option.
template <class Take>
void PcapngFormat::each_option(std::string_view options, Take take) const {
    while (options.size() >= 4) {
        const auto code = order_.load<std::uint16_t>(options.data());
        const auto size = order_.load<std::uint16_t>(options.data() + 2);
        options.remove_prefix(4);
        if (code == 0 || size > options.size()) break;
        take(code, options.substr(0, size));
        options.remove_prefix(std::min<std::size_t>(options.size(), (size + 3u) & ~3u));
    }
}

Found PcapngFormat::take_statistics(std::string_view block) {
    constexpr std::size_t options_at = 20;
    constexpr std::uint16_t dropped_by_interface = 5, dropped_by_system = 7;
    if (block.size() < options_at) return Found::nothing;
    const auto number = order_.load<std::uint32_t>(block.data() + block_head);
    if (number >= interfaces_.size()) return Found::nothing;
    std::uint64_t& dropped = interfaces_[number].dropped;
    dropped = 0;  // the latest statistics are those of the whole capture
    each_option(block.substr(options_at), [&](std::uint16_t code, std::string_view value) {
        if ((code == dropped_by_interface || code == dropped_by_system) && value.size() == 8)
            dropped += order_.load<std::uint64_t>(value.data());
    });
    return Found::nothing;
}

Found PcapngFormat::take_interface(std::string_view block, Problem& problem) {
    constexpr std::size_t options_at = 16;
    constexpr std::uint16_t name_option = 2, resolution_option = 9, offset_option = 14;
    if (block.size() < options_at || interfaces_.size() == most_interfaces)
        return broken(problem, "an interface that cannot be");
    Interface interface;
    interface.type = order_.load<std::uint16_t>(block.data() + 8);
    interface.most_captured = order_.load<std::uint32_t>(block.data() + 12);
    each_option(block.substr(options_at), [&](std::uint16_t code, std::string_view value) {
        if (code == name_option) {
            interface.name = value.substr(0, 64);
        } else if (code == resolution_option && value.size() == 1) {
            interface.resolution = static_cast<std::uint8_t>(value[0]);
        } else if (code == offset_option && value.size() == 8) {
            interface.offset = static_cast<std::int64_t>(order_.load<std::uint64_t>(value.data()));
        }
    });
    interface.readable = can_read(interface.type, problem);
    interfaces_.push_back(std::move(interface));
    return interfaces_.back().readable ? Found::nothing : Found::problem;
}

Found PcapngFormat::take_packet(std::string_view block, std::uint32_t type, Record& record,
                                Problem& problem) {
    PacketHead head{type == simple_packet_block ? std::size_t{12} : std::size_t{28}};
    if (block.size() < head.size) return broken(problem, "a block that is too short for a packet");
    const auto number = [&](std::size_t at) { return order_.load<std::uint32_t>(block.data() + at); };
    if (type == simple_packet_block) {
        head.timed = false;
        head.original = number(8);
    } else {
        head.interface = type == packet_block ? number(8) : order_.load<std::uint16_t>(block.data() + 8);
        head.time = std::uint64_t{number(12)} << 32 | number(16);
        head.captured = number(20);
        head.original = number(24);
    }
    if (head.interface >= interfaces_.size()) return broken(problem, "a packet of no interface");
    Interface& interface = interfaces_[head.interface];
    if (!head.timed) {
        head.captured =
            interface.most_captured == 0 ? head.original : std::min(head.original, interface.most_captured);
    }
    if (head.captured > block.size() - head.size)
        return broken(problem, "a packet that is longer than its block");
    if (type == old_packet_block) {
        constexpr std::uint16_t not_known = 0xFFFF;
        const auto dropped = order_.load<std::uint16_t>(block.data() + 10);
        if (dropped != not_known) interface.dropped_between += dropped;
    } else if (type == packet_block) {
        constexpr std::uint16_t drop_count = 4;
        const std::size_t options_at = head.size + ((std::size_t{head.captured} + 3) & ~std::size_t{3});
        each_option(block.substr(std::min(options_at, block.size())),
                    [&](std::uint16_t code, std::string_view value) {
                        if (code == drop_count && value.size() == 8)
                            interface.dropped_between += order_.load<std::uint64_t>(value.data());
                    });
    }
    if (!interface.readable) return Found::foreign;

    const Packet packet{{reinterpret_cast<const std::uint8_t*>(block.data()) + head.size, head.captured},
                        head.original,
                        LinkType{interface.type},
                        order_};
    const Found found = read_can_packet(packet, record, problem);
    if (found != Found::record) return found;
    record.time = {};
    if (head.timed && !set_time(interface, head.time, record)) {
        describe(problem, "the time of a packet is out of range");
        return Found::problem;
    }
    record.bus = packet.type == LinkType::cooked_v2 ? numbers_.number_of(interface_of(packet))
                                                    : static_cast<std::uint8_t>(head.interface);
    return found;
}

/// Seconds and their fraction are kept apart, as they do not fit 64 bits together in every resolution.
bool PcapngFormat::set_time(const Interface& interface, std::uint64_t time, Record& record) const {
    constexpr std::uint8_t is_binary = 0x80;
    constexpr unsigned nanosecond_digits = 9, most_digits = 19;
    constexpr std::uint64_t second = 1'000'000'000;
    std::uint64_t seconds = 0, nanoseconds = 0;
    if ((interface.resolution & is_binary) != 0) {
        unsigned bits = interface.resolution & ~unsigned{is_binary};
        if (bits > 63) return false;
        seconds = time >> bits;
        std::uint64_t rest = time & ((std::uint64_t{1} << bits) - 1);
        if (bits > 32) rest >>= bits - 32, bits = 32;
        nanoseconds = rest * second >> bits;
    } else {
        if (interface.resolution > most_digits) return false;
        std::uint64_t unit = 1;
        for (unsigned i = 0; i < interface.resolution; ++i) unit *= 10;
        seconds = time / unit;
        nanoseconds = time % unit;
        for (unsigned i = interface.resolution; i < nanosecond_digits; ++i) nanoseconds *= 10;
        for (unsigned i = interface.resolution; i > nanosecond_digits; --i) nanoseconds /= 10;
    }
    constexpr std::int64_t last_second = 9'214'646'399;  // end of 2261
    if (seconds > std::uint64_t{last_second} || interface.offset > last_second ||
        interface.offset < -last_second)
        return false;
    const std::int64_t since = static_cast<std::int64_t>(seconds) + interface.offset;
    if (since < 0 || since > last_second) return false;
    record.time = {since * static_cast<std::int64_t>(second) + static_cast<std::int64_t>(nanoseconds),
                   origin_of_seconds(since)};
    return true;
}

}  // namespace vistel

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "readers/can_packet.h"
#include "readers/interface_numbers.h"

namespace vistel {

/// Network captures in the pcapng format: blocks in sections, each of which has its byte order and describes
/// its interfaces.
class PcapngFormat {
  public:
    static bool begins(std::string_view head);

    Found take(std::string_view bytes, bool last, std::size_t& size, Record& record, Problem& problem);

    bool is_within() const { return to_skip_ > 0; }

    /// Frames that the capture says it lacks. What packets and statistics say of an interface is the same.
    std::uint64_t dropped_frames() const;

    std::string_view bus_name(std::uint8_t bus) const;

  private:
    struct Interface {
        std::uint16_t type = 0;
        bool readable = false;
        std::uint32_t most_captured = 0;  // 0 for no limit
        std::uint8_t resolution = 6;      // decimal digits of a second, or binary ones with the highest bit
        std::int64_t offset = 0;          // seconds
        std::string name = {};
        std::uint64_t dropped = 0;          // as its statistics say
        std::uint64_t dropped_between = 0;  // as its packets say
    };
    struct PacketHead;

    Found take_section(std::string_view block, Problem& problem);
    Found take_interface(std::string_view block, Problem& problem);
    Found take_statistics(std::string_view block);
    template <class Take>
    void each_option(std::string_view options, Take take) const;
    Found take_packet(std::string_view block, std::uint32_t type, Record& record, Problem& problem);
    Found broken(Problem& problem, const char* what) const;
    [[nodiscard]] bool set_time(const Interface& interface, std::uint64_t time, Record& record) const;

    bool begun_ = false;
    ByteOrder order_;
    std::vector<Interface> interfaces_;  // of the section
    std::uint64_t dropped_before_ = 0;   // in sections that are over
    std::uint64_t to_skip_ = 0;          // bytes of a block that holds nothing to read
    InterfaceNumbers numbers_;
};

}  // namespace vistel

#pragma once

#include <string_view>

#include "readers/can_packet.h"
#include "readers/interface_numbers.h"

namespace vistel {

/// Network captures in the pcap format, of either byte order, in microseconds or nanoseconds.
class PcapFormat {
  public:
    static bool begins(std::string_view head);

    Found take(std::string_view bytes, bool last, std::size_t& size, Record& record, Problem& problem);

  private:
    Found take_header(std::string_view bytes, std::size_t& size, Problem& problem);

    bool begun_ = false;
    ByteOrder order_;
    LinkType type_{};
    std::int64_t fraction_ = 0;  // nanoseconds in a unit of the fraction
    InterfaceNumbers interfaces_;
};

}  // namespace vistel

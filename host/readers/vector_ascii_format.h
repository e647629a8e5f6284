#pragma once

#include <cstdint>
#include <string_view>

#include "readers/bus_names.h"
#include "readers/line_format.h"
#include "readers/timestamp.h"

namespace vistel {

/// Text recordings of Vector tools, ASC:
///   date Mon May 4 09:30:00.000 am 2026
///   base hex  timestamps absolute
///      0.012000 1  9F11223x        Rx   d 8 00 39 30 00 00 FF 7F FD
/// Dates are English or German, in a zone that is not told and taken for UTC. Seconds count from the date of
/// the block, or from the line before. Lines that tell other than frames are passed over.
class VectorAsciiFormat : public IndependentLines {
  public:
    static bool resembles(std::string_view line);

    LineResult read(std::string_view line, Record& record, Problem& problem);
    std::string_view bus_name(std::uint8_t bus) const { return buses_.name_of(bus); }

  private:
    bool read_header(std::string_view line);
    void read_date(std::string_view text);
    LineResult read_frame(std::string_view id, std::string_view rest, Record& record, Problem& problem) const;
    LineResult read_flexible_frame(std::string_view rest, Record& record, Problem& problem);

    unsigned base_ = 16;
    bool is_relative_ = false;
    RecordTime start_;
    std::int64_t since_start_ = 0;
    TimestampParser timestamps_;
    BusNames buses_;
};

}  // namespace vistel

#pragma once

#include <cstdint>
#include <string_view>

#include "readers/bus_names.h"
#include "readers/line_format.h"
#include "readers/timestamp.h"

namespace vistel {

/// Traces of PCAN tools, versions 1.0 to 2.1: comments begin with `;`, and some of them say which version it
/// is, when it began and which columns there are:
///   ;$FILEVERSION=1.1
///        1)         0.0  Rx     18EEFF23  8  40 E2 C1 FF 00 8C 78 C0
/// Times are milliseconds since the start, whose zone is not told and taken for UTC.
class PcanFormat : public IndependentLines {
  public:
    static bool resembles(std::string_view line);

    LineResult read(std::string_view line, Record& record, Problem& problem);
    std::string_view bus_name(std::uint8_t bus) const { return buses_.name_of(bus); }

  private:
    void read_comment(std::string_view line);
    void read_start(std::string_view days);
    void read_written_start(std::string_view text);

    static constexpr std::size_t most_columns = 16;
    char columns_[most_columns] = {};  // letters, as the newer versions have them in the file
    std::size_t column_count_ = 0;     // 0 as long as no comment has told
    RecordTime start_;
    TimestampParser timestamps_;
    BusNames buses_;
};

}  // namespace vistel

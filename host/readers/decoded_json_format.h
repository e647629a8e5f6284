#pragma once

#include <cstdint>
#include <string_view>

#include "pgn_vistel/core/decode.h"
#include "readers/line_format.h"
#include "readers/timestamp.h"

namespace vistel {

/// What `vistel decode --json` writes, as a recording: the bits of every field are in it, and the definition
/// of the message says where they belong. The message that comes of them must decode to the same bits, by
/// either set of definitions; one that does not is a problem.
class DecodedJsonFormat : public IndependentLines {
  public:
    static bool resembles(std::string_view line);

    LineResult read(std::string_view line, Record& record, Problem& problem);

  private:
    [[nodiscard]] bool read_time(std::string_view head, RecordTime& time);
    bool pack(pgn_vistel::core::Definitions set, std::string_view fields, std::string_view rest, N2KMsg& msg);
    [[nodiscard]] static bool put_rest(bool is_all, std::size_t bits, std::string_view rest, N2KMsg& msg);
    std::size_t put_fields(const pgn_vistel::core::PgnDef* definition, std::string_view fields, N2KMsg& msg);
    bool holds(pgn_vistel::core::Definitions set, std::string_view fields, std::string_view rest,
               const N2KMsg& msg);

    TimestampParser timestamps_;
    pgn_vistel::core::UnitSelection units_;
    pgn_vistel::core::TextScratch scratch_;
};

}  // namespace vistel

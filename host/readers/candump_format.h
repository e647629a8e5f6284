#pragma once

#include <array>

#include "readers/line_format.h"
#include "readers/timestamp.h"
#include "text/character_pattern.h"

namespace vistel {

/// CAN frames as printed by candump, each line by its own shape:
///   (1502979132.106111)  can0  09F8027F   [8]  00 FC ...
///   (1502979132.106111) can0 09F50374#000A00FF...
///   <0x18eeff01> [8] 05 a0 ...
/// The time in parentheses may be missing, or be date and time. What stands between it and the identifier,
/// the interface and perhaps a direction, is ignored, and so is the text picture of the data behind it.
///
/// 11-bit frames, remote requests and the controller's error frames are on a bus for other reasons and are
/// foreign. CAN FD frames, which cannot occur on an NMEA 2000 bus, are problems.
class CandumpFormat : public IndependentLines {
  public:
    static bool resembles(std::string_view line);

    LineResult read(std::string_view line, Record& record, Problem& problem);
    const char* read_usual(std::string_view text, Record& record) const;

  private:
    /// What a line that read() took has around its identifier; most lines of a recording have the same, or
    /// that of their interface.
    struct Layout {
        void learn(bool has_time, std::string_view before_identifier, std::string_view behind_identifier);

        bool known = false;
        bool timed = false;
        bool spaced = false;         ///< `behind` has the length in brackets
        unsigned length_at = 0;      ///< in `behind`
        CharacterPattern<2> before;  ///< from behind the time on
        CharacterPattern<1> behind;  ///< up to the data
    };

    bool take_time(std::string_view& line, RecordTime& time, Problem& problem);
    const char* read_usual_time(const char* p, RecordTime& time) const;

    std::array<Layout, 4> layouts_;
    unsigned next_layout_ = 0;
    TimestampParser timestamps_;
};

}  // namespace vistel

#pragma once

#include <array>

#include "readers/bus_names.h"
#include "readers/line_format.h"
#include "readers/timestamp.h"
#include "text/character_pattern.h"

namespace vistel {

/// CAN frames as printed by candump, each line by its own shape:
///   (1502979132.106111)  can0  09F8027F   [8]  00 FC ...
///   (1502979132.106111) can0 09F50374#000A00FF...
///   <0x18eeff01> [8] 05 a0 ...
/// The time in parentheses may be missing, be date and time, or count from the first line or the line before,
/// which shows when it falls. Between it and the identifier stands the
/// interface, which is the bus, and perhaps a direction. The text picture of the data and colours are
/// ignored. Data may be binary, or have its last byte first, with back quotes in between.
///
/// 11-bit frames, remote requests, the controller's error frames and frames with a flexible data rate are on
/// a bus for other reasons and are foreign. Frames that candump says it has dropped are counted.
class CandumpFormat : public IndependentLines {
  public:
    static bool resembles(std::string_view line);

    LineResult read(std::string_view line, Record& record, Problem& problem);
    const char* read_usual(std::string_view text, Record& record) const;
    bool is_settled() const { return counting_ != Counting::unknown; }
    bool depends_on_later(std::string_view line);
    void foresee(std::string_view line);
    void settle() { counting_ = Counting::from_one_start; }
    std::uint64_t dropped_frames() const { return dropped_frames_; }
    std::string_view bus_name(std::uint8_t bus) const { return buses_.name_of(bus); }

  private:
    /// What a line that read() took has around its identifier; most lines of a recording have the same, or
    /// that of their interface.
    struct Layout {
        void learn(bool has_time, std::string_view before_identifier, std::string_view behind_identifier);

        bool known = false;
        bool timed = false;
        bool spaced = false;     ///< `behind` has the length in brackets
        unsigned length_at = 0;  ///< in `behind`
        std::uint8_t bus = 0;
        CharacterPattern<2> before;  ///< from behind the time on
        CharacterPattern<1> behind;  ///< up to the data
    };

    /// What times count from.
    enum class Counting { unknown, from_one_start, from_last_line };

    [[nodiscard]] bool take_time(std::string_view& line, RecordTime& time, Problem& problem);
    const char* read_usual_time(const char* p, RecordTime& time) const;

    std::array<Layout, 4> layouts_;
    BusNames buses_;
    unsigned next_layout_ = 0;
    TimestampParser timestamps_;
    Counting counting_ = Counting::unknown;
    std::int64_t since_start_ = 0;  // of the last line, when times count from the line before
    std::int64_t last_seen_ = -1;   // by foresee()
    unsigned lines_seen_ = 0;
    std::uint64_t dropped_frames_ = 0;
};

}  // namespace vistel

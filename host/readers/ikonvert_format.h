#pragma once

#include "readers/sentences.h"
#include "readers/wrapping_counter.h"

namespace vistel {

/// Messages of Digital Yacht's iKonvert and NavLink2,
/// `!PDGY,pgn,priority,source,destination,seconds.ms,base64`, and those that are sent by them,
/// `!PDGY,pgn,destination,base64`. What begins with `$PDGY` is the gateway's own. Behind the point stand
/// milliseconds without leading zeros.
class IkonvertSentences {
  public:
    static bool is_one(const Sentence& sentence);

    Found read(Sentence sentence, Record& record, Problem& problem);

  private:
    [[nodiscard]] bool read_header(std::string_view (&fields)[6], std::size_t count, Record& record,
                                   Problem& problem);
    bool read_time(std::string_view text, RecordTime& time, Problem& problem);

    static constexpr std::int64_t period = 1'000'000;  // milliseconds
    WrappingCounter clock_{period, period / 2};
    RecordTime last_time_;
};

using IkonvertFormat = SentenceFormat<IkonvertSentences>;

}  // namespace vistel

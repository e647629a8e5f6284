#pragma once

#include "readers/sentences.h"
#include "readers/wrapping_counter.h"

namespace vistel {

/// Messages among the sentences of NMEA 0183: `$PCDIN,pgn(6),time(8),source(2),bytes*checksum`, all in
/// hexadecimal digits. Priority and destination are not told. The time is one in milliseconds since some
/// start. Old devices end it with a sign that is no digit.
class PcdinSentences {
  public:
    static bool is_one(const Sentence& sentence);

    Found read(Sentence sentence, Record& record, Problem& problem);

  private:
    static constexpr std::int64_t period = std::int64_t{1} << 32;
    WrappingCounter clock_{period, period / 2};
};

using PcdinFormat = SentenceFormat<PcdinSentences>;

}  // namespace vistel

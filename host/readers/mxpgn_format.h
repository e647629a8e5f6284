#pragma once

#include "readers/sentences.h"

namespace vistel {

/// Frames among the sentences of NMEA 0183: `$MXPGN,pppppp,aaaa,bytes*checksum`, all in hexadecimal digits,
/// with any talker for MX. p are the identifier's PGN and destination. a: a bit for frames to send, priority
/// (3 bits), number of bytes (4 bits, 9 and above mean something else), then the source, or of a frame to
/// send the destination. The last byte comes first.
class MxpgnSentences {
  public:
    static bool is_one(const Sentence& sentence);

    Found read(Sentence sentence, Record& record, Problem& problem);
};

using MxpgnFormat = SentenceFormat<MxpgnSentences>;

}  // namespace vistel

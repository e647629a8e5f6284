#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "readers/bst_stream.h"

namespace vistel {

/// Recordings of Actisense programs and of the W2K-1: a stream of framed BST records, in which every 1B is
/// doubled, and tags `1B 01 id payload 1B 0A` between them and within. A tag gives the time of all that
/// follows, or is a record of its own without a frame. A time before 1970 is one since a start. Frames count
/// on from the tag by a clock of their own.
class EblFormat {
  public:
    static bool begins(std::string_view head);

    Found take(std::string_view bytes, bool last, std::size_t& size, Record& record, Problem& problem);

  private:
    class Stream;

    Found read_tag(std::string_view bytes, std::size_t& size, Problem& problem);
    Found take_tag(std::string_view bytes, std::size_t& size, Record& record, Problem& problem);
    Found take_stream(std::string_view bytes, bool last, std::size_t& size, Record& record, Problem& problem);
    Found read_record(const BstFrame& frame, BstReader::Checksum checksum, Record& record, Problem& problem);
    Found use_time(Problem& problem);

    BstReader records_;
    BstFrame frame_;
    std::uint8_t tag_id_ = 0;
    BstFrame tag_;                             // its payload
    RecordTime time_;                          // of the last tag
    std::optional<std::int64_t> first_frame_;  // the time of its own that the first frame behind the tag had
};

}  // namespace vistel

#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "readers/block_reader.h"

namespace vistel {

/// Recordings of Vector's tools: a header, then objects, of which containers hold further objects, compressed
/// by zlib or not. What containers hold is one sequence: an object may begin in one and end in the next. The
/// zone of the start is not told; it is taken as UTC.
class BlfFormat {
  public:
    BlfFormat();

    static bool begins(std::string_view head);

    Found take(std::string_view bytes, bool last, std::size_t& size, Record& record, Problem& problem);
    Found take_held(Record& record, Problem& problem);
    bool is_within() const;

    /// Channels count from 1.
    std::string_view bus_name(std::uint8_t bus) const;

  private:
    /// A sequence of objects, that of the recording or that of its containers.
    struct Sequence {
        std::uint64_t to_skip = 0;  // bytes of an object that is not looked at
        bool lost = false;          // an object's beginning has to be looked for
    };

    Found take_header(std::string_view bytes, std::size_t& size, Problem& problem);
    Found take_object(Sequence& sequence, std::string_view bytes, bool last, std::size_t& size,
                      Record& record, Problem& problem);
    Found open_container(std::string_view object, Problem& problem);
    Found read_frame(std::string_view object, Record& record, Problem& problem) const;

    bool begun_ = false;
    RecordTime start_;
    Sequence outer_, inner_;
    mutable char bus_name_[4] = {};
    bool gap_ = false;              // something of the containers is missing
    std::unique_ptr<char[]> held_;  // what containers held, as far as it is needed
    std::size_t held_begin_ = 0, held_end_ = 0;
};

}  // namespace vistel

#pragma once

#include <string_view>

#include "readers/block_reader.h"
#include "readers/wrapping_counter.h"

namespace vistel {

/// Files of Yacht Devices' voyage recorders (.DAT): records `time(2) identifier(4) payload`, where the time
/// counts the milliseconds of a minute. Identifier FFFFFFFF stands for 8 bytes of the recorder itself. A fast
/// packet has a sequence byte, its length and the whole message, an ISO request 3 bytes, all others 8.
///
/// Nothing marks a record, and which PGNs a recorder takes for fast packets is its own affair. So where what
/// follows a record cannot be one, it is read the other way; where that does not help either, it is told, and
/// the next records that can be are looked for.
class YdvrFormat {
  public:
    static bool begins(std::string_view head);

    Found take(std::string_view bytes, bool last, std::size_t& size, Record& record, Problem& problem);

  private:
    bool lost_ = false;
    WrappingCounter clock_{60'000, 0};
};

}  // namespace vistel

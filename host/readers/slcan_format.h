#pragma once

#include <cstdint>
#include <string_view>

#include "can/record.h"
#include "readers/block_reader.h"
#include "readers/problem.h"
#include "readers/wrapping_counter.h"

namespace vistel {

/// Frames of serial CAN adapters, each ended by a carriage return: `T09F1122380039300000FF7FFD`, that is `T`,
/// identifier, number of bytes, bytes, and where the adapter was told to, milliseconds of the minute in four
/// digits. Other letters begin other frames, which are foreign, or what adapter and program say to each
/// other, which is passed over.
class SlcanFormat {
  public:
    static bool begins(std::string_view head);

    Found take(std::string_view bytes, bool last, std::size_t& size, Record& record, Problem& problem);

  private:
    Found read(std::string_view item, Record& record, Problem& problem);

    WrappingCounter milliseconds_{60'000, 1'000};
};

}  // namespace vistel

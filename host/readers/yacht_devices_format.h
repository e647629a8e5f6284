#pragma once

#include "readers/line_format.h"
#include "readers/timestamp.h"

namespace vistel {

/// Frames of Yacht Devices gateways in RAW mode: `19:07:21.014 R 09F8017F 50 C3 ...`. R is for frames
/// received from the bus, T for those the gateway sent; both were on the bus and both are read. Lines with
/// neither time nor direction are what programs ask it to send.
class YachtDevicesFormat : public IndependentLines {
  public:
    static bool resembles(std::string_view line);

    LineResult read(std::string_view line, Record& record, Problem& problem);

  private:
    TimestampParser timestamps_;
};

}  // namespace vistel

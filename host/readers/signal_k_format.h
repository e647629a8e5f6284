#pragma once

#include <string_view>

#include "readers/actisense_ascii_format.h"
#include "readers/candump_format.h"
#include "readers/ikonvert_format.h"
#include "readers/line_format.h"
#include "readers/mxpgn_format.h"
#include "readers/pcdin_format.h"
#include "readers/plain_format.h"
#include "readers/yacht_devices_format.h"

namespace vistel {

/// Logs of Signal K servers, which put the time and a letter for the kind of connection before the lines that
/// came by it: `1777887000012;A;LINE`. A is NMEA 2000, in any form that has a line a record, or a sentence;
/// the other kinds are foreign. The time counts, in milliseconds since 1970, where the line itself has no
/// date.
class SignalKFormat : public IndependentLines {
  public:
    static bool resembles(std::string_view line);

    LineResult read(std::string_view line, Record& record, Problem& problem);

    void set_contents(ContentKind contents) { plain_.set_contents(contents); }
    bool is_settled() const { return plain_.is_settled(); }
    bool depends_on_later(std::string_view line);
    void foresee(std::string_view line);
    void settle() { plain_.settle(); }

  private:
    LineResult read_inner(std::string_view line, Record& record, Problem& problem);

    PlainFormat plain_;
    CandumpFormat candump_;
    YachtDevicesFormat yacht_devices_;
    ActisenseAsciiFormat actisense_ascii_;
    IkonvertFormat ikonvert_;
    PcdinFormat pcdin_;
    MxpgnFormat mxpgn_;
};

}  // namespace vistel

#include "writers/yacht_devices_writer.h"

#include "text/hex.h"
#include "writers/time_text.h"

namespace vistel {

void YachtDevicesWriter::put_frame(std::uint32_t identifier, const Record& record, std::string& out) {
    append_clock(out, record.time, ":");
    append_hex(out += " R ", identifier, 8);
    for (const std::uint8_t byte : payload_of(record)) append_hex(out += ' ', byte, 2);
    out += "\r\n";
}

}  // namespace vistel

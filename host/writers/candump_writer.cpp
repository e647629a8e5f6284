#include "writers/candump_writer.h"

#include "text/hex.h"
#include "text/words.h"
#include "writers/time_text.h"

namespace vistel {

void CandumpWriter::put_frame(std::uint32_t identifier, const Record& record, std::string& out) {
    if (record.time.origin != RecordTime::Origin::none) {
        append_seconds(out += '(', record.time);
        out += ") ";
    }
    append_part(out += "can", unsigned{record.bus});
    append_hex(out += ' ', identifier, 8);
    out += '#';
    for (const std::uint8_t byte : payload_of(record)) append_hex(out, byte, 2);
    out += '\n';
}

}  // namespace vistel

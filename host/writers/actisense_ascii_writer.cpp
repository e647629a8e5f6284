#include "writers/actisense_ascii_writer.h"

#include "text/hex.h"
#include "writers/time_text.h"

namespace vistel {

const char* ActisenseAsciiWriter::put(const Record& record, std::string& out) {
    const N2KMsg& msg = record.msg;
    append_clock(out += 'A', record.time, "");
    append_hex(out += ' ', msg.source, 2);
    append_hex(out, msg.destination, 2);
    append_hex(out, msg.priority, 1);
    append_hex(out += ' ', msg.pgn, 5);
    out += ' ';
    for (const std::uint8_t byte : payload_of(record)) append_hex(out, byte, 2);
    out += "\r\n";
    return nullptr;
}

}  // namespace vistel

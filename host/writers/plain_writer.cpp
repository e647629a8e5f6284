#include "writers/plain_writer.h"

#include "text/hex.h"
#include "text/words.h"
#include "writers/time_text.h"

namespace vistel {

void PlainWriter::begin(Record::Kind kind, std::string& out) {
    if (kind == Record::Kind::message) out += "# format=FAST\n";
}

const char* PlainWriter::put(const Record& record, std::string& out) {
    const N2KMsg& msg = record.msg;
    if (record.time.origin != RecordTime::Origin::none) append_timestamp(out, record.time);
    for (const unsigned number : {unsigned{msg.priority}, unsigned{msg.pgn}, unsigned{msg.source},
                                  unsigned{msg.destination}, unsigned{msg.length}})
        append_part(out += ',', number);
    for (const std::uint8_t byte : payload_of(record)) append_hex(out += ',', byte, 2);
    if (msg.length == 0) out += ',';
    out += '\n';
    return nullptr;
}

}  // namespace vistel

#include "writers/transmission.h"

#include <algorithm>

#include "text/base64.h"
#include "text/hex.h"
#include "text/words.h"
#include "writers/actisense_ascii_writer.h"
#include "writers/append_number.h"
#include "writers/bst_record_writer.h"
#include "writers/plain_writer.h"

namespace vistel {
namespace {

void append_actisense(const Record& frame, std::string_view, std::string& out) {
    constexpr unsigned to_send = 0x94, message_header = 6, can_frame = 0x95, frame_header = 6;
    constexpr std::uint32_t from_host = 0x80000000;
    const N2KMsg& msg = frame.msg;
    std::string record;
    if (frame.kind == Record::Kind::frame) {
        append_little_endian(record, can_frame, 1);
        append_little_endian(record, frame_header + msg.length, 1);
        append_little_endian(record, 0, 2);  // no time
        append_little_endian(record, identifier_of(msg) | from_host, 4);
    } else {
        append_little_endian(record, to_send, 1);
        append_little_endian(record, message_header + msg.length, 1);
        append_little_endian(record, msg.priority, 1);
        append_little_endian(record, msg.pgn, 3);
        append_little_endian(record, msg.destination, 1);
        append_little_endian(record, msg.length, 1);
    }
    for (const std::uint8_t byte : payload_of(frame)) record += static_cast<char>(byte);
    append_bst(record, 0, out);
}

void append_actisense_ascii(const Record& frame, std::string_view, std::string& out) {
    ActisenseAsciiWriter().put(frame, out);
}

void append_plain(const Record& frame, std::string_view, std::string& out) {
    PlainWriter().put(frame, out);
}

/// As candump logs it.
void append_candump(const Record& frame, std::string_view bus, std::string& out) {
    append_part(out, concat("(0.000000) ", bus.empty() ? "can0" : bus, " "));
    append_hex(out, identifier_of(frame.msg), 8);
    out += '#';
    for (const std::uint8_t byte : payload_of(frame)) append_hex(out, byte, 2);
    out += '\n';
}

/// Without time and direction.
void append_yacht_devices(const Record& frame, std::string_view, std::string& out) {
    append_hex(out, identifier_of(frame.msg), 8);
    for (const std::uint8_t byte : payload_of(frame)) append_hex(out += ' ', byte, 2);
    out += "\r\n";
}

void append_slcan(const Record& frame, std::string_view, std::string& out) {
    append_hex(out += 'T', identifier_of(frame.msg), 8);
    append_hex(out, frame.msg.length, 1);
    for (const std::uint8_t byte : payload_of(frame)) append_hex(out, byte, 2);
    out += '\r';
}

void append_ikonvert(const Record& frame, std::string_view, std::string& out) {
    append_part(out, concat("!PDGY,", frame.msg.pgn, ",", unsigned{frame.msg.destination}, ","));
    append_base64(out, payload_of(frame));
    out += "\r\n";
}

/// The last byte first, behind a word that has priority, length and destination.
void append_mxpgn(const Record& frame, std::string_view, std::string& out) {
    constexpr unsigned sends = 0x8000;
    const N2KMsg& msg = frame.msg;
    std::string sentence = "MXPGN,";
    append_hex(sentence, identifier_of(msg) >> 8 & max_pgn, 6);
    append_hex(sentence += ',',
               sends | unsigned{msg.priority} << 12 | unsigned{msg.length} << 8 | msg.destination, 4);
    sentence += ',';
    for (unsigned i = msg.length; i-- > 0;) append_hex(sentence, msg.data[i], 2);
    unsigned sum = 0;
    for (const char c : sentence) sum ^= static_cast<unsigned char>(c);
    append_part(out, concat("$", sentence, "*"));
    append_hex(out, sum, 2);
    out += "\r\n";
}

constexpr struct {
    std::string_view format;
    void (*append)(const Record& frame, std::string_view bus, std::string& out);
} forms[] = {
    {"actisense", append_actisense}, {"actisense-ascii", append_actisense_ascii},
    {"candump", append_candump},     {"ikonvert", append_ikonvert},
    {"mxpgn", append_mxpgn},         {"plain", append_plain},
    {"slcan", append_slcan},         {"yacht-devices", append_yacht_devices},
};

}  // namespace

bool append_transmission(std::string_view format, const Record& frame, std::string_view bus,
                         std::string& out) {
    for (const auto& form : forms) {
        if (form.format != format) continue;
        form.append(frame, bus, out);
        return true;
    }
    return false;
}

}  // namespace vistel

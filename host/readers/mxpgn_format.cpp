#include "readers/mxpgn_format.h"

#include <algorithm>

#include "can/identifier.h"
#include "readers/scan.h"

namespace vistel {

bool MxpgnSentences::is_one(const Sentence& sentence) {
    constexpr std::size_t talker = 2;
    return sentence.start == '$' && sentence.text.size() > talker &&
           sentence.text.substr(talker).starts_with("PGN,");
}

Found MxpgnSentences::read(Sentence sentence, Record& record, Problem& problem) {
    if (!is_whole(sentence, problem)) return Found::problem;
    (void)sentence.take_field();
    N2KMsg& msg = record.msg;
    std::uint32_t pgn = 0, attributes = 0;
    if (!read_pgn_field(sentence.take_field(), pgn, problem)) return Found::problem;
    const std::string_view attribute_digits = sentence.take_field();
    if (!attribute_digits.empty() && !read_hex_field(attribute_digits, "attribute", 4, attributes, problem))
        return Found::problem;
    if (!read_packed_bytes(sentence.text, max_frame_bytes, msg, problem)) return Found::problem;
    const unsigned announced = attributes >> 8 & 15;
    if (!attribute_digits.empty() && announced <= max_frame_bytes && announced != msg.length) {
        describe(problem, announced, " bytes announced, ", unsigned{msg.length}, " given");
        return Found::problem;
    }
    std::reverse(msg.data, msg.data + msg.length);
    constexpr std::uint32_t to_send = 0x8000;
    constexpr unsigned lowest_priority = 7;
    const bool sent = attribute_digits.empty() || (attributes & to_send) != 0;
    const unsigned priority = attribute_digits.empty() ? lowest_priority : attributes >> 12 & 7;
    const std::uint32_t source = sent ? nobody : attributes & 0xFF;
    set_header(msg, priority << 26 | pgn << 8 | source);
    if (sent && !attribute_digits.empty() && is_addressed(msg.pgn))
        msg.destination = static_cast<std::uint8_t>(attributes);
    record.kind = Record::Kind::frame;
    record.time = {};
    return Found::record;
}

}  // namespace vistel

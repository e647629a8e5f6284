#include "readers/pcdin_format.h"

#include "can/identifier.h"
#include "readers/scan.h"
#include "text/hex.h"

namespace vistel {

bool PcdinSentences::is_one(const Sentence& sentence) {
    return sentence.start == '$' && sentence.text.starts_with("PCDIN,");
}

Found PcdinSentences::read(Sentence sentence, Record& record, Problem& problem) {
    if (!is_whole(sentence, problem)) return Found::problem;
    (void)sentence.take_field();
    std::uint32_t pgn = 0, milliseconds = 0, source = 0;
    constexpr std::size_t time_digits = 8;
    if (!read_pgn_field(sentence.take_field(), pgn, problem)) return Found::problem;
    const std::string_view time = sentence.take_field();
    const bool old_device = time.size() == time_digits && hex_digit(time.back()) == not_hex;
    if (old_device ? !read_hex_field(time.substr(0, time_digits - 1), "time", 7, milliseconds, problem)
                   : !read_hex_field(time, "time", time_digits, milliseconds, problem))
        return Found::problem;
    if (old_device) milliseconds <<= 4;
    if (!read_hex_field(sentence.take_field(), "source", 2, source, problem) ||
        !read_packed_bytes(sentence.text, N2K_MAX_PAYLOAD, record.msg, problem))
        return Found::problem;
    record.kind = Record::Kind::message;
    record.time = {clock_.unroll(milliseconds) * 1'000'000, RecordTime::Origin::start};
    record.msg.pgn = is_addressed(pgn) ? pgn & ~std::uint32_t{0xFF} : pgn;
    record.msg.priority = usual_priority;
    record.msg.source = static_cast<std::uint8_t>(source);
    record.msg.destination = everyone;
    return Found::record;
}

}  // namespace vistel

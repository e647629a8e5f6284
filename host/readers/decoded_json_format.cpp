#include "readers/decoded_json_format.h"

#include <algorithm>
#include <cstring>

#include "can/identifier.h"
#include "readers/scan.h"
#include "text/hex.h"
#include "text/quotes.h"

namespace vistel {

using namespace pgn_vistel::core;

namespace {

// Within a text of JSON no quote stands without a backslash, so these are found nowhere else.
constexpr std::string_view fields_mark = ",\"fields\":[", raw_mark = ",\"raw\":\"",
                           rest_mark = "],\"data\":\"";

/// What follows `name` in `text` up to a comma, a quote or a brace; empty where it is not there.
std::string_view member(std::string_view text, std::string_view name) {
    const std::size_t at = text.find(name);
    if (at == std::string_view::npos) return {};
    text.remove_prefix(at + name.size());
    return text.substr(0, text.find_first_of(",\"}"));
}

/// Goes to the bits of the next field.
bool take_raw(std::string_view& fields, std::string_view& raw) {
    const std::size_t at = fields.find(raw_mark);
    if (at == std::string_view::npos) return false;
    fields.remove_prefix(at + raw_mark.size());
    raw = fields.substr(0, fields.find('"'));
    return true;
}

std::size_t bit_of(PayloadPosition position) {
    return 8 * static_cast<std::size_t>(position.byte) + static_cast<std::size_t>(position.bit);
}

/// Bytes that `raw` has; none where it is not hexadecimal.
std::size_t size_of(std::string_view raw) {
    for (const char c : raw)
        if (hex_digit(c) >= not_hex) return 0;
    return raw.size() / 2;
}

unsigned byte_of(std::string_view raw, std::size_t i) {
    return hex_pair(raw.data() + 2 * i);
}

/// The eight bits from `bit` on.
unsigned bits_at(const N2KMsg& msg, std::size_t bit) {
    const std::size_t byte = bit / 8;
    const unsigned next = byte + 1 < sizeof msg.data ? msg.data[byte + 1] : 0u;
    return ((msg.data[byte] | next << 8) >> bit % 8) & 0xFF;
}

/// Sets the bits from `bit` on and leaves those before it.
void put_bits(N2KMsg& msg, std::size_t bit, unsigned value) {
    const std::size_t byte = bit / 8, shift = bit % 8;
    const unsigned kept = msg.data[byte] & ((1u << shift) - 1);
    msg.data[byte] = static_cast<std::uint8_t>(kept | value << shift);
    if (shift > 0) msg.data[byte + 1] = static_cast<std::uint8_t>(value >> (8 - shift));
}

}  // namespace

bool DecodedJsonFormat::resembles(std::string_view line) {
    return line.starts_with("{\"time\":") && line.find(",\"pgn\":") != std::string_view::npos &&
           line.find(fields_mark) != std::string_view::npos;
}

/// Writes the bits of the fields where the definition has them. Fields that it does not have follow byte by
/// byte, so that what tells the right variant stands in its place. Returns the bits of all.
std::size_t DecodedJsonFormat::put_fields(const PgnDef* definition, std::string_view fields, N2KMsg& msg) {
    msg.length = N2K_MAX_PAYLOAD;
    MessageWalk walk(definition, msg);
    std::size_t end = 0;
    bool is_over = false;
    for (std::string_view raw; take_raw(fields, raw);) {
        const std::size_t bits = 8 * size_of(raw);
        is_over = is_over || !walk.next();
        const std::size_t first = is_over ? (end + 7) / 8 * 8 : bit_of(walk.position);
        if ((first + bits) / 8 + 1 > sizeof msg.data) break;
        for (std::size_t i = 0; i < size_of(raw); ++i) put_bits(msg, first + 8 * i, byte_of(raw, i));
        end = first + bits;
        if (is_over) continue;
        walk.position = walk.read(units_, unit::selected, scratch_).next;
        end = std::min(end, bit_of(walk.position));
    }
    return end;
}

/// Whether the message has these fields and this rest behind them.
bool DecodedJsonFormat::holds(Definitions set, std::string_view fields, std::string_view rest,
                              const N2KMsg& msg) {
    MessageWalk walk(find_definition(set, msg), msg);
    std::string_view raw;
    while (walk.next()) {
        if (!take_raw(fields, raw)) return false;
        const std::size_t first = bit_of(walk.position);
        walk.position = walk.read(units_, unit::selected, scratch_).next;
        const std::size_t end = std::min(bit_of(walk.position), std::size_t{8} * msg.length);
        if (size_of(raw) != (end - std::min(first, end) + 7) / 8) return false;
        for (std::size_t i = 0; i < size_of(raw); ++i) {
            const std::size_t left = end - first - 8 * i;
            const unsigned mask = left < 8 ? (1u << left) - 1 : 0xFF;
            if ((bits_at(msg, first + 8 * i) & mask) != byte_of(raw, i)) return false;
        }
    }
    const std::size_t undecoded =
        walk.has_undecoded_rest() ? msg.length - static_cast<std::size_t>(walk.undecoded_from()) : 0;
    return !take_raw(fields, raw) && size_of(rest) == undecoded;
}

/// Looks for a definition that finds the fields which it puts there. What is looked at first decides which
/// are come across: the fields of any variant, or none, byte by byte.
bool DecodedJsonFormat::pack(Definitions set, std::string_view fields, std::string_view rest, N2KMsg& msg) {
    for (const bool begins_without : {false, true}) {
        std::memset(msg.data, 0, sizeof msg.data);
        msg.length = N2K_MAX_PAYLOAD;
        std::size_t end = 8 * sizeof msg.data;
        if (begins_without) end = put_fields(nullptr, fields, msg);
        const auto definition_of = [&](std::size_t bits) {
            msg.length =
                static_cast<std::uint16_t>(std::min((bits + 7) / 8 + size_of(rest), sizeof msg.data));
            return find_definition(set, msg);
        };
        const PgnDef* definition = definition_of(end);
        constexpr int most_passes = 8;  // the fields written so far tell the variant
        for (int pass = 0; pass < most_passes; ++pass) {
            end = put_fields(definition, fields, msg);
            const PgnDef* const found = definition_of(end);
            if (found == definition) break;
            definition = found;
        }
        if (put_rest(set == Definitions::fixed || definition == nullptr, end, rest, msg) &&
            holds(set, fields, rest, msg)) {
            return true;
        }
    }
    return false;
}

/// Ends the message behind so many bits with a rest, which may be all of it. A byte that fields have begun is
/// the first one of the rest.
bool DecodedJsonFormat::put_rest(bool is_all, std::size_t bits, std::string_view rest, N2KMsg& msg) {
    const std::size_t kept = rest.empty() ? (bits + 7) / 8 : is_all ? 0 : bits / 8;
    const std::size_t size = kept + size_of(rest);
    if (size > N2K_MAX_PAYLOAD) return false;
    for (std::size_t i = kept; i < size; ++i)
        msg.data[i] = static_cast<std::uint8_t>(byte_of(rest, i - kept));
    std::memset(msg.data + size, 0, sizeof msg.data - size);
    msg.length = static_cast<std::uint16_t>(size);
    return true;
}

bool DecodedJsonFormat::read_time(std::string_view head, RecordTime& time) {
    constexpr std::int64_t second = 1'000'000'000;
    const std::string_view absolute = member(head, ",\"absolute\":\"");
    if (!absolute.empty()) {
        auto parsed = timestamps_.parse(absolute);
        if (parsed) time = *parsed;
        return static_cast<bool>(parsed);
    }
    std::string_view since = member(head, "{\"time\":");
    if (since == "null") {
        time = {};
        return true;
    }
    const bool is_before = since.starts_with('-');
    if (is_before) since.remove_prefix(1);
    std::int64_t since_start = 0;
    if (!parse_duration(since, second, since_start)) return false;
    if (is_before) since_start = -since_start;
    time = {since_start, RecordTime::Origin::start};
    return true;
}

LineResult DecodedJsonFormat::read(std::string_view line, Record& record, Problem& problem) {
    const std::size_t fields_at = line.find(fields_mark);
    if (!line.starts_with('{') || !line.ends_with('}') || fields_at == std::string_view::npos) {
        describe(problem, quoted(line), " is no message that was decoded to JSON");
        return LineResult::problem;
    }
    const std::string_view head = line.substr(0, fields_at);
    if (!read_time(head, record.time)) {
        describe(problem, "the time is missing or wrong");
        return LineResult::problem;
    }
    N2KMsg& msg = record.msg;
    std::uint32_t priority = 0, source = 0, destination = 0;
    if (!read_number(member(head, ",\"pgn\":"), "PGN", max_pgn, msg.pgn, problem) ||
        !read_number(member(head, ",\"priority\":"), "priority", 7, priority, problem) ||
        !read_number(member(head, ",\"source\":"), "source", 255, source, problem) ||
        !read_number(member(head, ",\"destination\":"), "destination", 255, destination, problem)) {
        return LineResult::problem;
    }
    msg.priority = static_cast<std::uint8_t>(priority);
    msg.source = static_cast<std::uint8_t>(source);
    msg.destination = static_cast<std::uint8_t>(destination);
    record.kind = Record::Kind::message;
    std::string_view fields = line.substr(fields_at + fields_mark.size()), rest;
    if (const std::size_t at = fields.rfind(rest_mark); at != std::string_view::npos) {
        rest = member(fields.substr(at), rest_mark);
        fields = fields.substr(0, at);
    }
    // A rest that begins with what the fields have is the whole payload, as the fixed definitions show it.
    const bool has_rest = !rest.empty();
    if ((has_rest && pack(Definitions::fixed, fields, rest, msg)) ||
        pack(Definitions::corrected, fields, rest, msg) ||
        (!has_rest && pack(Definitions::fixed, fields, rest, msg))) {
        return LineResult::record;
    }
    describe(problem, "the fields are not those of a message ", msg.pgn);
    return LineResult::problem;
}

}  // namespace vistel

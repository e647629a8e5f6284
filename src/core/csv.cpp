#include <cassert>

#include "core/parts.h"

namespace pgn_vistel::core {

namespace {

/// What a spreadsheet would take for a formula has an apostrophe in front. One that a text begins with is
/// doubled by that, so that a reader knows which one to take off.
constexpr bool is_marked(std::uint32_t first) {
    return first == '=' || first == '+' || first == '-' || first == '@' || first == '\'';
}

/// Quoted only where a reader would trip over it; a quotation mark is doubled. Control characters, line ends
/// among them, become U+FFFD.
char* write_cell(char* at, const Text& text) {
    bool quoted = false;
    for (int i = 0; i < text.count; ++i) {
        const std::uint32_t c = unit_of(text, i);
        quoted = quoted || c == '"' || c == ',';
    }
    if (quoted) *at++ = '"';
    if (text.count > 0 && is_marked(unit_of(text, 0))) *at++ = '\'';
    for_each_character(text, text.count, [&at](std::uint32_t c) {
        if (c == '"') *at++ = '"';
        at = write_utf8(at, is_control(c) ? replacement : c);
    });
    if (quoted) *at++ = '"';
    return at;
}

/// Texts of the catalogue, which are ASCII.
char* write_cell(char* at, std::string_view text) {
    return write_cell(at, Text{text.data(), static_cast<int>(text.size()), Encoding::latin1});
}

char* write_meaning(char* at, const FieldPlan& plan, const FieldParts& parts) {
    using Meaning = FieldParts::Meaning;
    switch (parts.meaning) {
        case Meaning::none: return at;
        case Meaning::entry: return copy_blocks(at, text_pool + parts.entry->csv, parts.entry->csv_size);
        case Meaning::word:
        case Meaning::pgn_name: return write_cell(at, parts.word_text());
        case Meaning::flags: break;
    }
    char area[part_limit + pool_slack];
    Utf8Out texts(area);
    put_flags(texts, plan.enumeration, enumeration_value(parts.reading.value));
    return write_cell(at, std::string_view(area, static_cast<std::size_t>(texts.at() - area)));
}

char* write_value(char* at, const FieldPlan& plan, const FieldParts& parts) {
    using Look = FieldParts::Look;
    if (!parts.available) return at;
    if (parts.look == Look::text) return write_cell(at, text_of(parts));
    char* const end = parts.look == Look::number ? write_number(at, parts) : write_moment(at, plan, parts);
    return end != nullptr ? end : at;
}

/// A row behind the columns that it shares.
char* write_field(char* at, const FieldPlan& plan, int round, const FieldParts& parts, const Payload& payload,
                  int from) {
    at = copy_blocks<64>(at, text_pool + plan.texts + plan.line_size + plan.json_size, plan.csv_size);
    if ((plan.flags & numbered) != 0) {
        at = write_text(at, " #");
        at = write_unsigned(at, static_cast<unsigned>(round));
        if ((plan.flags & quoted) != 0) *at++ = '"';
        *at++ = ',';
    }
    at = write_value(at, plan, parts);
    if (parts.unit >= 0) {
        const UnitTexts& texts = unit_texts[parts.unit];
        at = copy_blocks(at, text_pool + texts.csv, texts.csv_size);
    } else {
        at = write_text(at, ",,");
    }
    at = write_meaning(at, plan, parts);
    *at++ = ',';
    at = write_raw(at, parts, payload, from);
    *at++ = ',';
    if (round > 0) at = write_unsigned(at, static_cast<unsigned>(round));
    *at++ = '\n';
    return at;
}

}  // namespace

char* CsvRenderer::write_header(char* at) {
    return write_text(
        at,
        "time,absolute,pgn,name,priority,source,destination,field,key,label,value,unit,text,raw,"
        "round\n");
}

void CsvRenderer::start(const N2KMsg& msg, const PgnDef* pgn, const MessageTime& time) {
    Renderer::start(msg, pgn);
    any_ = false;
    char* at = head_.data();
    if (time.is_known) at = write_seconds(at, time.since_start);
    *at++ = ',';
    if (time.has_absolute) at = write_utc(at, time.absolute);
    if (pgn != nullptr && pgn->pgn != 0) {
        const PgnPlan& plan = plan_of(*pgn);
        at = copy_blocks(at, text_pool + plan.texts + plan.line_size + 1 + plan.json_size, plan.csv_size);
    } else {
        *at++ = ',';
        at = write_unsigned(at, msg.pgn);
        *at++ = ',';
        at = write_cell(at, pgn_name(pgn));
        *at++ = ',';
    }
    for (const std::uint8_t number : {msg.priority, msg.source, msg.destination}) {
        at = write_byte(at, number);
        *at++ = ',';
    }
    head_size_ = static_cast<int>(at - head_.data());
}

char* CsvRenderer::write(char* at, char* limit) {
    assert(msg_ != nullptr && limit - at >= static_cast<std::ptrdiff_t>(piece_room));
    const Payload payload{msg_->data, payload_length(*msg_)};
    Stepping::State& walk = Stepping::state(walk_);
    const auto write_head = [this](char* to) {
        return copy_blocks(to, head_.data(), static_cast<std::size_t>(head_size_));
    };
    if (stage_ == Stage::head) stage_ = Stage::fields;
    FieldParts parts;
    while (stage_ == Stage::fields) {
        if (static_cast<std::size_t>(limit - at) < piece_room) return at;
        if (!Stepping::next(walk)) {
            stage_ = Stage::rest;
            break;
        }
        const FieldPlan& plan = Stepping::plan(walk);
        const int from = walk.position;
        read_parts(walk, payload, units_, scratch_, parts);
        at = write_field(write_head(at), plan, Stepping::round(walk), parts, payload, from);
        any_ = true;
    }
    if (stage_ == Stage::rest) {
        // A message must not vanish: the bytes that no field covers, or an empty row for an empty message.
        if (walk.rest || !any_) {
            at = write_text(write_head(at), ",,Data,,,,");
            const int first = walk_.undecoded_from();
            at = write_hex_bytes(at, payload.data + first, payload.length - first);
            at = write_text(at, ",\n");
        }
        stage_ = Stage::over;
    }
    return at;
}

}  // namespace pgn_vistel::core

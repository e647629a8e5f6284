#include <cassert>

#include "core/parts.h"

namespace pgn_vistel::core {

namespace {

/// What ends lines beside the control characters, for programs that take JSON as a script.
constexpr bool ends_line(std::uint32_t c) {
    return c == 0x2028 || c == 0x2029;
}

char* write_character(char* at, std::uint32_t c) {
    if (!is_control(c) && c != '"' && c != '\\' && !ends_line(c)) return write_utf8(at, c);
    *at++ = '\\';
    if (c == '"' || c == '\\') {
        *at = static_cast<char>(c);
        return at + 1;
    }
    *at++ = 'u';
    at = write_hex_byte(at, static_cast<std::uint8_t>(c >> 8));
    return write_hex_byte(at, static_cast<std::uint8_t>(c));
}

char* write_string(char* at, const Text& text) {
    *at++ = '"';
    for_each_character(text, text.count, [&at](std::uint32_t c) { at = write_character(at, c); });
    *at++ = '"';
    return at;
}

/// Texts of the catalogue, which are ASCII.
char* write_string(char* at, std::string_view text) {
    return write_string(at, Text{text.data(), static_cast<int>(text.size()), Encoding::latin1});
}

char* write_meaning(char* at, const FieldPlan& plan, const FieldParts& parts) {
    using Meaning = FieldParts::Meaning;
    switch (parts.meaning) {
        case Meaning::none: return write_text(at, "null");
        case Meaning::entry: return copy_blocks(at, text_pool + parts.entry->json, parts.entry->json_size);
        case Meaning::word:
        case Meaning::pgn_name: return write_string(at, parts.word_text());
        case Meaning::flags: break;
    }
    const std::uint32_t value = enumeration_value(parts.reading.value);
    char area[part_limit + pool_slack];
    Utf8Out texts(area);
    put_flags(texts, plan.enumeration, value);
    const auto size = static_cast<std::size_t>(texts.at() - area);
    return size > 0 ? write_string(at, std::string_view(area, size)) : write_text(at, "null");
}

char* write_value(char* at, const FieldPlan& plan, const FieldParts& parts) {
    using Look = FieldParts::Look;
    if (parts.available && parts.look == Look::text) return write_string(at, text_of(parts));
    if (parts.available && parts.look != Look::number) {
        if (char* const end = write_moment(at + 1, plan, parts); end != nullptr) {
            *at = '"';
            *end = '"';
            return end + 1;
        }
    } else if (char* const end = write_number(at, parts); end != nullptr) {
        return end;
    }
    return write_text(at, "null");
}

char* write_field(char* at, const FieldPlan& plan, int round, const FieldParts& parts, const Payload& payload,
                  int from) {
    at = copy_blocks<64>(at, text_pool + plan.texts + plan.line_size, plan.json_size);
    if ((plan.flags & numbered) != 0) {
        at = write_text(at, " #");
        at = write_unsigned(at, static_cast<unsigned>(round));
        at = write_text(at, R"(","value":)");
    }
    at = write_value(at, plan, parts);
    if (parts.unit >= 0) {
        const UnitTexts& texts = unit_texts[parts.unit];
        at = copy_blocks(at, text_pool + texts.json, texts.json_size);
    } else {
        at = write_text(at, R"(,"unit":null,"text":)");
    }
    at = write_meaning(at, plan, parts);
    at = write_text(at, R"(,"raw":")");
    at = write_raw(at, parts, payload, from);
    *at++ = '"';
    if (round > 0) {
        at = write_text(at, R"(,"round":)");
        at = write_unsigned(at, static_cast<unsigned>(round));
    }
    *at++ = '}';
    return at;
}

}  // namespace

std::string_view field_key(const FieldDef& field) {
    const FieldPlan& plan = plan_of(field);
    const std::string_view json(text_pool + plan.texts + plan.line_size, plan.json_size);
    constexpr std::string_view member = R"("key":")";
    const std::size_t first = json.find(member) + member.size();
    return json.substr(first, json.find('"', first) - first);
}

void JsonRenderer::start(const N2KMsg& msg, const PgnDef* pgn, const MessageTime& time) {
    Renderer::start(msg, pgn);
    time_ = time;
    first_ = true;
}

char* JsonRenderer::write_head(char* at) {
    at = write_text(at, R"({"time":)");
    at = time_.is_known ? write_seconds(at, time_.since_start) : write_text(at, "null");
    if (time_.has_absolute) {
        at = write_text(at, R"(,"absolute":")");
        at = write_utc(at, time_.absolute);
        *at++ = '"';
    }
    if (pgn_ != nullptr && pgn_->pgn != 0) {
        const PgnPlan& plan = plan_of(*pgn_);
        at = copy_blocks(at, text_pool + plan.texts + plan.line_size + 1, plan.json_size);
    } else {
        at = write_text(at, R"(,"pgn":)");
        at = write_unsigned(at, msg_->pgn);
        at = write_string(write_text(at, R"(,"name":)"), pgn_name(pgn_));
        at = write_text(at, R"(,"priority":)");
    }
    at = write_byte(at, msg_->priority);
    at = write_text(at, R"(,"source":)");
    at = write_byte(at, msg_->source);
    at = write_text(at, R"(,"destination":)");
    at = write_byte(at, msg_->destination);
    return write_text(at, R"(,"fields":[)");
}

char* JsonRenderer::write(char* at, char* limit) {
    assert(msg_ != nullptr && limit - at >= static_cast<std::ptrdiff_t>(piece_room));
    if (stage_ == Stage::head) {
        at = write_head(at);
        stage_ = Stage::fields;
    }
    const Payload payload{msg_->data, payload_length(*msg_)};
    Stepping::State& walk = Stepping::state(walk_);
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
        if (!first_) *at++ = ',';
        first_ = false;
        at = write_field(at, plan, Stepping::round(walk), parts, payload, from);
    }
    if (stage_ == Stage::rest) {
        *at++ = ']';
        if (walk.rest) {
            at = write_text(at, R"(,"data":")");
            const int first = walk_.undecoded_from();
            at = write_hex_bytes(at, payload.data + first, payload.length - first);
            *at++ = '"';
        }
        at = write_text(at, "}\n");
        stage_ = Stage::over;
    }
    return at;
}

}  // namespace pgn_vistel::core

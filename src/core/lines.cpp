#include <cassert>

#include "core/read.h"
#include "core/value_text.h"
#include "core/walk.h"
#include "pgn_vistel/core/render.h"

namespace pgn_vistel::core {

namespace {

constexpr int indent = 4;        // blanks in front of a label in the pool, which windows do not show
constexpr int label_end = 2;     // characters of ": "
constexpr int payload_byte = 3;  // characters of one: " 0F"

constexpr std::string_view source_label = "Source Address: 0x";
constexpr std::string_view global = "Destination: Global, pri=";
constexpr std::string_view addressed = "Destination: 0x";

/// "03 (3)"
char* write_address(char* at, std::uint8_t address) {
    at = write_hex_byte(at, address);
    *at++ = ' ';
    *at++ = '(';
    at = write_byte(at, address);
    *at++ = ')';
    return at;
}

constexpr int time_stamp_places = 10;

/// Seconds with two decimals, ten places wide at the least.
template <class Count>
char* write_time_stamp(char* at, Count hundredths) {
    char* const start = at;
    at = write_unsigned(at, hundredths / 100);
    *at++ = '.';
    at = write_pair(at, static_cast<std::uint32_t>(hundredths % 100));
    std::memset(at, ' ', time_stamp_places);
    return std::max(at, start + time_stamp_places);
}

/// The same of any time, ten places wide with its sign.
char* write_time_stamp(char* at, const MessageTime& time) {
    constexpr std::uint64_t hundredth = 10'000'000;
    if (!time.is_known) {
        *at = '-';
        std::memset(at + 1, ' ', time_stamp_places - 1);
        return at + time_stamp_places;
    }
    const auto nanoseconds = static_cast<std::uint64_t>(time.since_start);
    if (time.since_start >= 0) [[likely]]
        return write_time_stamp(at, nanoseconds / hundredth);
    *at = '-';
    char* const end = write_time_stamp(at + 1, (0 - nanoseconds) / hundredth);
    return end > at + 1 + time_stamp_places ? end : at + time_stamp_places;
}

/// Number and name of a PGN that has no row of its own: `row` is null or says whose the message is.
template <class Out>
void put_unlisted(Out& out, std::uint32_t pgn, const PgnDef* row) {
    out.put_number([pgn](char* at) {
        at = std::fill_n(at, 5, ' ');
        for (std::uint32_t limit = 100'000; limit > 1 && pgn < limit; limit /= 10) *at++ = ' ';
        return write_unsigned(at, pgn);
    });
    out.put(", ");
    out.put(pgn_name(row));
}

template <class Out>
void put_destination(Out& out, const N2KMsg& msg) {
    constexpr std::uint8_t everyone = 255;
    if (msg.destination == everyone) {
        out.put(global);
        out.put_number([&msg](char* at) { return write_unsigned(at, msg.priority); });
    } else {
        out.put(addressed);
        out.put_number([&msg](char* at) { return write_address(at, msg.destination); });
    }
}

template <class Out>
void put_round(Out& out, int round) {
    out.put(" #");
    out.put_number([round](char* at) { return write_unsigned(at, static_cast<unsigned>(round)); });
    out.put(": ");
}

/// The value without its unit, which is returned: negative where none follows. `Reading` is a `FieldReading`
/// or a `FieldValue`.
template <class Out, class Reading>
[[gnu::always_inline]] inline UnitId put_reading(Out& out, const FieldPlan& plan, const Reading& field,
                                                 std::uint32_t high, bool plain_numbers) {
    if (field.cut_off || shows_nothing(plan, field.value)) {
        out.put('-');
        return field.unit;
    }
    const bool every_code = is_of_corrected(format_plans[plan.format]);
    const Shown shown{plan.form,  plan.enumeration, high,      field.quantity,
                      field.unit, plain_numbers,    every_code};
    return put_value(out, shown, field.value) ? field.unit : UnitId{unit::selected};
}

/// The text of a code, or false. Only a copy of `out` is handed on, so that those who print in line keep it
/// in a register.
template <class Out>
[[gnu::always_inline]] inline bool put_meaning(Out& out, const FieldPlan& plan, std::uint32_t code) {
    Out copy = out;
    const bool is_put = put_enumeration(copy, plan.enumeration, code, 0);
    out = copy;
    return is_put;
}

/// A number that takes no rule of its quantity to be shown.
template <class Out>
[[gnu::always_inline]] inline UnitId put_quick(Out& out, const FieldPlan& plan, const QuickNumber& number,
                                               bool plain_numbers) {
    using Kind = QuickNumber::Kind;
    switch (number.kind) {
        case Kind::single:
            out.put_number([&](char* at) { return write_significant<5>(at, number.single); });
            break;
        case Kind::integer: {
            if (plan.form == Form::enumeration &&
                put_meaning(out, plan, static_cast<std::uint32_t>(number.bits)))
                return unit::selected;
            Value value;
            number.store(value);
            out.put_number([&](char* at) { return write_integer(at, value, plain_numbers); });
            break;
        }
        case Kind::real: {
            const auto value = static_cast<float>(number.real);
            out.put_number([value](char* at) { return write_significant<8>(at, value); });
            break;
        }
        default: out.put('-'); break;
    }
    return number.unit;
}

/// What `put_field` does with fields that are not read in line.
template <class Out>
[[gnu::noinline]] UnitId put_with_care(Out& out, Stepping::State& walk, const Payload& payload,
                                       const UnitSelection& units, TextScratch& scratch, bool plain_numbers) {
    const FieldPlan& plan = Stepping::plan(walk);
    const std::uint16_t entry = find_coded_entry(plan, payload, walk.position);
    FieldValue field;
    Stepping::read_field(walk, payload, units, scratch, field);
    if (entry != no_entry) {
        put_entry(out, plan.enumeration, entry);
        return unit::selected;
    }
    return put_reading(out, plan, field, walk.is_resolved ? walk.high : 0, plain_numbers);
}

/// Value of the field that the walk has come to, and its label's number; the walk goes behind it. Returns the
/// unit that follows, negative for none.
template <class Out>
[[gnu::always_inline]] inline UnitId put_field(Out& out, Stepping::State& walk, const Payload& payload,
                                               const UnitSelection& units, TextScratch& scratch,
                                               bool plain_numbers) {
    using Kind = QuickNumber::Kind;
    const FieldPlan& plan = Stepping::plan(walk);
    if ((plan.flags & numbered) != 0) put_round(out, Stepping::round(walk));
    if (Stepping::is_plain(walk)) [[likely]] {
        QuickNumber quick;
        read_quick(plan, payload, walk.position, units, quick);
        if (quick.kind != Kind::slow && (plan.flags & plainly) != 0 &&
            (plan.form == Form::plain || quick.kind == Kind::integer)) [[likely]] {
            walk.position = quick.next;
            return Stepping::directed(walk, put_quick(out, plan, quick, plain_numbers));
        }
    }
    Out copy = out;
    const UnitId unit = put_with_care(copy, walk, payload, units, scratch, plain_numbers);
    out = copy;
    return unit;
}

/// Texts with all their characters, for those who compare them.
class UnmaskedOut : public Utf8Out {
  public:
    using Utf8Out::Utf8Out;
};

void put_text(UnmaskedOut& out, const Text& text, int most) {
    for_each_character(text, most, [&out](std::uint32_t c) { out.put_character(c); });
}

/// A value's end behind its unit, where it has one.
char* end_with_unit(UnmaskedOut& out, UnitId unit) {
    if (unit >= 0) {
        out.put(' ');
        out.put(unit_text(unit));
    }
    return out.at();
}

}  // namespace

// ---- for windows ----

int print_stream_line(wchar_t* buf, int size, const N2KMsg& msg, const PgnDef* pgn) {
    WideOut out(buf, size);
    out.put_number([&msg](char* at) { return write_time_stamp(at, msg.time_stamp); });
    if (pgn != nullptr && pgn->pgn == msg.pgn) {
        const PgnPlan& plan = plan_of(*pgn);
        out.put_pooled(text_pool + plan.texts, plan.line_size);
    } else {
        put_unlisted(out, msg.pgn, pgn != nullptr && pgn->pgn == 0 ? pgn : nullptr);
    }
    return out.finish();
}

StreamLines::StreamLines(const PgnDef* pgn, const N2KMsg& msg, const UnitSelection& units,
                         TextScratch& scratch, bool plain_numbers)
    : msg_(msg), units_(units), scratch_(scratch), plain_numbers_(plain_numbers), walk_(pgn, msg) {}

int StreamLines::next(wchar_t* buf, int size) {
    WideOut out(buf, size);
    switch (stage_) {
        case Stage::source:
            out.put(source_label);
            out.put_number([this](char* at) { return write_address(at, msg_.source); });
            stage_ = Stage::destination;
            return out.finish();
        case Stage::destination:
            put_destination(out, msg_);
            stage_ = Stage::fields;
            return out.finish();
        case Stage::fields: break;
        case Stage::over: return -1;
    }
    const Payload payload{msg_.data, payload_length(msg_)};
    Stepping::State& walk = Stepping::state(walk_);
    if (Stepping::next(walk)) {
        const FieldPlan& plan = Stepping::plan(walk);
        out.put_pooled(text_pool + plan.texts + indent, static_cast<std::size_t>(plan.line_size - indent));
        const UnitId unit = put_field(out, walk, payload, units_, scratch_, plain_numbers_);
        if (unit >= 0) {
            out.put(' ');
            out.put(std::wstring_view(unit_name(unit)));
        }
        return out.finish();
    }
    stage_ = Stage::over;
    if (!walk_.has_undecoded_rest()) return -1;
    out.put("Data:");
    for (int i = walk_.undecoded_from(); i < payload.length && out.room() > 0; ++i) {
        out.put(' ');
        out.put_number([&](char* at) { return write_hex_byte(at, payload.data[i]); });
    }
    return out.finish();
}

// ---- UTF-8 ----

void TextRenderer::start(const N2KMsg& msg, const PgnDef* pgn, std::uint32_t time_stamp) {
    constexpr std::int64_t unit = 10'000'000;
    start(msg, pgn, MessageTime{.since_start = time_stamp * unit});
}

void TextRenderer::start(const N2KMsg& msg, const PgnDef* pgn, const MessageTime& time) {
    Renderer::start(msg, pgn);
    time_ = time;
}

char* TextRenderer::write_head(char* at) const {
    Utf8Out out(write_time_stamp(at, time_));
    if (pgn_ != nullptr && pgn_->pgn != 0) {
        const PgnPlan& plan = plan_of(*pgn_);
        out.put_pooled(text_pool + plan.texts, plan.line_size);
    } else {
        put_unlisted(out, msg_->pgn, pgn_);
    }
    out.put("\n    ");
    out.put(source_label);
    out.put_number([this](char* to) { return write_address(to, msg_->source); });
    out.put("\n    ");
    put_destination(out, *msg_);
    out.put('\n');
    return out.at();
}

char* TextRenderer::write(char* at, char* limit) {
    assert(msg_ != nullptr && limit - at >= static_cast<std::ptrdiff_t>(piece_room));
    if (stage_ == Stage::head) {
        at = write_head(at);
        stage_ = Stage::fields;
    }
    const Payload payload{msg_->data, payload_length(*msg_)};
    Stepping::State& walk = Stepping::state(walk_);
    while (stage_ == Stage::fields) {
        if (static_cast<std::size_t>(limit - at) < piece_room) return at;
        if (!Stepping::next(walk)) {
            stage_ = walk.rest ? Stage::rest : Stage::over;
            break;
        }
        const FieldPlan& plan = Stepping::plan(walk);
        Utf8Out out(at);
        out.put_label(text_pool + plan.texts, plan.line_size);
        const UnitId unit = put_field(out, walk, payload, units_, scratch_, plain_numbers_);
        if (unit >= 0) {
            const UnitTexts& texts = unit_texts[unit];
            out.put_pooled(text_pool + texts.line,
                           static_cast<std::size_t>(texts.line_size) + 1);  // and line end
        } else {
            out.put('\n');
        }
        at = out.at();
    }
    if (stage_ == Stage::rest) {
        // A line of the monitor has its limit, in which the last byte may fit only in part.
        Utf8Out out(at);
        out.put("    Data:");
        constexpr int room = line_size - 1 - static_cast<int>(sizeof("Data:") - 1);
        char* const digits = out.at();
        at = digits;
        const int from = walk_.undecoded_from();
        for (int i = from; i < payload.length && i - from <= room / payload_byte; ++i) {
            *at++ = ' ';
            at = write_hex_byte(at, payload.data[i]);
        }
        at = std::min(at, digits + room);
        *at++ = '\n';
        stage_ = Stage::over;
    }
    return at;
}

// ---- parts of a line ----

char* write_label(char* at, const FieldDef& field, int repeat) {
    const FieldPlan& plan = plan_of(field);
    Utf8Out out(at);
    out.put_pooled(text_pool + plan.texts + indent, static_cast<std::size_t>(plan.line_size - indent));
    if ((plan.flags & numbered) != 0) put_round(out, repeat);
    return out.at() - label_end;
}

char* write_value(char* at, const FieldDef& field, const FieldReading& reading, bool with_unit) {
    UnmaskedOut out(at);
    const UnitId unit = put_reading(out, plan_of(field), reading, 0, false);
    return with_unit ? end_with_unit(out, unit) : out.at();
}

char* write_value(char* at, const MessageWalk& walk, const FieldReading& reading, bool with_unit) {
    const Stepping::State& state = Stepping::state(walk);
    const FieldPlan& plan = Stepping::plan(state);
    const int position = walk.position.byte * 8 + walk.position.bit;
    const std::uint16_t entry = find_coded_entry(plan, {state.data, state.end / 8}, position);
    UnmaskedOut out(at);
    UnitId unit = unit::selected;
    if (entry != no_entry)
        put_entry(out, plan.enumeration, entry);
    else
        unit = put_reading(out, plan, reading, state.is_resolved ? state.high : 0, false);
    return with_unit ? end_with_unit(out, unit) : out.at();
}

}  // namespace pgn_vistel::core

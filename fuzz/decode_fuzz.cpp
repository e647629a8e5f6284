// Bytes as one message of any PGN, with any length in its record: as wide lines, UTF-8 text, JSON, CSV and
// values, which have to agree. Then the same bytes by way of the text interface, as the field of any format,
// as a typed text and as a caller's format. See Input for the first bytes.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "contract/value_printer.h"
#include "pgn_vistel/core/render.h"
#include "pgn_vistel/formats.h"
#include "pgn_vistel/pgn_db.h"

namespace {

using namespace pgn_vistel::core;

struct [[gnu::packed]] Input {
    std::uint16_t number;  // of a row of the catalogue, or a PGN's low bits; a format's number, too
    std::uint16_t length;  // in the message's record
    std::uint8_t mode;  // bit 0: `number` is a PGN, bits 1 and 2 above it; bit 3: lengths just as sent; rest:
                        // value type
    std::uint8_t unit;  // chosen for all quantities, from 140 on: one after the other
};

void require(bool condition) {
    if (!condition) std::abort();
}

/// Prints into `size` characters and looks at what stands around them.
template <class Print>
std::wstring guarded(int size, Print print) {
    constexpr wchar_t guard = 0xE000;
    static wchar_t area[line_size + 2];
    std::fill_n(area, size + 2, guard);
    const int count = print(area + 1, size);
    require(area[0] == guard && area[size + 1] == guard && count < std::max(size, 1));
    if (count < 0 || size == 0) return {};
    require(area[1 + count] == 0);
    return {area + 1, static_cast<std::size_t>(count)};
}

// ---- the monitor's lines ----

std::vector<std::wstring> lines_of(const UnitSelection& units, const N2KMsg& msg, bool plain_numbers,
                                   int size) {
    TextScratch scratch;
    const PgnDef* const pgn = find_pgn_def(msg.pgn);
    std::vector<std::wstring> all{
        guarded(size, [&](wchar_t* b, int n) { return print_stream_line(b, n, msg, pgn); })};
    StreamLines lines(pgn, msg, units, scratch, plain_numbers);
    for (bool over = false; !over;) {
        require(all.size() < 100000);  // every round of a repeating group takes a bit at the least
        all.push_back(guarded(size, [&](wchar_t* b, int n) {
            const int count = lines.next(b, n);
            over = count < 0;
            return count;
        }));
    }
    all.pop_back();
    return all;
}

void put_utf8(std::string& out, std::uint32_t c) {
    const auto tail = [c](int shift) { return static_cast<char>(0x80 | (c >> shift & 0x3F)); };
    if (c < 0x80)
        out += static_cast<char>(c);
    else if (c < 0x800)
        (out += static_cast<char>(0xC0 | c >> 6)) += tail(0);
    else if (c < 0x10000)
        ((out += static_cast<char>(0xE0 | c >> 12)) += tail(6)) += tail(0);
    else
        (((out += static_cast<char>(0xF0 | c >> 18)) += tail(12)) += tail(6)) += tail(0);
}

/// A line as UTF-8 text has it: without control characters and halves of pairs.
std::string as_utf8(const std::wstring& line) {
    std::string out;
    for (std::size_t i = 0; i < line.size(); ++i) {
        auto c = static_cast<std::uint32_t>(line[i]);
        const auto next = i + 1 < line.size() ? static_cast<std::uint32_t>(line[i + 1]) : 0;
        if (c >= 0xD800 && c < 0xDC00 && next >= 0xDC00 && next < 0xE000) {
            c = 0x10000 + ((c - 0xD800) << 10) + (next - 0xDC00);
            ++i;
        } else if ((c >= 0xD800 && c < 0xE000) || c < 0x20 || (c >= 0x7F && c < 0xA0)) {
            c = 0xFFFD;
        }
        put_utf8(out, c);
    }
    return out;
}

// ---- the UTF-8 renderers ----

/// One message in one form, a window at a time.
class Rendering {
  public:
    Rendering(int form, const UnitSelection& units, const N2KMsg& msg, const PgnDef* pgn, bool plain_numbers)
        : form_(form), text_(units, plain_numbers), json_(units), csv_(units) {
        const MessageTime time{msg.time_stamp * INT64_C(10'000'000), msg.source % 2 == 0,
                               msg.time_stamp * -INT64_C(1'000'003)};
        text_.start(msg, pgn, msg.time_stamp);
        json_.start(msg, pgn, time);
        csv_.start(msg, pgn, time);
    }

    bool is_done() const {
        return form_ == 0 ? text_.is_done() : form_ == 1 ? json_.is_done() : csv_.is_done();
    }
    void write(std::vector<char>& window) {
        char* const at = window.data();
        char* const limit = at + window.size();
        char* const end = form_ == 0   ? text_.write(at, limit)
                          : form_ == 1 ? json_.write(at, limit)
                                       : csv_.write(at, limit);
        require(end >= at && end <= limit);
        result.append(at, end);
    }

    std::string result;

  private:
    int form_;
    TextRenderer text_;
    JsonRenderer json_;
    CsvRenderer csv_;
};

constexpr int forms = 3;

std::vector<std::string> all_forms(const UnitSelection& units, const N2KMsg& msg, bool plain_numbers,
                                   bool in_pieces) {
    // The sanitizer sees what is written beyond either of them.
    static std::vector<char> piece(piece_room), whole(8 << 20);
    const PgnDef* const pgn = find_pgn_def(msg.pgn);
    std::vector<std::unique_ptr<Rendering>> all;
    for (int form = 0; form < forms; ++form)
        all.push_back(std::make_unique<Rendering>(form, units, msg, pgn, plain_numbers));
    if (in_pieces) {
        // Side by side: none disturbs another.
        for (bool any = true; any;) {
            any = false;
            for (const auto& one : all) {
                if (one->is_done()) continue;
                one->write(piece);
                any = true;
            }
        }
    } else {
        for (const auto& one : all) {
            one->write(whole);
            require(one->is_done());
        }
    }
    std::vector<std::string> results;
    for (const auto& one : all) results.push_back(std::move(one->result));
    return results;
}

bool is_utf8(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const int tails = lead < 0x80   ? 0
                          : lead < 0xC2 ? -1
                          : lead < 0xE0 ? 1
                          : lead < 0xF0 ? 2
                          : lead < 0xF5 ? 3
                                        : -1;
        if (tails < 0 || i + static_cast<std::size_t>(tails) >= text.size()) return false;
        std::uint32_t c = tails == 0 ? lead : lead & 0x3Fu >> tails;
        for (int t = 1; t <= tails; ++t) {
            const auto tail = static_cast<unsigned char>(text[i + static_cast<std::size_t>(t)]);
            if ((tail & 0xC0) != 0x80) return false;
            c = c << 6 | (tail & 0x3Fu);
        }
        constexpr std::uint32_t least[] = {0, 0x80, 0x800, 0x10000};
        if (c < least[tails] || c > 0x10FFFF || (c >= 0xD800 && c < 0xE000)) return false;
        i += static_cast<std::size_t>(tails) + 1;
    }
    return true;
}

/// One object in one line, whose brackets close.
bool is_json_line(std::string_view text) {
    int depth = 0;
    bool quoted = false;
    for (std::size_t i = 0; i + 1 < text.size(); ++i) {
        const char c = text[i];
        if (static_cast<unsigned char>(c) < 0x20) return false;
        if (c == '\\' && quoted)
            ++i;
        else if (c == '"' && quoted && std::strchr(":,]}", text[i + 1]) == nullptr)
            return false;
        else if (c == '"')
            quoted = !quoted;
        else if (!quoted)
            depth += (c == '{' || c == '[') - (c == '}' || c == ']');
        if (depth == 0 && i + 2 < text.size()) return false;
    }
    return depth == 0 && !quoted && text.ends_with("}\n");
}

/// Rows of thirteen columns.
bool is_csv(std::string_view text) {
    int commas = 0;
    bool quoted = false;
    for (const char c : text) {
        if (c == '"') quoted = !quoted;
        if (quoted) continue;
        commas += c == ',';
        if (c != '\n') continue;
        if (commas != 12) return false;
        commas = 0;
    }
    return !quoted && commas == 0 && !text.empty();
}

void show_message(const UnitSelection& units, const Input& in, const N2KMsg& msg) {
    N2KMsg other = msg;  // differs in what does not belong to the message
    for (int i = payload_length(msg); i < static_cast<int>(sizeof msg.data); ++i)
        other.data[i] = static_cast<std::uint8_t>(~other.data[i]);

    for (const bool plain_numbers : {false, true}) lines_of(units, msg, plain_numbers, in.number % 300);
    const bool plain_numbers = in.length % 2 != 0;
    const auto lines = lines_of(units, msg, plain_numbers, line_size);
    require(lines == lines_of(units, other, plain_numbers, line_size));

    const auto whole = all_forms(units, msg, plain_numbers, false);
    require(whole == all_forms(units, msg, plain_numbers, true));
    require(whole == all_forms(units, other, plain_numbers, false));
    for (const std::string& text : whole) require(is_utf8(text));
    require(is_json_line(whole[1]) && is_csv(whole[2]));

    std::string_view rest = whole[0];
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::string line = (i > 0 ? "    " : "") + as_utf8(lines[i]);
        if (lines[i].size() < line_size - 1) require(rest.starts_with(line + '\n'));
        rest.remove_prefix(rest.find('\n') + 1);
    }
    require(rest.empty());
}

void look_up(const UnitSelection& units, const Input& in, const N2KMsg& msg) {
    const int field = field_at(msg.pgn, in.length % 2000, in.unit % 8);
    require(field == -1 || field > 0);
    std::uint8_t keys[4] = {255, 255, 255, 255};
    extract_stream_keys(msg.pgn, msg.data, &keys[0], &keys[1], &keys[2], &keys[3]);

    // Any field anywhere in the record.
    TextScratch scratch;
    const FieldDef& row = all_fields()[in.number % all_fields().size()];
    const PayloadPosition at{in.length % static_cast<int>(sizeof msg.data), in.unit % 8};
    const FieldReading reading = read_field(msg, row, at, units, in.unit, scratch);
    require(reading.next.byte >= at.byte && reading.next.bit >= 0 && reading.next.bit < 8);
    if (const DDstrings* const set = find_enumeration(row.dd->dd);
        set != nullptr && set->kind != ENUM_FLAGS) {
        const char* const text = enumeration_text(*set, enumeration_value(reading.value));
        require(text == nullptr || std::strlen(text) > 0);
    }
}

// ---- the text interface ----

/// Each field by itself reads as in its line.
void ask_for_fields(QV_N2K_PGN_DB_c& db, const UnitSelection& units, N2KMsg msg) {
    ConvValue value;
    // A refused text shows the previous one of its kind.
    db.conv_DF(50, &value, "\x02\x01", 0);
    db.conv_DF(51, &value, "\x03\x00\x01", 0);
    const auto lines = lines_of(units, msg, false, line_size);
    auto line = lines.begin() + 3;  // behind the stream's, source and destination
    TextScratch scratch;
    MessageWalk walk(find_pgn_def(msg.pgn), msg);
    for (; walk.next(); ++line) {
        const FieldDef& field = walk.field();
        int bytes, bits;
        normalise_field_size(&field, msg.pgn, &bytes, &bits);
        const std::wstring label(field.name, field.name + std::strlen(field.name));
        const auto entry = static_cast<std::size_t>(field.dd - all_dictionary_entries().data());
        const pgn_vistel::DDDef* const dd = &pgn_vistel::all_dictionary_rows()[entry];
        PayloadPosition at = walk.position;
        const std::wstring text = guarded(line_size, [&](wchar_t* b, int n) {
            return db.get_field_str(b, n, &msg, static_cast<int>(field.field),
                                    const_cast<pgn_vistel::DDDef*>(dd), label.c_str(), bytes, bits, &at.byte,
                                    &at.bit, nullptr, walk.repeat(), 1, 0, nullptr, nullptr, unit::selected);
        });
        walk.position = read_field(msg, field, walk.position, units, unit::selected, scratch).next;
        require(at == walk.position && line != lines.end() && text == *line);
    }
}

void show_values(QV_N2K_PGN_DB_c& db, const Input& in, const N2KMsg& msg) {
    using pgn_vistel::all_format_rows;
    std::uint8_t field[2 + sizeof msg.data + 16] = {};
    std::memcpy(field, msg.data, sizeof msg.data);
    ConvValue value;
    std::memcpy(&value.value, field, sizeof value.value);
    const auto print = [&](DF df) {
        db.conv_DF(df, &value, field + 2, in.unit);
        guarded(513, [&](wchar_t* b, int) { return db.print_val_unit(b, df, field + 2, in.unit); });
    };
    print(in.number);
    const pgn_vistel::DFDef& format = all_format_rows()[in.number % all_format_rows().size()];
    print(static_cast<DF>(format.df));
    format.parse(&value, reinterpret_cast<const char*>(field + 8), in.unit % unit::count);

    // Types up to CV_WCHAR_PLAIN hold no pointer.
    value.type = in.mode >> 4;
    std::memcpy(&value.value, field, sizeof value.value);
    wchar_t text[200];
    for (std::size_t i = 0; i < std::size(text); ++i) text[i] = field[8 + i];
    text[std::size(text) - 1] = 0;
    if (value.type <= CV_I64 || value.type == CV_TIME_OF_DAY)
        guarded(pgn_vistel::print_limit,
                [&](wchar_t* b, int) { return pgn_vistel::print_conv_value(b, text, value); });
    guarded(pgn_vistel::print_limit,
            [&](wchar_t* b, int) { return pgn_vistel::format_q(b, text, value.value.f32); });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Input in;
    if (size < sizeof in) return 0;
    std::memcpy(&in, bytes, sizeof in);
    bytes += sizeof in;
    size -= sizeof in;

    static QV_N2K_PGN_DB_c db;
    UnitSelection units;
    for (int q = 0; q < quantity::count; ++q) {
        const UnitId u = in.unit < unit::count ? in.unit : (in.unit + q) % unit::count;
        require(units.select(q, u) && db.SelectUnit(q, u) == 0);
    }
    N2KMsg msg{};
    msg.pgn =
        (in.mode & 1) != 0 ? in.number | (in.mode & 6u) << 15 : all_pgns()[in.number % all_pgns().size()].pgn;
    msg.destination = in.unit;
    msg.source = in.mode;
    msg.time_stamp = in.length * 65537u;
    std::memcpy(msg.data, bytes, std::min(size, sizeof msg.data));
    msg.length = (in.mode & 8) != 0 ? in.length : static_cast<std::uint16_t>(std::min(size, sizeof msg.data));
    show_message(units, in, msg);
    look_up(units, in, msg);
    ask_for_fields(db, units, msg);
    show_values(db, in, msg);
    return 0;
}

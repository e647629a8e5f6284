// Bytes as one message of any PGN, with any length in its record, shown line by line; then the same bytes as
// the field of any format and as a caller's format text. See Input for the first bytes.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "pgn_vistel/stream_lines.h"
#include "values/value_printer.h"

namespace {

using namespace pgn_vistel;

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

/// A refused text shows the previous one of its kind.
void forget_texts() {
    ConvValue value;
    QV_N2K_PGN_DB_c::conv_DF(50, &value, "\x02\x01", 0);
    QV_N2K_PGN_DB_c::conv_DF(51, &value, "\x03\x00\x01", 0);
}

std::wstring lines_of(QV_N2K_PGN_DB_c& db, const N2KMsg& msg, unsigned long flags, int size) {
    forget_texts();
    const PgnDef* const pgn = find_pgn_def(msg.pgn);
    std::wstring all = guarded(size, [&](wchar_t* b, int n) { return print_stream_line(b, n, msg, pgn); });
    StreamLines lines(db, pgn, msg, flags);
    int left = 100000;  // every round of a repeating group takes a bit at the least
    for (bool over = false; !over;) {
        require(--left > 0);
        all += guarded(size, [&](wchar_t* b, int n) {
            const int count = lines.next(b, n);
            over = count < 0;
            return count;
        });
        all += L'\n';
    }
    return all;
}

void show_message(QV_N2K_PGN_DB_c& db, const Input& in, const N2KMsg& msg) {
    for (const unsigned long flags : {0ul, 2ul}) lines_of(db, msg, flags, in.number % 300);
    N2KMsg other = msg;
    for (int i = payload_length(msg); i < static_cast<int>(sizeof msg.data); ++i)
        other.data[i] = static_cast<std::uint8_t>(~other.data[i]);
    require(lines_of(db, msg, 0, line_size) == lines_of(db, other, 0, line_size));
    const int field = db.get_field_id(msg.pgn, static_cast<unsigned short>(in.length % 2000), in.unit % 8);
    require(field == -1 || field > 0);
    std::uint8_t keys[4] = {255, 255, 255, 255};
    extract_stream_keys(msg.pgn, msg.data, &keys[0], &keys[1], &keys[2], &keys[3]);
}

void show_values(QV_N2K_PGN_DB_c& db, const Input& in, const N2KMsg& msg) {
    std::uint8_t field[2 + sizeof msg.data + 16] = {};
    std::memcpy(field, msg.data, sizeof msg.data);
    ConvValue value;
    std::memcpy(&value.value, field, sizeof value.value);
    const auto print = [&](DF df) {
        db.conv_DF(df, &value, field + 2, in.unit);
        guarded(513, [&](wchar_t* b, int) { return db.print_val_unit(b, df, field + 2, in.unit); });
    };
    print(in.number);
    print(static_cast<DF>(all_formats()[in.number % all_formats().size()].df));

    // Types up to CV_WCHAR_PLAIN hold no pointer.
    value.type = in.mode >> 4;
    std::memcpy(&value.value, field, sizeof value.value);
    wchar_t format[200];
    for (std::size_t i = 0; i < std::size(format); ++i) format[i] = field[8 + i];
    format[std::size(format) - 1] = 0;
    if (value.type <= CV_I64 || value.type == CV_TIME_OF_DAY)
        guarded(print_limit, [&](wchar_t* b, int) { return print_conv_value(b, format, value); });
    guarded(print_limit, [&](wchar_t* b, int) { return format_q(b, format, value.value.f32); });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Input in;
    if (size < sizeof in) return 0;
    std::memcpy(&in, bytes, sizeof in);
    bytes += sizeof in;
    size -= sizeof in;

    static QV_N2K_PGN_DB_c db;
    for (int q = 0; q < quantity::count; ++q)
        db.SelectUnit(q, in.unit < unit::count ? in.unit : (in.unit + q) % unit::count);
    N2KMsg msg{};
    msg.pgn =
        (in.mode & 1) != 0 ? in.number | (in.mode & 6u) << 15 : all_pgns()[in.number % all_pgns().size()].pgn;
    msg.destination = in.unit;
    std::memcpy(msg.data, bytes, std::min(size, sizeof msg.data));
    msg.length = (in.mode & 8) != 0 ? in.length : static_cast<std::uint16_t>(std::min(size, sizeof msg.data));
    show_message(db, in, msg);
    show_values(db, in, msg);
    return 0;
}

// Decoding without windows: decode_host [-]
//
// Prints two built-in messages, or with - those on standard input, one a line, all but PGN, source,
// destination and priority in hexadecimal: 128267 4 255 3 01 F4 01 00 00 2C 01 FF

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>

#include "made_up_traffic.h"
#include "pgn_vistel/stream_lines.h"

namespace {

using namespace pgn_vistel;

/// The lines that the monitor shows of a message.
void print(QV_N2K_PGN_DB_c& db, const N2KMsg& msg) {
    constexpr unsigned long flags = 0;                // 2: numbers without their hexadecimal form
    const PgnDef* const pgn = find_pgn_def(msg.pgn);  // null: not in the catalogue, shown as bytes
    wchar_t line[line_size];
    print_stream_line(line, line_size, msg, pgn);
    std::printf("%ls\n", line);
    StreamLines lines(db, pgn, msg, flags);
    while (lines.next(line, line_size) >= 0) std::printf("    %ls\n", line);
}

/// Users choose units for a kind of quantity; every field of that kind follows.
void choose_metric(QV_N2K_PGN_DB_c& db) {
    const struct {
        DispDataType quantity;
        UnitId unit;
    } choices[] = {{quantity::depth, unit::m}, {quantity::speed, unit::m_s}};
    for (const auto& [quantity, unit] : choices)
        if (db.SelectUnit(quantity, unit) != 0) std::printf("no such quantity or unit\n");
}

/// What the fields of a group are: how their bytes are encoded and which kind of quantity they carry.
void print_fields(QV_N2K_PGN_DB_c& db, unsigned pgn) {
    for (const FieldDef* row = first_field_row(pgn); row->field != 0; row = next_field_row(row, 1)) {
        const int quantity = db.get_DispDataType(static_cast<int>(row->dd->dd));  // 65: none
        std::printf("%s: format %d, quantity %d", row->name, row->dd->format->df, quantity);
        int units[16];
        const int count = std::min(db.GetAvailableUnit(quantity, units, 16), 16);  // the default comes first
        for (int i = 0; i < count; ++i) {
            wchar_t name[32];
            if (db.print_unit(name, 32, units[i], 0) > 0)  // plain numbers have a unit without a name
                std::printf(i == 0 ? " in %ls" : ", %ls", name);
        }
        std::puts("");
    }
}

/// One value without its message: format and unit say what its bytes mean.
void print_value(QV_N2K_PGN_DB_c& db, const char* what, const void* raw, UnitId unit) {
    const DF format = db.DispDataType_to_DF(quantity::speed);  // 65535: none carries it
    wchar_t text[513];
    // -1: a bad argument, a unit that the format does not serve, or "not available" was sent.
    const bool has_value = db.print_val_unit(text, format, raw, unit) >= 0;
    std::printf("%s: %ls\n", what, has_value ? text : L"no value");
}

std::optional<N2KMsg> parse(const std::string& text) {
    std::istringstream in(text);
    unsigned pgn, source, destination, priority, byte;
    if (!(in >> pgn >> source >> destination >> priority)) return std::nullopt;
    if (pgn > 0x3FFFF || source > 255 || destination > 255 || priority > 7) return std::nullopt;
    N2KMsg msg = made_up::message(pgn, static_cast<std::uint8_t>(source), 0, {});
    msg.destination = static_cast<std::uint8_t>(destination);
    msg.priority = static_cast<std::uint8_t>(priority);
    while (in >> std::hex >> byte) {
        if (byte > 255 || msg.length == N2K_MAX_PAYLOAD) return std::nullopt;
        msg.data[msg.length++] = static_cast<std::uint8_t>(byte);
    }
    return in.eof() ? std::optional(msg) : std::nullopt;
}

int print_input(QV_N2K_PGN_DB_c& db) {
    int status = 0, number = 0;
    for (std::string line; std::getline(std::cin, line);) {
        ++number;
        if (const auto msg = parse(line)) {
            print(db, *msg);
        } else {
            std::fprintf(stderr, "line %d: not PGN SOURCE DESTINATION PRIORITY and bytes\n", number);
            status = 1;
        }
    }
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    std::setlocale(LC_ALL, "C.UTF-8");  // the lines have degree signs and Greek letters
    QV_N2K_PGN_DB_c& db = qv_n2k_pgn_db;
    if (argc > 1 && std::strcmp(argv[1], "-") == 0) return print_input(db);

    const N2KMsg wind = made_up::traffic(1), depth = made_up::traffic(2);
    print(db, wind);
    print(db, depth);
    choose_metric(db);
    print(db, wind);
    print(db, depth);
    print_fields(db, wind.pgn);

    const std::uint8_t speed[] = {0xF4, 1}, not_available[] = {0xFF, 0xFF};
    print_value(db, "selected", speed, unit::selected);
    print_value(db, "in miles", speed, unit::mph);
    print_value(db, "in volts", speed, unit::V);
    print_value(db, "not available", not_available, unit::kt);
}

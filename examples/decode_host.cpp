// Decoding without windows: decode_host [-]
//
// Prints two built-in messages, or with - those on standard input, one a line, all but PGN, source,
// destination and priority in hexadecimal: 128267 4 255 3 01 F4 01 00 00 2C 01 FF

#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <limits>
#include <optional>
#include <span>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "made_up_traffic.h"
#include "pgn_vistel/core/render.h"

namespace {

using namespace pgn_vistel::core;

/// The lines that the monitor shows of a message, in UTF-8. One renderer serves any number of messages; it
/// has buffers of its own and is not small.
void print(TextRenderer& renderer, const N2KMsg& msg) {
    static char area[4 * piece_room];
    const PgnDef* const pgn = find_pgn_def(msg.pgn);  // null: not in the catalogue, shown as bytes
    renderer.start(msg, pgn, msg.time_stamp);
    do {
        const char* const end = renderer.write(area, area + sizeof area);
        std::fwrite(area, 1, static_cast<std::size_t>(end - area), stdout);
    } while (!renderer.is_done());
}

void print(const UnitSelection& units, const N2KMsg& msg) {
    constexpr bool plain_numbers = false;  // true: without their hexadecimal form
    TextRenderer renderer(units, plain_numbers);
    print(renderer, msg);
}

/// Users choose units for a kind of quantity; every field of that kind follows. A selection is a value: keep
/// one for each user or each output.
UnitSelection metric() {
    UnitSelection units;  // the defaults
    const struct {
        DispDataType quantity;
        UnitId unit;
    } choices[] = {{quantity::depth, unit::m}, {quantity::speed, unit::m_s}};
    for (const auto& [quantity, unit] : choices)
        if (!units.select(quantity, unit)) std::printf("no such quantity or unit\n");
    return units;
}

/// The number that a value holds, if it holds one.
std::optional<double> number_of(const Value& value) {
    if (!is_available(value)) return std::nullopt;
    return visit_number(value, std::optional<double>(), [](auto n) { return std::optional<double>(n); });
}

/// The fields of a message as values instead of texts.
void print_values(const UnitSelection& units, TextScratch& scratch, const N2KMsg& msg) {
    MessageWalk walk(find_pgn_def(msg.pgn), msg);
    while (walk.next()) {
        const FieldDef& field = walk.field();
        const FieldReading reading = read_field(msg, field, walk.position, units, unit::selected, scratch);
        walk.position = reading.next;

        std::printf("value of %s: ", field.name);
        const DDstrings* const texts = find_enumeration(field.dd->dd);
        const bool is_code = texts != nullptr && texts->kind != ENUM_FLAGS && is_integer(reading.value.type);
        const char* const meaning =
            is_code ? enumeration_text(*texts, enumeration_value(reading.value)) : nullptr;
        if (meaning != nullptr)
            std::printf("%s\n", meaning);
        else if (const auto number = number_of(reading.value))
            std::printf("%g %s\n", *number, std::string(unit_text(reading.unit)).c_str());
        else
            std::printf("%s\n", reading.value.type == ValueType::text ? "a text" : "none");
    }
    if (walk.has_undecoded_rest()) std::printf("and %d bytes as they are\n", payload_length(msg));
}

/// What the fields of a group are: how their bytes are encoded and which kind of quantity they carry.
void print_fields(std::uint32_t pgn) {
    for (const FieldDef* row = first_field_row(pgn); row->field != 0; row = next_field_row(row, 1)) {
        const DispDataType quantity = quantity_of_dd(static_cast<int>(row->dd->dd));  // 65: none
        std::printf("%s: format %d, quantity %d", row->name, row->dd->df, quantity);
        const char* before = " in ";
        for (const UnitId* u = available_units(quantity); *u < unit::count; ++u) {  // the default comes first
            const std::string name(unit_text(*u));
            if (name.empty()) continue;  // plain numbers have a unit without a name
            std::printf("%s%s", before, name.c_str());
            before = ", ";
        }
        std::puts("");
    }
}

/// The deepest water of some messages, or NaN.
double deepest(std::span<const N2KMsg> messages, const UnitSelection& units) {
    constexpr std::uint32_t water_depth = 128267, depth_field = 2;
    TextScratch scratch;
    double found = std::numeric_limits<double>::quiet_NaN();
    for (const N2KMsg& msg : messages) {
        MessageWalk walk(msg.pgn == water_depth ? find_pgn_def(water_depth) : nullptr, msg);
        while (walk.next()) {
            const FieldReading reading =
                read_field(msg, walk.field(), walk.position, units, unit::selected, scratch);
            walk.position = reading.next;
            if (walk.field().field != depth_field) continue;
            if (const auto number = number_of(reading.value)) found = std::fmax(found, *number);
        }
    }
    return found;
}

/// Threads decode side by side: the tables are constant, the selection is only read, and each thread has a
/// scratch of its own.
void search_in_parallel(const UnitSelection& units) {
    std::vector<N2KMsg> messages;
    for (std::uint32_t i = 0; i < 4000; ++i) messages.push_back(made_up::traffic(i));
    const auto halves = std::array{std::span(messages).first(2000), std::span(messages).last(2000)};
    double found[2];
    {
        const std::jthread one([&] { found[0] = deepest(halves[0], units); });
        const std::jthread other([&] { found[1] = deepest(halves[1], units); });
    }
    std::printf("deepest water: %g %s\n", std::fmax(found[0], found[1]),
                std::string(unit_text(units[quantity::depth])).c_str());
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

int print_input(const UnitSelection& units) {
    int status = 0, number = 0;
    TextRenderer renderer(units, false);
    for (std::string line; std::getline(std::cin, line);) {
        ++number;
        if (const auto msg = parse(line)) {
            print(renderer, *msg);
        } else {
            std::fprintf(stderr, "line %d: not PGN SOURCE DESTINATION PRIORITY and bytes\n", number);
            status = 1;
        }
    }
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    const UnitSelection defaults;
    if (argc > 1 && std::strcmp(argv[1], "-") == 0) return print_input(defaults);

    const N2KMsg wind = made_up::traffic(1), depth = made_up::traffic(2);
    print(defaults, wind);
    print(defaults, depth);
    const UnitSelection in_metres = metric();
    print(in_metres, wind);
    print(in_metres, depth);

    TextScratch scratch;
    print_values(in_metres, scratch, wind);
    print_fields(wind.pgn);
    search_in_parallel(in_metres);
}

// A typed text to every kind of raw number: two bytes choose the format, one the unit, the rest is the text.
// What comes out is read again. Behind a 0 the text stands for what command lines and settings hold: the name
// of a source, a choice of units.
#include "commands/unit_options.h"
#include "contract/value_printer.h"
#include "pgn_vistel/formats.h"
#include "pgn_vistel/pgn_db.h"
#include "sources/source_name.h"
#include "support/fuzz.h"
#include "support/shown.h"

namespace {

using fuzz::require;

void read_options(const std::string& text) {
    if (auto name = vistel::parse_source(text)) {
        require(name->is_live() || !name->target.empty() || text.empty(), "a file has a name");
    } else {
        require(!name.error().text.empty(), "a refusal has a reason");
    }
    pgn_vistel::core::UnitSelection units;
    for (const auto& status : {vistel::select_unit(units, text), vistel::select_units(units, text)})
        require(status || !status.error().text.empty(), "a refusal has a reason");
}

void parse(const pgn_vistel::DFDef& format, const std::string& text, int unit) {
    ConvValue value{};
    require(format.parse(&value, text.c_str(), unit) == &value, "the parser gives what it filled");
    require(format.parse(nullptr, text.c_str(), unit) == nullptr, "nothing to fill");
    if (value.type > CV_I64) return;  // texts lie elsewhere
    std::uint8_t raw[2 + 1785 + 16] = {};
    std::memcpy(raw + 2, &value.value, sizeof value.value);
    static QV_N2K_PGN_DB_c db;
    pgn_vistel::test::printed(
        [&](wchar_t* b, int) {
            return db.print_val_unit(b, static_cast<unsigned short>(format.df), raw + 2, unit);
        },
        513);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    fuzz::Input input(bytes, size);
    const auto number = input.take<std::uint16_t>();
    const auto unit = input.take<std::uint8_t>();
    const std::string text(input.take_text(size));
    const auto formats = pgn_vistel::all_format_rows();
    if (number == 0) {
        read_options(text);
    } else {
        parse(formats[number % formats.size()], text, unit);
    }
    return 0;
}

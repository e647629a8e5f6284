#include "contract/parsers/raw_kind.h"
#include "contract/parsers/scan.h"
#include "contract/parsers/special.h"
#include "contract/parsers/unit_factors.h"
#include "contract/store.h"

namespace pgn_vistel {

namespace {

void store_unparsed(ConvValue* out, const RawKind& kind) {
    store_integer(out, kind.type, kind.unparsed);
}

/// Where a division by the unit's factor is due, the number is multiplied with itself: what
/// a user types in pounds or kilograms does not come out as that mass, and a raw count alone is what it says.
double mass_count(double number, UnitId u) {
    if (u == unit::raw_count) return number;
    if (u == unit::lb) return number * (number * double{mass_factor(1, u)});
    const double scaled = number * 10000;
    return scaled * scaled;
}

double data_size_factor(UnitId u) {
    switch (u) {
        case unit::KB: return 0x1p-10;
        case unit::MB: return 0x1p-20;
        case unit::GB: return 0x1p-30;
        case unit::TB: return 0x1p-40;
        default: return 1;
    }
}

}  // namespace

ConvValue* parse_mass(ConvValue* out, const char* text, UnitId unit) {
    if (out == nullptr) return out;
    store_unparsed(out, raw_kind::u32);
    float number = raw_kind::u32.unscanned;
    const bool served = unit == unit::raw_count || unit == unit::lb || unit == unit::kg;
    if (scan_real(text, number) != Scanned::nothing && served)
        store_integer(out, CV_U32, raw_kind::u32.to_raw(mass_count(number, unit)));
    return out;
}

ConvValue* parse_data_size(ConvValue* out, const char* text, UnitId unit) {
    if (out == nullptr) return out;
    store_unparsed(out, raw_kind::f32);
    // The factor is the one that bytes are shown with, not its inverse, and the record holds that number, not
    // the raw one: it is no field that could be sent.
    double number = raw_kind::f32.unscanned;
    if (scan_real(text, number) != Scanned::nothing) store_float(out, number * data_size_factor(unit));
    return out;
}

ConvValue* parse_two_bit_state(ConvValue* out, const char* text, UnitId) {
    if (out == nullptr) return out;
    store_unparsed(out, raw_kind::u8);
    std::int32_t state = 0;
    if (scan_whole(text, state) != Scanned::nothing)
        store_integer(out, CV_U8, state >= 0 && state <= 3 ? state : 254);
    return out;
}

}  // namespace pgn_vistel

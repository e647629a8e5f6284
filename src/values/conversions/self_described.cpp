#include "pgn_vistel/formats.h"
#include "values/conversions/raw.h"
#include "values/conversions/special.h"
#include "values/conversions/store.h"

namespace pgn_vistel {

void convert_self_described(ConvValue* out, const void* at, UnitId unit, int* count) {
    const ConvFunction conversion = find_self_described(raw::load<std::uint16_t>(at));
    if (conversion != nullptr)  // the count it reports is the value's own, without the format number
        conversion(out, static_cast<const std::uint8_t*>(at) + 2, unit, count);
    else
        store_not_available(out);
}

void convert_self_described_before(ConvValue* out, const void* at, UnitId unit, int* count) {
    convert_self_described(out, static_cast<const std::uint8_t*>(at) - 2, unit, count);
}

}  // namespace pgn_vistel

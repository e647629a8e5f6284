#include "values/conversions/raw.h"
#include "values/conversions/special.h"
#include "values/conversions/store.h"

namespace pgn_vistel {

namespace {

void store_masked_byte(ConvValue* out, const void* at, int bits) {
    store_integer(out, CV_U8, raw::load<std::uint8_t>(at) & ((1 << bits) - 1));
}

}  // namespace

void convert_bit_field(ConvValue* out, const void* at, UnitId, int* count) {
    // The count says how many bytes to take and is not written back.
    const int bytes = count != nullptr && *count >= 1 && *count <= 8 ? *count : 8;
    std::uint64_t bits = 0;
    std::memcpy(&bits, at, static_cast<std::size_t>(bytes));
    store_integer(out, CV_U64, bits);
}

void convert_ais_spare(ConvValue* out, const void* at, UnitId, int*) {
    store_integer(out, CV_U64, raw::load<std::uint64_t>(at));
}

void convert_two_bit_state(ConvValue* out, const void* at, UnitId, int* count) {
    const auto state = raw::load<std::uint8_t>(at);
    store_count(count, 1);
    store_integer(out, CV_U8, state < 4 ? state : 255);
}

void convert_low_4_bits(ConvValue* out, const void* at, UnitId, int*) {
    store_masked_byte(out, at, 4);
}
void convert_low_2_bits(ConvValue* out, const void* at, UnitId, int*) {
    store_masked_byte(out, at, 2);
}
void convert_low_6_bits(ConvValue* out, const void* at, UnitId, int*) {
    store_masked_byte(out, at, 6);
}

void convert_package_type(ConvValue* out, const void* at, UnitId, int*) {
    store_integer(out, CV_U16, raw::load<std::uint16_t>(at));
}

void convert_can_frame_id(ConvValue* out, const void* at, UnitId, int*) {
    store_integer(out, CV_U32, raw::load<std::uint32_t>(at) & 0x1FFFFFFF);
}

void convert_can_frame_data(ConvValue* out, const void* at, UnitId, int*) {
    store_integer(out, CV_U64, raw::load<std::uint64_t>(at));
}

}  // namespace pgn_vistel

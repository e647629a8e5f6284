#pragma once

#include "pgn_vistel/conv_value.h"
#include "pgn_vistel/units.h"

namespace pgn_vistel {

// Conversions of the formats that do not follow the numeric scheme; their shape is that of `ConvFunction`.

using ConversionOf = void(ConvValue* out, const void* raw, UnitId unit, int* count);

// numbers with a rule of their own (special_numbers.cpp)
ConversionOf convert_undefined, convert_never_available, convert_float_angle, convert_float_plain,
    convert_double_distance, convert_double_plain, convert_latitude_32, convert_longitude_32,
    convert_latitude_64, convert_longitude_64, convert_position_24, convert_percent_absolute, convert_peukert,
    convert_salinity, convert_device_address, convert_ac_power, convert_power_factor, convert_ac_energy,
    convert_offset_angle, convert_date, convert_run_time, convert_period_minutes, convert_format_number;

// bits and codes (bit_fields.cpp)
ConversionOf convert_bit_field, convert_ais_spare, convert_two_bit_state, convert_low_4_bits,
    convert_low_2_bits, convert_low_6_bits, convert_package_type, convert_can_frame_id,
    convert_can_frame_data;

// texts (texts.cpp). Each writes into a static area of its own.
ConversionOf convert_text_short, convert_text_medium, convert_text_fixed, convert_hex_dump;

// values that name their own format (self_described.cpp)
ConversionOf convert_self_described, convert_self_described_before;

}  // namespace pgn_vistel

#include "core/convert.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>

#include "core/clock_text.h"
#include "core/numbers.h"

namespace pgn_vistel::core {

namespace {

std::int64_t low_bits(const RawField& raw, int count) {
    return static_cast<std::int64_t>(raw.bits & ((std::uint64_t{1} << count) - 1));
}

float single_in(const RawField& raw) {
    return std::bit_cast<float>(static_cast<std::uint32_t>(raw.bits));
}

double real_in(const RawField& raw) {
    return std::bit_cast<double>(raw.bits);
}

// ---- unit rules beyond factors ----

/// Beaufort force of a speed in knots; a bound belongs to the higher force, and so does a speed that is no
/// number at all.
int beaufort_force(float knots) {
    constexpr float bounds[] = {1, 3, 6, 10, 16, 21, 27, 33, 40, 47, 55, 63};
    int force = 0;
    while (force < 12 && !(knots < bounds[force])) ++force;
    return force;
}

void store_temperature(float kelvin, UnitId u, Value& out) {
    const double celsius = static_cast<double>(kelvin) - static_cast<double>(273.15f);
    switch (u) {
        case unit::celsius: store_single(out, celsius); break;
        case unit::fahrenheit: store_single(out, celsius * static_cast<double>(1.8f) + 32); break;
        case unit::kelvin:
        case unit::raw_count: store_single(out, kelvin); break;
        default: store_none(out); break;
    }
}

/// Every unit without a factor asks for a clock. Negative durations wrap around, as an unsigned count does.
void store_clock_time(float seconds, UnitId u, TextScratch& scratch, Value& out) {
    constexpr float limit = 9.0e18f;
    const auto whole = static_cast<std::int64_t>(std::clamp(seconds, -limit, limit));
    const int count = put_time_of_day(scratch.made.data(), static_cast<std::uint32_t>(whole), u);
    store_text(out, scratch.made.data(), count, Encoding::latin1);
}

void store_date(std::uint16_t days, UnitId u, TextScratch& scratch, Value& out) {
    const int count = put_date(scratch.made.data(), days, u);
    if (count > 0)
        store_text(out, scratch.made.data(), count, Encoding::latin1);
    else
        store_none(out);
}

// ---- readings ----

/// Number, reserved codes, raw forms, resolution, unit.
void convert_scaled(const FormatPlan& format, std::int64_t number, UnitId u, TextScratch& scratch,
                    Value& out) {
    const bool is_signed = format.is_signed != 0;
    if (u == unit::raw_bits)
        store_integer(out, integer_type(format.width, is_signed), number);
    else if (is_refused(number, format.width, is_signed))
        store_none(out);
    else if (u == unit::raw_count)
        store_single(out, format.width == 64 && !is_signed
                              ? static_cast<double>(static_cast<std::uint64_t>(number))
                              : static_cast<double>(number));
    else
        apply_unit_rule(format.rule,
                        format.width == 64 && !is_signed
                            ? static_cast<float>(static_cast<double>(static_cast<std::uint64_t>(number)) *
                                                 static_cast<double>(format.scale))
                            : scaled(number, format.scale),
                        u, scratch, out);
}

/// A count of 100 microseconds. Clocks show the parts of a second as far as they are not 0.
void convert_time_of_day(const FormatPlan& format, std::uint32_t count, UnitId u, TextScratch& scratch,
                         Value& out) {
    constexpr std::uint32_t second = 10'000;
    if ((u != unit::clock_24 && u != unit::clock_12) || is_refused(count, format.width, false))
        return convert_scaled(format, count, u, scratch, out);
    char* const text = scratch.made.data();
    char* end = text + put_time_of_day(text, count / second, u);
    if (const std::uint32_t part = count % second; part > 0) {
        constexpr std::ptrdiff_t half_of_day = 3;  // " PM"
        char* const at = u == unit::clock_12 ? end - half_of_day : end;
        std::array<char, 5> digits{'.'};
        write_pair(write_pair(&digits[1], part / 100), part % 100);
        std::ptrdiff_t size = digits.size();
        while (digits[static_cast<std::size_t>(size) - 1] == '0') --size;
        std::copy_backward(at, end, end + size);
        std::copy_n(digits.data(), size, at);
        end += size;
    }
    store_text(out, text, static_cast<int>(end - text), Encoding::latin1);
}

/// Identifiers and counters keep their integer type, as a raw count too.
void convert_integer(ValueType type, std::int64_t number, bool refused, UnitId u, Value& out) {
    const bool as_sent = u == unit::raw_bits;
    const bool served = as_sent || u == unit::raw_count || u == unit::plain_64 || u == unit::plain_65;
    if (served && (as_sent || !refused))
        store_integer(out, type, number);
    else
        store_none(out);
}

constexpr double degrees_per_count_64 = 1e-16;

/// Positions keep double precision: single precision would be off by a metre.
void convert_position(const FormatPlan& format, const RawField& raw, UnitId u, Value& out) {
    const int width = format.width;
    const bool is_latitude = format.reading == Reading::latitude_32 || format.reading == Reading::latitude_64;
    const std::int64_t number = widened(raw.bits, width, true);
    if (u == unit::raw_bits) {
        store_integer(out, integer_type(width, true), number);
    } else if (is_refused(number, width, true)) {
        store_none(out);
    } else if (u == unit::raw_count) {
        store_real(out, static_cast<double>(number));
    } else if (u == (is_latitude ? unit::deg_lat : unit::deg_long)) {
        store_real(out,
                   static_cast<double>(number) * (width == 32 ? degrees_per_count_32 : degrees_per_count_64));
    } else {
        store_none(out);
        out.number.bits = 0x7FFFFFFFFFFFFFFF;  // here the NaN is a double
    }
}

void convert_float_angle(const RawField& raw, UnitId u, TextScratch& scratch, Value& out) {
    const float radians = single_in(raw);
    if (u == unit::raw_bits)
        store_single(out, static_cast<double>(radians));  // as an angle's raw count, but a NaN goes through
    else if (std::isnan(radians))
        store_none(out);
    else
        apply_unit_rule(UnitRule::angle_rad, radians, u, scratch, out);
}

void convert_float_plain(const RawField& raw, UnitId u, Value& out) {
    const float value = single_in(raw);
    if (u != unit::raw_bits && std::isnan(value))
        store_none(out);
    else
        store_single(out, static_cast<double>(value));
}

void convert_double_distance(const RawField& raw, UnitId u, TextScratch& scratch, Value& out) {
    const double metres = real_in(raw);
    if (u == unit::raw_bits) {
        store_real(out, metres);
    } else if (std::isnan(metres)) {
        store_none(out);
    } else if (u == unit::raw_count) {
        store_single(out, metres);
    } else {
        const double single = static_cast<double>(static_cast<float>(metres));
        apply_unit_rule(UnitRule::length_cm, static_cast<float>(single * 100), u, scratch, out);
    }
}

void convert_served_code(std::int64_t number, int width, bool served, UnitId u, Value& out) {
    if (u == unit::raw_bits || (served && !is_refused(number, width, false)))
        store_integer(out, integer_type(width, false), number);
    else
        store_none(out);
}

void convert_ac_power(const RawField& raw, UnitId u, TextScratch& scratch, Value& out) {
    // Zero power is sent as 2 GW. The raw form is signed, and the raw count has the offset taken off.
    const auto number = static_cast<std::uint32_t>(raw.bits);
    if (u == unit::raw_bits)
        store_integer(out, ValueType::i32, static_cast<std::int32_t>(number));
    else if (is_refused(number, 32, false))
        store_none(out);
    else
        apply_unit_rule(UnitRule::power_w,
                        static_cast<float>(static_cast<std::int32_t>(number - 2000000000u)), u, scratch, out);
}

/// A number with an offset, in a unit that its factor stands for.
void convert_offset(const RawField& raw, std::int64_t offset, float factor, UnitId u, Value& out) {
    const std::int64_t number = low_bits(raw, 16);
    if (u == unit::raw_bits)
        store_integer(out, ValueType::u16, number);
    else if (factor == 0 || is_refused(number, 16, false))
        store_none(out);
    else
        store_single(out, static_cast<double>(scaled(number - offset, factor)));
}

float offset_angle_factor(UnitId u) {
    switch (u) {
        case unit::deg: return 0.0078125f;
        case unit::rad: return 0.00013635385f;
        case unit::raw_count: return 1;
        default: return 0;
    }
}

void convert_run_time(const RawField& raw, UnitId u, TextScratch& scratch, Value& out) {
    const auto seconds = static_cast<std::uint32_t>(raw.bits);
    if (u != unit::raw_bits && is_refused(seconds, 32, false))
        store_none(out);
    else if (u == unit::raw_bits || u == unit::raw_count || u == unit::seconds)
        store_integer(out, ValueType::seconds, seconds);
    else
        apply_unit_rule(UnitRule::duration_s, static_cast<float>(seconds), u, scratch, out);
}

int convert_self_described(DF df, std::uint64_t bits, UnitId u, TextScratch& scratch, Value& out) {
    const FormatPlan* const format = find_format_plan(df);
    if (format != nullptr && format->described != 0) return convert(*format, {bits, 0, 0}, u, scratch, out);
    store_none(out);
    return -1;
}

// ---- numbers of the corrected definitions ----

void convert_whole(const FormatPlan& format, const RawField& raw, Value& out) {
    const std::int64_t number = widened(raw.bits, format.width, format.is_signed != 0);
    if (is_none(format, measures[format.measure], number))
        store_none(out);
    else
        store_integer(out, integer_type(format.width, format.is_signed != 0), number);
}

void convert_measured(const FormatPlan& format, const RawField& raw, UnitId u, TextScratch& scratch,
                      Value& out) {
    const Measure& measure = measures[format.measure];
    const bool as_counted = u == unit::raw_count || u == unit::raw_bits;
    const float served = as_counted ? 1 : unit_factor(format.rule, u);
    const float factor = served != 0 ? served : 1;
    double number;
    bool fine;
    if (format.reading == Reading::measured_float) {
        fine = format.width == 64;
        number = (fine ? real_in(raw) : static_cast<double>(single_in(raw))) * measure.step *
                 static_cast<double>(factor);
        if (std::isnan(number)) return store_none(out);
    } else {
        const std::int64_t count = widened(raw.bits, format.width, format.is_signed != 0);
        if (is_none(format, measure, count)) return store_none(out);
        fine = is_fine(format, count);
        number = measured(measure, count, factor, fine);
    }
    if (served == 0)
        apply_unit_rule(format.rule, static_cast<float>(number), u, scratch, out);
    else if (fine || !std::isfinite(static_cast<float>(number)))
        store_real(out, number);
    else
        store_single(out, number);
}

// ---- texts ----

/// Characters up to a fill character, less the blanks before it. A text of the Automatic Identification
/// System ends at its first "@", too.
int filled_length(const std::uint8_t* text, int length, int step, bool ends_at_sign) {
    const auto unit_at = [=](int i) { return text[step * i] | (step > 1 ? text[step * i + 1] << 8 : 0); };
    const int fill = step > 1 ? 0xFFFF : 0xFF;
    int count = 0;
    while (count < length && unit_at(count) != 0 && unit_at(count) != fill &&
           !(ends_at_sign && unit_at(count) == '@'))
        ++count;
    while (count > 0 && unit_at(count - 1) == ' ') --count;
    return count;
}

/// Length of the field, encoding and characters, all of them in the payload.
int convert_sent_text(const FormatPlan& format, const std::uint8_t* field, int available, Value& out) {
    const int header = format.width;
    const bool is_wide_length = header > 2;
    const int length = available < header ? 0 : field[0] | (is_wide_length ? field[1] << 8 : 0);
    store_none(out);
    // A length that does not even count its header: nothing but the header is there.
    if (length < header) return std::min(header, available);
    const auto encoding = static_cast<SentEncoding>(field[header - 1]);
    if (encoding > SentEncoding::ascii) return length;
    const int step = encoding == SentEncoding::ascii ? 1 : 2;
    const int characters = (std::min(length, available) - header) / step;
    store_text(out, field + header, filled_length(field + header, characters, step, format.is_signed != 0),
               step == 1 ? Encoding::code_page : Encoding::utf16);
    return length;
}

/// Length, characters and a zero; in a field of a fixed size the length may say less.
int convert_counted_text(const std::uint8_t* field, int available, int bytes, Value& out) {
    const int length = available > 0 ? field[0] : 0;
    const int room =
        std::max(std::min(bytes > 0 ? std::min(bytes, available) : available, 1 + length) - 1, 0);
    store_text(out, field + 1, filled_length(field + 1, room, 1, false), Encoding::code_page);
    return std::min(length + 2, std::max(available, 1));
}

void convert_bytes(const std::uint8_t* field, int length, Value& out) {
    store_text(out, field, std::max(3 * length - 1, 0), Encoding::digits);
}

/// Two decimal digits a byte; all ones are no number.
void convert_decimal(const std::uint8_t* field, int length, TextScratch& scratch, Value& out) {
    store_none(out);
    char* at = scratch.made.data();
    for (int i = 0; i < std::min<int>(length, static_cast<int>(scratch.made.size()) / 2); ++i) {
        if (field[i] > 99) return;
        at = write_pair(at, field[i]);
    }
    store_text(out, scratch.made.data(), static_cast<int>(at - scratch.made.data()), Encoding::latin1);
}

/// Keeps a text up to its end or its first zero. What `available` does not cover is zero.
template <std::size_t size>
void keep(TextScratch::Kept<size>& kept, SentEncoding encoding, const std::uint8_t* text, int available,
          int most) {
    const int step = encoding == SentEncoding::ascii ? 1 : 2;
    const int bytes = std::clamp(available, 0, most * step);
    std::memcpy(kept.bytes.data(), text, static_cast<std::size_t>(bytes));
    kept.bytes[static_cast<std::size_t>(bytes)] = 0;  // the other half of a character that is cut
    kept.encoding = encoding == SentEncoding::ascii ? Encoding::code_page : Encoding::utf16;
    const auto is_zero = [&](int i) {
        const std::uint8_t* const at = kept.bytes.data() + step * i;
        return at[0] == 0 && (step == 1 || at[1] == 0);
    };
    const int whole = (bytes + step - 1) / step;
    kept.count = 0;
    while (kept.count < whole && !is_zero(kept.count)) ++kept.count;
}

template <std::size_t size>
void store_kept(const TextScratch::Kept<size>& kept, Value& out) {
    store_text(out, kept.bytes.data(), kept.count, kept.encoding);
}

int convert_short_text(const std::uint8_t* field, int available, TextScratch& scratch, Value& out) {
    const auto [header, longest, most] = sent_short_text;
    const int length = available > 0 ? field[0] : 0;
    const auto encoding = static_cast<SentEncoding>(available > 1 ? field[1] : 0);
    if (length >= header && length <= longest && encoding <= SentEncoding::ascii) {
        const int room = encoding == SentEncoding::ascii ? length - header : (length - header) / 2;
        keep(scratch.short_text, encoding, field + header, std::min(available, length) - header,
             std::min(room, most));
    }
    store_kept(scratch.short_text, out);
    return length;
}

int convert_medium_text(const std::uint8_t* field, int available, TextScratch& scratch, Value& out) {
    const auto [header, longest, most] = sent_medium_text;
    const int length = (available > 0 ? field[0] : 0) | (available > 1 ? field[1] << 8 : 0);
    const auto encoding = static_cast<SentEncoding>(available > 2 ? field[2] : 0);
    if (length >= header && length <= longest && encoding <= SentEncoding::ascii) {
        // Of UTF-16 the last character is left out.
        const int room =
            encoding == SentEncoding::ascii ? length - header : std::max((length - 2) / 2 - 1, 0);
        keep(scratch.medium_text, encoding, field + header, available - header, std::min(room, most));
    }
    store_kept(scratch.medium_text, out);
    return length;
}

void convert_fixed_text(const std::uint8_t* field, int length, Value& out) {
    // Texts are padded with zeros or with 0xFF.
    int count = 0;
    while (count < length && field[count] != 0 && field[count] != 0xFF) ++count;
    store_text(out, field, count, Encoding::latin1);
}

void convert_hex_dump(const std::uint8_t* field, int length, TextScratch& scratch, Value& out) {
    constexpr int most = 84;  // bytes: 252 characters
    char* at = scratch.made.data();
    for (int i = 0; i < std::min(length, most); ++i) {
        at = write_hex_byte(at, field[i]);
        *at++ = ' ';
    }
    const int count = static_cast<int>(at - scratch.made.data());
    store_text(out, scratch.made.data(), std::max(count - 1, 0), Encoding::latin1);  // less the last blank
}

}  // namespace

void apply_unit_rule(UnitRule rule, float value, UnitId u, TextScratch& scratch, Value& out) {
    const bool is_speed = unit_factor(rule, unit::kt) != 0 && unit_factor(rule, unit::bft) == 0;
    if (is_speed && u == unit::bft) {
        const float knots =
            static_cast<float>(static_cast<double>(value) * static_cast<double>(unit_factor(rule, unit::kt)));
        store_single(out, beaufort_force(knots));
        return;
    }
    if (rule == UnitRule::temperature_k) {
        store_temperature(value, u, out);
    } else if (u == unit::raw_count) {
        store_single(out, value);
    } else if (const float factor = unit_factor(rule, u); factor != 0) {
        store_single(out, static_cast<double>(value) * static_cast<double>(factor));
    } else if (rule == UnitRule::duration_s) {
        store_clock_time(value, u, scratch, out);
    } else {
        store_none(out);
    }
}

int convert(const FormatPlan& format, const RawField& raw, UnitId u, TextScratch& scratch, Value& out) {
    const auto integer = [&](int width) {
        const std::int64_t number = widened(raw.bits, width, format.is_signed != 0);
        convert_integer(integer_type(width, format.is_signed != 0), number,
                        is_refused(number, width, format.is_signed != 0), u, out);
        return width / 8;
    };
    switch (format.reading) {
        case Reading::scaled:
            convert_scaled(format, widened(raw.bits, format.width, format.is_signed != 0), u, scratch, out);
            return format.width / 8;
        case Reading::time_of_day:
            convert_time_of_day(format, static_cast<std::uint32_t>(low_bits(raw, 32)), u, scratch, out);
            return format.width / 8;
        case Reading::integer: return integer(format.width);
        case Reading::undefined:
            if (u == unit::raw_bits)
                store_integer(out, ValueType::u32, low_bits(raw, 32));
            else
                store_none(out);
            return 4;
        case Reading::float_angle: convert_float_angle(raw, u, scratch, out); return 4;
        case Reading::float_plain: convert_float_plain(raw, u, out); return 4;
        case Reading::double_distance: convert_double_distance(raw, u, scratch, out); return 8;
        case Reading::latitude_32:
        case Reading::longitude_32:
        case Reading::latitude_64:
        case Reading::longitude_64: convert_position(format, raw, u, out); return format.width / 8;
        case Reading::percent_absolute: convert_served_code(low_bits(raw, 8), 8, true, u, out); return 1;
        case Reading::peukert:
            // Exponents start at 1.0 and go up in steps of 0.002.
            if (u == unit::raw_bits || is_refused(low_bits(raw, 8), 8, false))
                convert_served_code(low_bits(raw, 8), 8, true, u, out);
            else
                store_single(out, u == unit::raw_count
                                      ? static_cast<double>(low_bits(raw, 8))
                                      : static_cast<double>(scaled(low_bits(raw, 8) + 500, 0.002f)));
            return 1;
        case Reading::salinity:
            convert_served_code(low_bits(raw, 16), 16,
                                u == unit::plain_66 || u == unit::raw_count || u == unit::ppm, u, out);
            return 2;
        case Reading::format_number: convert_served_code(low_bits(raw, 16), 16, true, u, out); return 2;
        case Reading::device_address:
            // Eight bytes of which 48 bits carry the value.
            convert_integer(ValueType::u64, static_cast<std::int64_t>(raw.bits), raw.bits >= 0xFFFFFFFFFFFD,
                            u, out);
            return 8;
        case Reading::ac_power: convert_ac_power(raw, u, scratch, out); return 4;
        case Reading::power_factor:
            convert_offset(raw, 16384, u == unit::raw_count ? 1.0f : 0x1p-14f, u, out);
            return 2;
        case Reading::offset_angle: convert_offset(raw, 25600, offset_angle_factor(u), u, out); return 2;
        case Reading::date:
            if (u == unit::raw_bits || is_refused(low_bits(raw, 16), 16, false))
                convert_served_code(low_bits(raw, 16), 16, true, u, out);
            else if (u == unit::raw_count || u == unit::days)
                store_integer(out, ValueType::u16, low_bits(raw, 16));
            else
                store_date(static_cast<std::uint16_t>(raw.bits), u, scratch, out);
            return 2;
        case Reading::run_time: convert_run_time(raw, u, scratch, out); return 4;
        case Reading::period_minutes: {
            // The code for "out of range" is handed on as the clock type's own, whatever the unit.
            static constexpr FormatPlan minutes{0,  Reading::scaled, 16, 0, UnitRule::duration_s,
                                                60, 0xFFFD,          0,  0};
            if (low_bits(raw, 16) == 0xFFFE)
                store_integer(out, ValueType::seconds, 0xFFFFFFFE);
            else
                convert_scaled(minutes, low_bits(raw, 16), u, scratch, out);
            return 2;
        }
        case Reading::bit_field: {
            const int bytes = raw.bytes >= 1 && raw.bytes <= 8 ? raw.bytes : 8;
            store_integer(out, ValueType::u64, widened(raw.bits, 8 * bytes, false));
            return -1;
        }
        case Reading::ais_spare:
        case Reading::can_frame_data:
            store_integer(out, ValueType::u64, static_cast<std::int64_t>(raw.bits));
            return -1;
        case Reading::two_bit_state:
            store_integer(out, ValueType::u8, low_bits(raw, 8) < 4 ? low_bits(raw, 8) : 255);
            return 1;
        case Reading::low_4_bits: store_integer(out, ValueType::u8, low_bits(raw, 4)); return -1;
        case Reading::low_2_bits: store_integer(out, ValueType::u8, low_bits(raw, 2)); return -1;
        case Reading::low_6_bits: store_integer(out, ValueType::u8, low_bits(raw, 6)); return -1;
        case Reading::package_type: store_integer(out, ValueType::u16, low_bits(raw, 16)); return -1;
        case Reading::can_frame_id: store_integer(out, ValueType::u32, low_bits(raw, 29)); return -1;
        case Reading::self_described:
            return convert_self_described(static_cast<DF>(raw.bits), raw.bits >> 16, u, scratch, out);
        case Reading::self_described_before:
            return convert_self_described(raw.before, raw.bits, u, scratch, out);
        case Reading::whole: convert_whole(format, raw, out); return format.width / 8;
        case Reading::measured:
        case Reading::measured_float: convert_measured(format, raw, u, scratch, out); return format.width / 8;
        case Reading::never_available:
        case Reading::double_plain:  // of the text interface alone
        case Reading::text_sent:
        case Reading::text_counted:
        case Reading::text_padded:
        case Reading::bytes:
        case Reading::decimal:
        case Reading::text_short:
        case Reading::text_medium:
        case Reading::text_fixed:
        case Reading::hex_dump: break;  // of `convert_text`
    }
    store_none(out);
    return -1;
}

int convert_text(const FormatPlan& format, const std::uint8_t* field, int available, int bytes,
                 TextScratch& scratch, Value& out) {
    switch (format.reading) {
        case Reading::text_short: return convert_short_text(field, available, scratch, out);
        case Reading::text_medium: return convert_medium_text(field, available, scratch, out);
        case Reading::text_fixed:
            convert_fixed_text(field, std::min({bytes, available, N2K_MAX_PAYLOAD}), out);
            break;
        case Reading::text_sent: return convert_sent_text(format, field, available, out);
        case Reading::text_counted: return convert_counted_text(field, available, bytes, out);
        case Reading::text_padded: {
            const int length = std::min(bytes, available);
            store_text(out, field, filled_length(field, length, 1, true), Encoding::code_page);
            break;
        }
        case Reading::bytes: {
            const int length = bytes > 0 ? std::min(bytes, available) : available;
            convert_bytes(field, length, out);
            return length;
        }
        case Reading::decimal: convert_decimal(field, std::min(bytes, available), scratch, out); break;
        default: convert_hex_dump(field, std::min(bytes, available), scratch, out); break;
    }
    return -1;
}

}  // namespace pgn_vistel::core

#include "pgn_vistel/pgn_db.h"

#include <algorithm>

#include "decode/exported_entry.h"
#include "decode/field_text.h"
#include "values/text_copy.h"
#include "values/units.h"

using namespace pgn_vistel;

// Hosts hold these objects by value.
static_assert(sizeof(QV_N2K_PGN_DB_c) == sizeof(void*));

namespace {

constexpr int tree_text_size = 1024;

void* untyped(const void* p) {
    return const_cast<void*>(p);
}

bool is_in_payload(int byte, int bit) {
    return byte >= 0 && byte < static_cast<int>(sizeof(N2KMsg::data)) && bit >= 0 && bit <= 7;
}

}  // namespace

QV_N2K_PGN_DB_c::QV_N2K_PGN_DB_c() : sel_unit_(new_selection()) {
    build_format_enumeration();
}

QV_N2K_PGN_DB_c& QV_N2K_PGN_DB_c::operator=(const QV_N2K_PGN_DB_c&) = default;

// ---- catalogue ----

int QV_N2K_PGN_DB_c::get_DispDataType(int dd) {
    return quantity_of_dd(dd);
}

int QV_N2K_PGN_DB_c::get_DispDataTypeX(int dd, const unsigned char* raw) {
    return quantity_of_dd(dd, raw);
}

void QV_N2K_PGN_DB_c::get_bytes_bits(unsigned long pgn, void* dd, int* bytes, int* bits) {
    if (bytes != nullptr && bits != nullptr)
        complete_field_size(static_cast<std::uint32_t>(pgn), static_cast<const DDDef*>(dd), bytes, bits);
}

int QV_N2K_PGN_DB_c::get_field_id(unsigned long pgn, unsigned short byte_position,
                                  unsigned char bit_position) {
    return field_at(static_cast<std::uint32_t>(pgn), byte_position, bit_position);
}

void* QV_N2K_PGN_DB_c::find_DDstrings(unsigned int dd) {
    return untyped(find_enumeration(dd));
}

int QV_N2K_PGN_DB_c::print_pgn_name(wchar_t* buf, int size, unsigned long pgn) {
    const PgnDef* const row = find_pgn_def(static_cast<std::uint32_t>(pgn));
    return buf == nullptr || size <= 0 || row == nullptr ? -1 : copy_wide(buf, pgn_def_name(row), size);
}

int QV_N2K_PGN_DB_c::print_pgn_name(char* buf, int size, unsigned long pgn) {
    const PgnDef* const row = find_pgn_def(static_cast<std::uint32_t>(pgn));
    if (buf == nullptr || size <= 0 || row == nullptr) return -1;
    const wchar_t* const name = pgn_def_name(row);
    int count = 0;
    for (; count < size - 1 && name[count] != 0; ++count) buf[count] = static_cast<char>(name[count] & 0xFF);
    buf[count] = 0;
    return count;
}

// ---- fields as text ----

int QV_N2K_PGN_DB_c::print_field_name(wchar_t* buf, int size, int dd, const wchar_t* label, int repeat_index,
                                      unsigned long, int) {
    WideWriter out(buf, size);
    put_field_name(out, dd, label, repeat_index);
    return out.finish();
}

int QV_N2K_PGN_DB_c::print_field_data(wchar_t* buf, int size, int dd, int disp_data_type, void* value,
                                      int unit, int print_unit_flag, unsigned long flags, unsigned long pgn,
                                      int field) {
    const bool is_quantity = disp_data_type >= 0 && disp_data_type < quantity::count;
    if (unit < 0 || unit >= unit::count)
        unit = is_quantity ? selected_unit(sel_unit_, disp_data_type) : UnitId{unit::raw_count};
    WideWriter out(buf, size);
    const FieldContext context{
        dd, disp_data_type, unit, print_unit_flag != 0, flags, static_cast<std::uint32_t>(pgn), field};
    put_field_data(out, context, static_cast<const ConvValue*>(value));
    return out.finish();
}

int QV_N2K_PGN_DB_c::print_field_data_unknown(wchar_t* buf, int size, const unsigned char* data, int length,
                                              int with_label, int* label_length) {
    WideWriter out(buf, size);
    const int label = put_undecoded(out, data, length, with_label != 0);
    if (label_length != nullptr) *label_length = label;
    return out.finish();
}

int QV_N2K_PGN_DB_c::get_field_str(wchar_t* buf, int size, N2KMsg* msg, int field, void* dd,
                                   const wchar_t* label, int bytes, int bits, int* byte_position,
                                   int* bit_position, unsigned char* source_byte, int repeat_index,
                                   int print_unit_flag, unsigned long flags, int* label_length, void* value,
                                   int unit) {
    WideWriter out(buf, size);
    if (label_length != nullptr) *label_length = 0;
    if (msg == nullptr) return out.finish();
    const auto* const entry = static_cast<const DDDef*>(dd);
    const PayloadPosition at{byte_position != nullptr ? *byte_position : 0,
                             bit_position != nullptr ? *bit_position : 0};
    PayloadPosition next;
    if (is_decodable(*msg, field, entry) && is_in_payload(at.byte, at.bit)) {
        const int number = static_cast<int>(entry->dd);
        put_field_name(out, number, label, repeat_index);
        if (label_length != nullptr) *label_length = out.count();
        constexpr int pressure_source = 289;
        if (number == pressure_source && msg->pgn == 130314 && source_byte != nullptr)
            *source_byte = msg->data[2];

        next = put_field(out, *this, *msg, {field, entry, bytes, bits, print_unit_flag != 0, flags, unit}, at,
                         static_cast<ConvValue*>(value));
    } else {
        const int length = payload_length(*msg);
        const int label_part = put_undecoded(out, msg->data, length, true);
        if (label_length != nullptr) *label_length = label_part;
        next.byte = length;
    }
    if (byte_position != nullptr) *byte_position = next.byte;
    if (bit_position != nullptr) *bit_position = next.bit;
    return out.finish();
}

int QV_N2K_PGN_DB_c::get_field_str(wchar_t* label_out, wchar_t* value_out, N2KMsg* msg, int field, void* dd,
                                   const wchar_t* label, int bytes, int bits, int* byte_position,
                                   int* bit_position, unsigned char* source_byte, int repeat_index,
                                   int print_unit_flag, unsigned long flags, void* value, int unit) {
    wchar_t line[tree_text_size];
    int label_length = 0;
    const int count =
        get_field_str(line, tree_text_size, msg, field, dd, label, bytes, bits, byte_position, bit_position,
                      source_byte, repeat_index, print_unit_flag, flags, &label_length, value, unit);
    copy_wide(value_out, line + label_length, tree_text_size);
    copy_wide(label_out, line, label_length + 1);
    return count;
}

// ---- data formats ----

int QV_N2K_PGN_DB_c::DF_to_DispDataType(unsigned short df) {
    return quantity_of_format(df);
}

unsigned short QV_N2K_PGN_DB_c::DispDataType_to_DF(int disp_data_type) {
    return format_of_quantity(disp_data_type);
}

void* QV_N2K_PGN_DB_c::DF_to_conv_DF(unsigned short df) {
    return reinterpret_cast<void*>(find_conversion(df));
}

int QV_N2K_PGN_DB_c::conv_DF(unsigned short df, void* out, const void* raw, int unit) {
    return convert_field(df, static_cast<ConvValue*>(out), raw, unit);
}

// ---- units ----

int QV_N2K_PGN_DB_c::SelectUnit(int disp_data_type, int unit) {
    const ModuleGuard in_this_module;
    return select_unit(sel_unit_, disp_data_type, unit);
}

int QV_N2K_PGN_DB_c::GetSelectUnit(int disp_data_type) {
    const ModuleGuard in_this_module;
    return selected_unit(sel_unit_, disp_data_type);
}

int QV_N2K_PGN_DB_c::GetAvailableUnit(int disp_data_type, int* units, int max) {
    const ModuleGuard in_this_module;
    return count_available_units(disp_data_type, units, max);
}

int QV_N2K_PGN_DB_c::print_unit(char* buf, int size, int unit, int) {
    return print_unit_name(buf, size, unit);
}

int QV_N2K_PGN_DB_c::print_unit(wchar_t* buf, int size, int unit, int) {
    return print_unit_name(buf, size, unit);
}

int QV_N2K_PGN_DB_c::print_unit(wchar_t* buf, unsigned short df, int unit) {
    return print_unit_of(sel_unit_, buf, Printable::of_format(df), unit);
}

int QV_N2K_PGN_DB_c::print_unit_dt(wchar_t* buf, int disp_data_type, int unit) {
    return print_unit_of(sel_unit_, buf, Printable::of_quantity(disp_data_type), unit);
}

int QV_N2K_PGN_DB_c::print_val(wchar_t* buf, unsigned short df, const void* raw, int unit) {
    return print_value(sel_unit_, buf, Printable::of_format(df), raw, unit);
}

int QV_N2K_PGN_DB_c::print_val_dt(wchar_t* buf, int disp_data_type, const void* raw, int unit) {
    return print_value(sel_unit_, buf, Printable::of_quantity(disp_data_type), raw, unit);
}

int QV_N2K_PGN_DB_c::print_val_unit(wchar_t* buf, unsigned short df, const void* raw, int unit) {
    return print_value_and_unit(sel_unit_, buf, Printable::of_format(df), raw, unit);
}

int QV_N2K_PGN_DB_c::print_val_unit_dt(wchar_t* buf, int disp_data_type, const void* raw, int unit) {
    return print_value_and_unit(sel_unit_, buf, Printable::of_quantity(disp_data_type), raw, unit);
}

// ---- numbers ----

unsigned short GetDispDataType_Num() {
    return quantity::count;
}

unsigned short GetUnitDataType_Num() {
    return unit::count;
}

#include "pgn_vistel/pgn_db.h"

#include <algorithm>

#include "contract/exported_entry.h"
#include "contract/field_reading.h"
#include "contract/field_text.h"
#include "contract/store.h"
#include "contract/text_copy.h"
#include "contract/units.h"

using namespace pgn_vistel;

const core::UnitSelection& pgn_vistel::SelectionAccess::of(const QV_N2K_PGN_DB_c& db) {
    return selection_or_default(db.sel_unit_);
}

// Hosts hold these objects by value.
static_assert(sizeof(QV_N2K_PGN_DB_c) == sizeof(void*));

namespace {

constexpr int tree_text_size = 1024;

void* untyped(const void* p) {
    return const_cast<void*>(p);
}

/// Whether there is anything to decode: a real PGN, a field number, an entry whose format has a conversion,
/// and a position within the record.
bool is_decodable(const N2KMsg& msg, int field, const DDDef* dd, core::PayloadPosition at) {
    return msg.pgn != 0 && msg.pgn != 0xFFFFFFFF && field != 0 && dd != nullptr && dd->format != nullptr &&
           dd->format->conv != nullptr && at.byte >= 0 && at.byte < core::payload_area && at.bit >= 0 &&
           at.bit <= 7;
}

}  // namespace

QV_N2K_PGN_DB_c::QV_N2K_PGN_DB_c() : sel_unit_(new_selection()) {}

QV_N2K_PGN_DB_c& QV_N2K_PGN_DB_c::operator=(const QV_N2K_PGN_DB_c&) = default;

// ---- catalogue ----

int QV_N2K_PGN_DB_c::get_DispDataType(int dd) {
    return core::quantity_of_dd(dd);
}

int QV_N2K_PGN_DB_c::get_DispDataTypeX(int dd, const unsigned char* raw) {
    return core::quantity_of_dd(dd, raw);
}

void QV_N2K_PGN_DB_c::get_bytes_bits(unsigned long pgn, void* dd, int* bytes, int* bits) {
    if (bytes == nullptr || bits == nullptr) return;
    const auto* const entry = static_cast<const DDDef*>(dd);
    core::DDDef sizes{};
    if (entry != nullptr) sizes = {entry->dd, entry->name, 0, entry->bytes, entry->bits};
    core::complete_field_size(static_cast<std::uint32_t>(pgn), &sizes, bytes, bits);
}

int QV_N2K_PGN_DB_c::get_field_id(unsigned long pgn, unsigned short byte_position,
                                  unsigned char bit_position) {
    return core::field_at(static_cast<std::uint32_t>(pgn), byte_position, bit_position);
}

void* QV_N2K_PGN_DB_c::find_DDstrings(unsigned int dd) {
    return untyped(core::find_enumeration(dd));
}

int QV_N2K_PGN_DB_c::print_pgn_name(wchar_t* buf, int size, unsigned long pgn) {
    const core::PgnDef* const row = core::find_pgn_def(static_cast<std::uint32_t>(pgn));
    if (buf == nullptr || size <= 0 || row == nullptr) return -1;
    core::WideOut out(buf, size);
    out.put(core::pgn_name(row));
    return out.finish();
}

int QV_N2K_PGN_DB_c::print_pgn_name(char* buf, int size, unsigned long pgn) {
    const core::PgnDef* const row = core::find_pgn_def(static_cast<std::uint32_t>(pgn));
    if (buf == nullptr || size <= 0 || row == nullptr) return -1;
    const std::size_t count = core::pgn_name(row).copy(buf, static_cast<std::size_t>(size - 1));
    buf[count] = 0;
    return static_cast<int>(count);
}

// ---- fields as text ----

int QV_N2K_PGN_DB_c::print_field_name(wchar_t* buf, int size, int dd, const wchar_t* label, int repeat_index,
                                      unsigned long, int) {
    core::WideOut out(buf, size);
    put_field_name(out, dd, label, repeat_index);
    return out.finish();
}

int QV_N2K_PGN_DB_c::print_field_data(wchar_t* buf, int size, int dd, int disp_data_type, void* value,
                                      int unit, int print_unit_flag, unsigned long flags, unsigned long pgn,
                                      int field) {
    if (!is_unit(unit))
        unit = core::is_quantity(disp_data_type) ? selected_unit(sel_unit_, disp_data_type)
                                                 : UnitId{core::unit::raw_count};
    core::WideOut out(buf, size);
    const FieldContext context{
        dd, disp_data_type, unit, print_unit_flag != 0, flags, static_cast<std::uint32_t>(pgn), field};
    put_field_data(out, context, static_cast<const ConvValue*>(value));
    return out.finish();
}

int QV_N2K_PGN_DB_c::print_field_data_unknown(wchar_t* buf, int size, const unsigned char* data, int length,
                                              int with_label, int* label_length) {
    core::WideOut out(buf, size);
    const int label = put_undecoded(out, data, length, with_label != 0);
    if (label_length != nullptr) *label_length = label;
    return out.finish();
}

int QV_N2K_PGN_DB_c::get_field_str(wchar_t* buf, int size, N2KMsg* msg, int field, void* dd,
                                   const wchar_t* label, int bytes, int bits, int* byte_position,
                                   int* bit_position, unsigned char* source_byte, int repeat_index,
                                   int print_unit_flag, unsigned long flags, int* label_length, void* value,
                                   int unit) {
    core::WideOut out(buf, size);
    if (label_length != nullptr) *label_length = 0;
    if (msg == nullptr) return out.finish();
    const auto* const entry = static_cast<const DDDef*>(dd);
    const core::PayloadPosition at{byte_position != nullptr ? *byte_position : 0,
                                   bit_position != nullptr ? *bit_position : 0};
    core::PayloadPosition next;
    const int length = core::payload_length(*msg);
    if (is_decodable(*msg, field, entry, at)) {
        put_field_name(out, static_cast<int>(entry->dd), label, repeat_index);
        if (label_length != nullptr) *label_length = out.count();
        constexpr int pressure_source_byte = 2;
        if (entry->dd == core::dd::pressure_source && msg->pgn == core::pgn::actual_pressure &&
            source_byte != nullptr)
            *source_byte = msg->data[pressure_source_byte];

        // Where a unit's rule sets nothing but the type, what is left is a value that is not available.
        ConvValue own;
        store_not_available(&own);
        auto* const record = value != nullptr ? static_cast<ConvValue*>(value) : &own;
        const ReadField reading =
            read_field(*msg, {entry, bytes, bits, at, unit}, selection_or_default(sel_unit_), record);
        next = reading.next;
        const FieldContext context{static_cast<int>(entry->dd),
                                   reading.quantity,
                                   reading.unit,
                                   print_unit_flag != 0,
                                   flags,
                                   msg->pgn,
                                   field};
        if (reading.cut_off) {
            out.put('-');
            put_unit(out, context);
        } else {
            put_field_data(out, context, record);
        }
    } else {
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
    return core::quantity_of_format(df);
}

unsigned short QV_N2K_PGN_DB_c::DispDataType_to_DF(int disp_data_type) {
    return core::format_of_quantity(disp_data_type);
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
    return core::quantity::count;
}

unsigned short GetUnitDataType_Num() {
    return unit_count;
}

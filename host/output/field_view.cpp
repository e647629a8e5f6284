#include "output/field_view.h"

#include <algorithm>

#include "output/wide_label.h"

using namespace pgn_vistel;

namespace vistel {

namespace {

constexpr std::uint32_t pgn_number_dd = 9;

}  // namespace

bool FieldViewer::next(FieldView& view) {
    if (!walk_.next()) return false;
    const MessageWalk::Field& field = walk_.field();
    const DDDef& dd = *field.row->dd;
    const PayloadPosition from = walk_.position;

    view.value = {CV_NOT_AVAILABLE, {}};
    view.value.value.u64 = 0x7FFFFFFF;
    const FieldReading reading =
        read_field(db_, msg_, dd, field.bytes, field.bits, from, unit::selected, &view.value);
    walk_.position = reading.next;

    view.number = static_cast<int>(field.row->field);
    const int label_length = QV_N2K_PGN_DB_c::print_field_name(
        view.label_area.data(), static_cast<int>(view.label_area.size()), static_cast<int>(dd.dd),
        WideLabel(field.row->name).text, field.repeat, 0, 0);
    view.label = {view.label_area.data(),
                  static_cast<std::size_t>(std::max(0, label_length - 2))};  // less ": "

    view.available = !reading.cut_off && is_available(view.value);
    view.is_text = view.value.type >= CV_TEXT_NARROW && view.value.type <= CV_TEXT;
    view.unit = unit_name(reading.unit);
    read_text(view, field, reading);
    read_raw(view, from, reading.next);
    return true;
}

void FieldViewer::read_text(FieldView& view, const MessageWalk::Field& field, const FieldReading& reading) {
    view.text = {};
    const std::uint32_t dd = field.row->dd->dd;
    if (dd == pgn_number_dd) {
        view.unit = {};
        const int length =
            QV_N2K_PGN_DB_c::print_pgn_name(view.text_area.data(), static_cast<int>(view.text_area.size()),
                                            static_cast<unsigned long>(view.value.value.u32));
        if (view.available && length > 0)
            view.text = {view.text_area.data(), static_cast<std::size_t>(length)};
        return;
    }
    const DDstrings* const set = find_enumeration(dd);
    const bool has_text = set != nullptr && !reading.cut_off &&
                          (set->kind == ENUM_FLAGS || enumeration_text(*set, enumeration_value(view.value)));
    if (!has_text && !view.is_text) return;
    if (has_text) view.unit = {};
    const int length = db_.print_field_data(view.text_area.data(), static_cast<int>(view.text_area.size()),
                                            static_cast<int>(dd), reading.quantity, &view.value, reading.unit,
                                            0, 0, msg_.pgn, view.number);
    view.text = {view.text_area.data(), static_cast<std::size_t>(length)};
}

void FieldViewer::read_raw(FieldView& view, PayloadPosition from, PayloadPosition to) const {
    const int length = payload_length(msg_);
    const int first = from.byte * 8 + from.bit;
    const int bits = std::min(to.byte * 8 + to.bit, length * 8) - first;
    if (from.bit == 0 && bits % 8 == 0) {
        view.raw = {msg_.data + from.byte, static_cast<std::size_t>(std::max(0, bits / 8))};
        return;
    }
    const int count = std::clamp((bits + 7) / 8, 0, static_cast<int>(view.raw_area.size()));
    view.raw_area.fill(0);
    for (int i = 0; i < std::min(bits, 8 * count); ++i) {
        const int bit = first + i;
        if ((msg_.data[bit / 8] >> bit % 8 & 1) != 0)
            view.raw_area[static_cast<std::size_t>(i / 8)] |= static_cast<std::uint8_t>(1 << i % 8);
    }
    view.raw = {view.raw_area.data(), static_cast<std::size_t>(count)};
}

}  // namespace vistel

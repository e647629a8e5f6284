#include "contract/field_text.h"

#include <string_view>

#include "contract/store.h"
#include "contract/text_copy.h"
#include "contract/value_printer.h"
#include "contract/values.h"

namespace pgn_vistel {

using core::WideOut;

void put_field_name(WideOut& out, int dd, const wchar_t* label, int repeat_index) {
    const std::wstring_view text(label != nullptr ? label : L"");
    constexpr std::size_t first_word = 6;  // "First " with its blank
    const core::SpecialField* const special =
        dd > 0 ? core::find_special_field(static_cast<std::uint32_t>(dd), 0, 0) : nullptr;
    if (special != nullptr && special->label != nullptr) {
        out.put(std::string_view(special->label));
    } else if (repeat_index >= 1 && text.find(L"First") != text.npos) {
        // The word goes, wherever it stands: six characters from the start.
        out.put(text.substr(std::min(first_word, text.size())));
        out.put(" #");
        out.put_number([=](char* at) { return core::write_signed(at, repeat_index); });
    } else {
        out.put(text);
    }
    out.put(": ");
}

namespace {

/// The bytes up to the first zero.
void put_bytes(WideOut& out, const std::uint8_t* bytes) {
    constexpr int most = 256;
    for (int i = 0; bytes != nullptr && i < most && bytes[i] != 0 && out.room() > 0; ++i) {
        out.put_number([&](char* at) { return core::write_hex_byte(at, bytes[i]); });
        out.put(' ');
    }
}

/// Values of types that no conversion makes: characters, plain singles, fields as sent. Returns whether a
/// unit follows.
bool put_hosts_own(WideOut& out, const core::Shown& shown, const ConvValue& v) {
    const core::Value number = value_of(v);
    if (core::put_by_form(out, shown, number)) return false;
    const bool is_raw = v.type == CV_RAW_FIELD || v.type == CV_RAW_FIELD_TOO;
    if (shown.quantity == core::quantity::message_id) {
        if (is_raw) put_bytes(out, v.value.raw);
    } else if (!is_available(v)) {
        out.put('-');
    } else if (!core::put_by_quantity(out, shown,
                                      v.type == CV_CHAR
                                          ? core::Value{.type = core::ValueType::i64, .number{bits_of(v)}}
                                          : number)) {
        wchar_t text[print_limit];
        if (print_format_default(v.type) == nullptr)
            out.put("<Unknown data format>");
        else
            out.put(std::wstring_view(text, static_cast<std::size_t>(print_conv_value(text, nullptr, v))));
    }
    return true;
}

}  // namespace

void put_unit(WideOut& out, const FieldContext& context) {
    if (!context.with_unit) return;
    out.put(' ');
    out.put(std::wstring_view(core::unit_name(context.unit)));
}

void put_field_data(WideOut& out, const FieldContext& context, const ConvValue* value) {
    if (value == nullptr) {
        put_unit(out, context);
        return;
    }
    const auto dd = static_cast<std::uint32_t>(context.dd);
    const core::SpecialField* const special =
        core::find_special_field(dd, context.pgn, static_cast<std::uint32_t>(context.field));
    core::Shown shown{special != nullptr ? special->form : core::Form::plain,
                      core::find_set(dd),
                      0,
                      context.quantity,
                      context.unit,
                      (context.flags & plain_numbers) != 0};
    if (shown.form == core::Form::plain && shown.set != core::no_set)
        shown.form =
            core::enum_sets[shown.set].kind == core::ENUM_FLAGS ? core::Form::flags : core::Form::enumeration;
    const bool unit_follows = is_hosts_own(*value) ? put_hosts_own(out, shown, *value)
                                                   : core::put_value(out, shown, value_of(*value));
    if (unit_follows) put_unit(out, context);
}

int put_undecoded(WideOut& out, const std::uint8_t* data, int length, bool with_label) {
    const int start = out.count();
    if (with_label) out.put("Data:");
    const int label_length = out.count() - start;
    for (int i = 0; data != nullptr && i < length && out.room() > 0; ++i) {
        out.put(' ');
        out.put_number([&](char* at) { return core::write_hex_byte(at, data[i]); });
    }
    return label_length;
}

}  // namespace pgn_vistel

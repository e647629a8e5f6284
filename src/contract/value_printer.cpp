#include "contract/value_printer.h"

#include "contract/values.h"
#include "core/value_text.h"

namespace pgn_vistel {

bool is_available(const ConvValue& v) {
    const bool is_text = v.type >= CV_TEXT_NARROW && v.type <= CV_TEXT;
    return is_text || is_hosts_own(v) || core::is_available(value_of(v));
}

bool has_form(int type) {
    return type >= CV_FLOAT && type <= CV_TEXT;
}

void put_conv_value(core::WideOut& out, const ConvValue& v) {
    if (!is_available(v))
        out.put('-');
    else if (v.type == CV_CHAR)
        out.put_character(static_cast<std::uint32_t>(core::character_of(v.value.u8)));
    else if (v.type == CV_WCHAR || v.type == CV_WCHAR_PLAIN)
        out.put_character(v.value.u16);
    else if (has_form(v.type))
        core::put_plainly(out, value_of(v), true);
}

}  // namespace pgn_vistel

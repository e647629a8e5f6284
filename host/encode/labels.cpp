#include "encode/labels.h"

#include <string>

#include "output/unit_names.h"
#include "pgn_vistel/n2k_msg.h"
#include "text/characters.h"
#include "text/words.h"

namespace vistel {

NumberedLabel numbered(std::string_view label) {
    const std::size_t sign = label.rfind(" #");
    if (sign == label.npos) return {label, 0};
    int round = 0;
    for (const char c : label.substr(sign + 2)) {
        if (!is_digit(c) || round > N2K_MAX_PAYLOAD) return {label, 0};
        round = round * 10 + (c - '0');
    }
    return round > 0 ? NumberedLabel{label.substr(0, sign), round} : NumberedLabel{label, 0};
}

bool same_label(std::string_view a, std::string_view b) {
    return simplified(trimmed(a)) == simplified(trimmed(b));
}

bool means_label(std::string_view typed, std::string_view shown) {
    const NumberedLabel without_number = numbered(shown);
    return same_label(typed, shown) || (without_number.round > 0 && same_label(typed, without_number.text));
}

}  // namespace vistel

#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "encode/field_cell.h"

namespace vistel {

/// How a text is sent that tells its own size.
struct TextForm {
    int header;     ///< bytes in front: length of all, low byte first, and encoding; 1: length of the text
    bool is_cut;    ///< decoding leaves out the last character of 16 bits
    bool has_zero;  ///< a zero behind the text, which the length does not count
};
TextForm text_form_of(const FieldCell& cell);

/// The text in 8 bits a character where that is enough, else in 16. It may be longer than the format allows.
std::vector<std::uint8_t> sent_text(const TextForm& form, std::u16string_view text);

/// The text in 8 bits a character; nothing where that is not enough.
[[nodiscard]] std::optional<std::vector<std::uint8_t>> narrow_text(std::u16string_view text);

}  // namespace vistel

#include "core/out.h"

namespace pgn_vistel::core {

void WideOut::put_pooled(const char* text, std::size_t size) {
    // The pool is well-formed and has no character beyond 16 bits.
    const char* const end = text + size;
    while (text < end && at_ < end_) {
        const auto lead = static_cast<unsigned char>(*text++);
        const auto tail = [&text] {
            return static_cast<unsigned>(static_cast<unsigned char>(*text++) & 0x3F);
        };
        std::uint32_t c = lead;
        if (lead >= 0xE0) {
            c = (lead & 0x0Fu) << 12 | tail() << 6;
            c |= tail();
        } else if (lead >= 0x80) {
            c = (lead & 0x1Fu) << 6 | tail();
        }
        *at_++ = static_cast<wchar_t>(c);
    }
}

}  // namespace pgn_vistel::core

#include "contract/text_copy.h"

#include <cstdint>

#include "pgn_vistel/core/value.h"

namespace pgn_vistel {

namespace {

template <class To, class From, class Convert>
int bounded_copy(To* to, const From* from, int size, Convert convert) {
    if (to == nullptr) return -1;
    int count = 0;
    if (from != nullptr)
        for (; count < size - 1 && from[count] != 0; ++count) to[count] = convert(from[count]);
    to[count] = 0;
    return count;
}

}  // namespace

char code_page_to_narrow(wchar_t c) {
    constexpr std::uint8_t specials[] = {0x80, 0x81, 0x8C, 0x9C};
    for (const std::uint8_t special : specials)
        if (static_cast<wchar_t>(core::character_of(special)) == c) return static_cast<char>(special);
    return static_cast<char>(c & 0xFF);
}

int copy_w2n(char* to, const wchar_t* from, int size) {
    return bounded_copy(to, from, size, code_page_to_narrow);
}

int copy_wide(wchar_t* to, const wchar_t* from, int size) {
    return bounded_copy(to, from, size, [](wchar_t c) { return c; });
}

int copy_narrow(char* to, const char* from, int size) {
    return bounded_copy(to, from, size, [](char c) { return c; });
}

wchar_t* widen(wchar_t* to, const char* from, int size) {
    bounded_copy(to, from, size, [](char c) { return static_cast<wchar_t>(static_cast<unsigned char>(c)); });
    return to;
}

}  // namespace pgn_vistel

#include "values/text_copy.h"

#include <algorithm>
#include <iterator>

namespace pgn_vistel {

namespace {

struct CodePagePair {
    unsigned char narrow;
    wchar_t wide;
};

// 0x81 is free in the common western code page; here it carries the omega that unit texts need.
constexpr CodePagePair code_page[] = {{0x80, 0x20AC}, {0x81, 0x03A9}, {0x8C, 0x0152}, {0x9C, 0x0153}};

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

wchar_t code_page_to_wide(unsigned char c) {
    const auto pair = std::ranges::find(code_page, c, &CodePagePair::narrow);
    return pair != std::end(code_page) ? pair->wide : static_cast<wchar_t>(c);
}

char code_page_to_narrow(wchar_t c) {
    const auto pair = std::ranges::find(code_page, c, &CodePagePair::wide);
    return static_cast<char>(pair != std::end(code_page) ? pair->narrow : c & 0xFF);
}

int copy_w2n(char* to, const wchar_t* from, int size) {
    return bounded_copy(to, from, size, code_page_to_narrow);
}

int copy_n2w(wchar_t* to, const char* from, int size) {
    return bounded_copy(to, from, size, [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte < 0x80 ? static_cast<wchar_t>(byte) : code_page_to_wide(byte);
    });
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

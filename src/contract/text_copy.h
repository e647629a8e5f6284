#pragma once

namespace pgn_vistel {

// Bounded copies. `size` counts characters of the destination including the terminator; a size of 0 or 1
// copies nothing but still writes the terminator. A null source is an empty text. The result is the number of
// characters copied, or -1 for a null destination.

/// Wide to narrow by the library's code page: single bytes, of which 0x80, 0x81, 0x8C and 0x9C stand for the
/// euro sign, the Greek capital omega, OE and oe; every other character becomes its low 8 bits.
int copy_w2n(char* to, const wchar_t* from, int size);

int copy_wide(wchar_t* to, const wchar_t* from, int size);
int copy_narrow(char* to, const char* from, int size);

/// Each byte becomes the character of the same number. Returns the destination.
wchar_t* widen(wchar_t* to, const char* from, int size);

/// The code page for one character; the other way is `core::character_of`.
char code_page_to_narrow(wchar_t c);

}  // namespace pgn_vistel

#pragma once

/// @file
/// The product name of a module.

#include <cstdint>

/// How a program or shared library says its product name, which the monitor dialog shows as its title after
/// `SetModule`: an ELF note, since ELF has no version resource. Once in a module, outside of functions:
///
///     PGN_VISTEL_PRODUCT_NAME("Chart Table")
///
/// `text` is a string literal in UTF-8. The module's handle for `SetModule` is what dlopen() returns for it,
/// as dlopen(nullptr, RTLD_LAZY) does for the program itself.
#define PGN_VISTEL_PRODUCT_NAME(text)                                                             \
    [[gnu::section(".note.pgn_vistel"), gnu::used,                                                \
      gnu::aligned(4)]] PGN_VISTEL_NO_GUARDS static const ::pgn_vistel::ProductNote<sizeof(text)> \
        pgn_vistel_product_note{.name = text};

/// clang's AddressSanitizer would put guards around the note, which then could not be found.
#if defined(__clang__)
#define PGN_VISTEL_NO_GUARDS [[clang::no_sanitize("address")]]
#else
#define PGN_VISTEL_NO_GUARDS
#endif

namespace pgn_vistel {

/// The note as the ELF format lays it out: three words, then owner and contents, each filled up to 4 bytes.
template <std::uint32_t size>
struct ProductNote {
    std::uint32_t owner_size = sizeof owner;  ///< in bytes, with the terminator
    std::uint32_t name_size = size;           ///< in bytes, with the terminator
    std::uint32_t type = 1;                   ///< of this owner's notes: the product name
    char owner[12] = "PGN Vistel\0";          ///< who says what the type means
    alignas(4) char name[size];               ///< UTF-8
};

}  // namespace pgn_vistel

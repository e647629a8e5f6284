#pragma once

#include <iterator>

namespace vistel {

/// A field's label, Latin-1 in the catalogue, as wide text.
struct WideLabel {
    explicit WideLabel(const char* latin1) {
        std::size_t i = 0;
        for (; latin1[i] != 0 && i < std::size(text) - 1; ++i)
            text[i] = static_cast<unsigned char>(latin1[i]);
        text[i] = 0;
    }
    wchar_t text[128];
};

}  // namespace vistel

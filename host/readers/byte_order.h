#pragma once

#include <cstddef>

namespace vistel {

/// @{ The number whose bytes stand at `p`, which may be of any type of one byte.
template <class Number, class Byte>
constexpr Number little_endian(const Byte* p) {
    Number number = 0;
    for (std::size_t i = 0; i < sizeof number; ++i)
        number |= static_cast<Number>(static_cast<Number>(static_cast<unsigned char>(p[i])) << 8 * i);
    return number;
}
template <class Number, class Byte>
constexpr Number big_endian(const Byte* p) {
    Number number = 0;
    for (std::size_t i = 0; i < sizeof number; ++i)
        number |= static_cast<Number>(static_cast<Number>(static_cast<unsigned char>(p[i]))
                                      << 8 * (sizeof number - 1 - i));
    return number;
}
/// @}

/// Numbers of a file whose byte order is known when it is read.
struct ByteOrder {
    bool big = false;

    template <class Number, class Byte>
    constexpr Number load(const Byte* p) const {
        return big ? big_endian<Number>(p) : little_endian<Number>(p);
    }
};

}  // namespace vistel

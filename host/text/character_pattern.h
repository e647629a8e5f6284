#pragma once

#include <array>
#include <cassert>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "text/fixed_digits.h"

namespace vistel {

/// A text of up to eight characters a word, some of which may be any, to be compared with many others.
template <unsigned words>
class CharacterPattern {
  public:
    static constexpr unsigned room = 8 * words;

    void set(std::string_view text) {
        assert(text.size() <= room);
        size_ = static_cast<unsigned>(text.size());
        char copy[room] = {};
        std::memcpy(copy, text.data(), text.size());
        for (unsigned i = 0; i < words; ++i) {
            const unsigned in_word = size_ > 8 * i ? size_ - 8 * i : 0;
            characters_[i] = characters_at<std::uint64_t>(copy + 8 * i);
            compared_[i] = in_word >= 8 ? ~std::uint64_t{0} : (std::uint64_t{1} << 8 * in_word) - 1;
        }
    }

    void allow_any(unsigned at) { compared_[at / 8] &= ~(std::uint64_t{0xFF} << at % 8 * 8); }

    unsigned size() const { return size_; }

    /// Whether the text stands at `p`, which has `room` characters.
    bool matches(const char* p) const {
        std::uint64_t differences = 0;
        for (unsigned i = 0; i < words; ++i)
            differences |= (characters_at<std::uint64_t>(p + 8 * i) ^ characters_[i]) & compared_[i];
        return differences == 0;
    }

  private:
    std::array<std::uint64_t, words> characters_{}, compared_{};
    unsigned size_ = 0;
};

}  // namespace vistel

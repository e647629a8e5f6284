#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace vistel {

/// Numbers the interfaces of a recording as they appear, from 0.
class BusNames {
  public:
    /// Interfaces that are too many share the last number.
    std::uint8_t number_of(std::string_view name) {
        name = name.substr(0, name_size);
        for (unsigned number = 0; number < count_; ++number) {
            if (name == names_[number].text()) return static_cast<std::uint8_t>(number);
        }
        if (count_ == names_.size()) return static_cast<std::uint8_t>(count_ - 1);
        Name& added = names_[count_];
        added.size = static_cast<std::uint8_t>(name.copy(added.characters, name_size));
        return static_cast<std::uint8_t>(count_++);
    }

    /// Empty for a number that is not given.
    std::string_view name_of(std::uint8_t number) const { return names_[number].text(); }

  private:
    static constexpr std::size_t name_size = 31;
    struct Name {
        char characters[name_size];
        std::uint8_t size;

        std::string_view text() const { return {characters, size}; }
    };

    std::array<Name, 256> names_{};
    unsigned count_ = 0;
};

}  // namespace vistel

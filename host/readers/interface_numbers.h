#pragma once

#include <array>
#include <cstdint>

namespace vistel {

/// Numbers the interfaces of a capture as they appear, from 0. Those that are too many share the last number.
class InterfaceNumbers {
  public:
    std::uint8_t number_of(std::uint32_t interface) {
        unsigned number = 0;
        while (number < count_ && interfaces_[number] != interface) ++number;
        if (number == interfaces_.size()) return static_cast<std::uint8_t>(number - 1);
        if (number == count_) interfaces_[count_++] = interface;
        return static_cast<std::uint8_t>(number);
    }

  private:
    std::array<std::uint32_t, 256> interfaces_{};
    unsigned count_ = 0;
};

}  // namespace vistel

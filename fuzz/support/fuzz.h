#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string_view>
#include <type_traits>

/// What fuzz targets share.
namespace fuzz {

/// Ends the process where something does not hold, so that the input is kept.
inline void require(bool condition, const char* what) {
    if (condition) [[likely]]
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

/// Takes an input apart. Behind its end there are zeros.
class Input {
  public:
    Input(const std::uint8_t* bytes, std::size_t size) : bytes_(bytes, size) {}

    template <class Number>
    Number take() {
        static_assert(std::is_trivially_copyable_v<Number>);
        Number number{};
        const std::size_t size = std::min(sizeof number, bytes_.size());
        if (size > 0) std::memcpy(&number, bytes_.data(), size);
        bytes_ = bytes_.subspan(size);
        return number;
    }
    std::span<const std::uint8_t> take_bytes(std::size_t size) {
        const auto taken = bytes_.first(std::min(size, bytes_.size()));
        bytes_ = bytes_.subspan(taken.size());
        return taken;
    }
    std::string_view take_text(std::size_t size) {
        const auto taken = take_bytes(size);
        return {reinterpret_cast<const char*>(taken.data()), taken.size()};
    }
    std::string_view take_line() {
        const std::string_view rest(reinterpret_cast<const char*>(bytes_.data()), bytes_.size());
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        const std::string_view line = take_text(end);
        take_bytes(1);
        return line;
    }
    std::span<const std::uint8_t> rest() const { return bytes_; }
    bool empty() const { return bytes_.empty(); }

  private:
    std::span<const std::uint8_t> bytes_;
};

}  // namespace fuzz

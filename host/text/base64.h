#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vistel {

/// Writes the bytes that `text` stands for to the beginning of `room` and returns how many they are. Nothing
/// where it is not base64 with its padding, or stands for more bytes than there is room for.
std::optional<std::size_t> read_base64(std::string_view text, std::span<std::uint8_t> room);

/// Appends bytes as base64 with its padding.
void append_base64(std::string& text, std::span<const std::uint8_t> bytes);

}  // namespace vistel

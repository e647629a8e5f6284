#pragma once

namespace vistel {

constexpr bool is_digit(char c) {
    return static_cast<unsigned>(c - '0') <= 9;
}

/// A carriage return counts too: it stands before many a line end and never within a line.
constexpr bool is_blank(char c) {
    return c == ' ' || c == '\t' || c == '\r';
}

}  // namespace vistel

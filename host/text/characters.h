#pragma once

namespace vistel {

constexpr bool is_digit(char c) {
    return static_cast<unsigned>(c - '0') <= 9;
}

/// A carriage return counts too: it stands before many a line end and never within a line.
constexpr bool is_blank(char c) {
    return c == ' ' || c == '\t' || c == '\r';
}

/// Stands where the loss of a link cut a line, before its end, so that no format takes it for a whole one.
constexpr char cut_mark = '\x18';

}  // namespace vistel

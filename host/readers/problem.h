#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

namespace vistel {

/// What is wrong with a recording, and where.
struct Problem {
    std::uint64_t line = 0;  ///< from 1; 0 when the recording as a whole is meant
    std::string text;
};

/// `bytes` between backticks: at most 32 of them, unprintable ones as \xNN.
std::string quoted(std::string_view bytes);

namespace detail {
inline void append(std::string& text, std::string_view part) {
    text += part;
}
inline void append(std::string& text, std::unsigned_integral auto part) {
    text += std::to_string(part);
}
}  // namespace detail

/// Sets the text: `describe(problem, "priority ", 9u, " is above ", 7u)` -> "priority 9 is above 7".
template <class... Parts>
void describe(Problem& problem, const Parts&... parts) {
    problem.text.clear();
    (detail::append(problem.text, parts), ...);
}

}  // namespace vistel

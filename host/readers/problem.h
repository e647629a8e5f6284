#pragma once

#include <cstdint>
#include <string>

#include "text/words.h"

namespace vistel {

/// What is wrong with a recording, and where.
struct Problem {
    std::uint64_t line = 0;  ///< from 1; 0 when the recording as a whole is meant
    std::string text;
};

/// Sets the text: `describe(problem, "priority ", 9u, " is above ", 7u)` -> "priority 9 is above 7".
template <class... Parts>
void describe(Problem& problem, const Parts&... parts) {
    problem.text.clear();
    (append_part(problem.text, parts), ...);
}

}  // namespace vistel

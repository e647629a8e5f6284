#pragma once

#include <cstdint>
#include <string>

#include "text/words.h"

namespace vistel {

/// What is wrong with a recording, and where.
struct Problem {
    enum class Place : std::uint8_t {
        whole,  ///< the recording as a whole: nothing more can come of it
        line,   ///< `number` is the line, from 1
        byte,   ///< `number` is the offset of a byte, from 0
    };

    Place place = Place::whole;
    std::uint64_t number = 0;
    std::string text;

    void put_at_line(std::uint64_t line) { place = Place::line, number = line; }
    void put_at_byte(std::uint64_t offset) { place = Place::byte, number = offset; }
    void put_at_whole() { place = Place::whole, number = 0; }
};

/// "boat.log:12: ...", "boat.ebl: byte 345: ...", "vistel: boat.log: ..."
inline std::string described(const Problem& problem, std::string_view recording) {
    switch (problem.place) {
        case Problem::Place::line: return concat(recording, ":", problem.number, ": ", problem.text);
        case Problem::Place::byte: return concat(recording, ": byte ", problem.number, ": ", problem.text);
        case Problem::Place::whole: break;
    }
    return concat("vistel: ", recording, ": ", problem.text);
}

/// Sets the text: `describe(problem, "priority ", 9u, " is above ", 7u)` -> "priority 9 is above 7".
template <class... Parts>
void describe(Problem& problem, const Parts&... parts) {
    problem.text.clear();
    (append_part(problem.text, parts), ...);
}

}  // namespace vistel

#include "readers/inflater.h"

namespace vistel {

struct Inflater::State {};

Inflater::Inflater() = default;
Inflater::~Inflater() = default;

Inflater::Outcome Inflater::inflate(std::string_view, std::span<char>) {
    return {0, false};
}

}  // namespace vistel

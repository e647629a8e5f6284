#pragma once

#include "monitor/player.h"

namespace vistel::test {

/// How recordings are played.
inline PlayOptions playing(std::vector<std::string> names, std::optional<double> speed = {},
                           bool loop = false) {
    PlayOptions options;
    options.input.names = std::move(names);
    options.speed = speed;
    options.loop = loop;
    return options;
}

}  // namespace vistel::test

#pragma once

#include <string>

#include "sources/link_watch.h"

namespace vistel {

struct LiveOptions {
    double timeout = 30;  ///< seconds without traffic until that is told; 0 never
};

/// What links are told to do: whatever there is to say goes to standard error behind the name of the source,
/// after `before`.
LinkOptions link_options(const LiveOptions& options, const std::string& name,
                         std::function<void()> before = {});

/// What became of a link, as lines of the statistics on standard error.
void print_link(const LinkCounters& counters);

}  // namespace vistel

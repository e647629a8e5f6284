#include "commands/output_status.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "commands/decode.h"

namespace vistel {

int output_status(const Sink& out) {
    if (out.is_open() || out.error() == EPIPE) return EXIT_CLEAN;
    std::fprintf(stderr, "vistel: cannot write: %s\n", std::strerror(out.error()));
    return EXIT_FAILED;
}

}  // namespace vistel

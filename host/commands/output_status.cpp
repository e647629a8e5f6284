#include "commands/output_status.h"

#include <cerrno>
#include <cstdio>
#include <memory>

#include "commands/decode.h"
#include "commands/interrupt.h"
#include "text/error_text.h"

namespace vistel {

int output_status(const Sink& out) {
    if (out.is_open() || out.error() == EPIPE) return EXIT_CLEAN;
    std::fprintf(stderr, "vistel: cannot write: %s\n", error_text(out.error()).c_str());
    return EXIT_FAILED;
}

int print_out(const std::string& text) {
    constexpr int standard_output = 1;
    ignore_closed_pipes();
    const auto out = std::make_unique<Sink>(standard_output);
    out->put(text);
    out->flush();
    return output_status(*out);
}

}  // namespace vistel

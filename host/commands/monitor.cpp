#include "commands/monitor.h"

#include <cstdio>

#include "commands/decode.h"
#include "commands/neighbour.h"

namespace vistel {

int run_monitor(const std::string& name, const std::vector<std::string>& arguments) {
    auto status = run_neighbour("vistel-monitor", name, arguments);
    if (status) return *status;
    std::fprintf(stderr, "vistel: cannot start the window (%s); 'vistel decode' shows the messages as text\n",
                 status.error().text.c_str());
    return EXIT_FAILED;
}

}  // namespace vistel

#include "commands/monitor.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "commands/decode.h"

namespace vistel {

int run_monitor(const std::vector<std::string>& arguments) {
    std::error_code unknown;
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", unknown);
    std::string program = (self.parent_path() / "vistel-monitor").string();
    std::vector<char*> words = {program.data()};
    std::vector<std::string> copies = arguments;
    for (std::string& argument : copies) words.push_back(argument.data());
    words.push_back(nullptr);
    ::execv(program.c_str(), words.data());
    std::fprintf(stderr,
                 "vistel: cannot start the window (%s: %s); 'vistel decode' shows the messages as text\n",
                 program.c_str(), std::strerror(errno));
    return EXIT_FAILED;
}

}  // namespace vistel

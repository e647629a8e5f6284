#include <algorithm>
#include <iterator>

#include "command_line/start.h"

namespace vistel {

// Some kernels start a program without even its name.
bool start_program(int argc, char** argv, std::vector<std::string>& words) {
    words.assign(std::reverse_iterator(argv + argc), std::reverse_iterator(argv + std::min(argc, 1)));
    return true;
}

}  // namespace vistel

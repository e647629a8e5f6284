#include "output/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace vistel {

Result<int> open_output(const std::string& path, const std::vector<std::string>& inputs) {
    if (path == "-") return STDOUT_FILENO;
    constexpr mode_t anybody = 0666;  // but for what the user's mask takes away
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, anybody);
    struct stat file {};
    if (descriptor < 0 || ::fstat(descriptor, &file) != 0)
        return Failure{std::generic_category().message(errno)};
    if (!S_ISREG(file.st_mode)) return descriptor;
    const bool is_input = std::ranges::any_of(inputs, [&file](const std::string& input) {
        struct stat other {};
        const int result = input == "-" ? ::fstat(STDIN_FILENO, &other) : ::stat(input.c_str(), &other);
        return result == 0 && other.st_dev == file.st_dev && other.st_ino == file.st_ino;
    });
    if (!is_input && ::ftruncate(descriptor, 0) == 0) return descriptor;
    const int error = errno;
    ::close(descriptor);
    return Failure{is_input ? "it is one of the recordings that are read" : std::generic_category().message(error)};
}

}  // namespace vistel

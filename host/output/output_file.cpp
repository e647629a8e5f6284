#include "output/output_file.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include "output/write.h"
#include "text/error_text.h"
#include "text/path_of.h"

namespace vistel {

Result<int> open_output(const std::string& path, const std::vector<std::string>& inputs) {
    constexpr int standard_output = 1;
    if (path == "-") return standard_output;
    const bool is_input = std::ranges::any_of(inputs, [&path](const std::string& input) {
        std::error_code error;  // where there is no such file, it is none
        return std::filesystem::is_regular_file(path_of(path), error) &&
               std::filesystem::equivalent(path_of(path), path_of(input == "-" ? "/dev/stdin" : input),
                                           error);
    });
    if (is_input) return Failure{"it is one of the recordings that are read"};
    const int descriptor = open_to_write(path);
    if (descriptor < 0) return Failure{error_text(errno)};
    return descriptor;
}

bool holds_something(const std::string& path) {
    std::error_code error;  // where there is no such file, it holds nothing
    return std::filesystem::is_regular_file(path_of(path), error) &&
           std::filesystem::file_size(path_of(path), error) > 0 && !error;
}

}  // namespace vistel

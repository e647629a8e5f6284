#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "commands/neighbour.h"
#include "text/error_text.h"

namespace vistel {

namespace {

namespace fs = std::filesystem;

/// The file of this program; empty where that cannot be known. The kernel says it in /proc. Without that
/// there is the name by which the program was started: the path of a file, or one to be found along PATH.
/// Parts of PATH that are empty or relative depend on the working directory and are passed over.
fs::path file_of_this_program(const fs::path& name) {
    std::error_code error;
    if (fs::path file = fs::read_symlink("/proc/self/exe", error); !error) return file;
    if (name.has_parent_path()) return fs::canonical(name, error);
    const char* const path = std::getenv("PATH");
    std::istringstream folders(path != nullptr && !name.empty() ? path : "");
    for (std::string folder; std::getline(folders, folder, ':');) {
        const fs::path file = fs::path(folder) / name;
        if (file.is_absolute() && ::access(file.c_str(), X_OK) == 0) return fs::canonical(file, error);
    }
    return {};
}

}  // namespace

Result<int> run_neighbour(const std::string& name, const std::string& own_name,
                          const std::vector<std::string>& arguments) {
    const fs::path self = file_of_this_program(own_name);
    if (self.empty()) return failure("without /proc it is unknown where this program lies");
    std::string program = (self.parent_path() / name).string();
    std::vector<char*> words = {program.data()};
    std::vector<std::string> copies = arguments;
    for (std::string& argument : copies) words.push_back(argument.data());
    words.push_back(nullptr);
    ::execv(program.c_str(), words.data());
    return failure(program, ": ", error_text(errno));
}

}  // namespace vistel

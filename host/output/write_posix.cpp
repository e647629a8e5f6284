#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "output/write.h"

namespace vistel {

std::ptrdiff_t write_some(int descriptor, const char* bytes, std::size_t size) {
    for (;;) {
        const ssize_t written = ::write(descriptor, bytes, size);
        if (written >= 0 || (errno != EINTR && errno != EAGAIN)) return written;
        // Who shares the descriptor may have set it not to block.
        pollfd room{descriptor, POLLOUT, 0};
        if (errno != EINTR) poll(&room, 1, -1);
    }
}

int open_to_write(const std::string& path) {
    constexpr mode_t anybody = 0666;  // but for whom the user's mask takes it from
    return ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, anybody);
}

void close_written(int descriptor) {
    ::close(descriptor);
}

}  // namespace vistel

#include <unistd.h>

#include <cerrno>

#include "output/write.h"

namespace vistel {

std::ptrdiff_t write_some(int descriptor, const char* bytes, std::size_t size) {
    ssize_t written;
    do {
        written = ::write(descriptor, bytes, size);
    } while (written < 0 && errno == EINTR);
    return written;
}

}  // namespace vistel

#include <io.h>
#include <windows.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "output/write.h"

namespace vistel {

std::ptrdiff_t write_some(int descriptor, const char* bytes, std::size_t size) {
    constexpr std::size_t most = std::size_t{1} << 30;
    const int written = _write(descriptor, bytes, static_cast<unsigned>(std::min(size, most)));
    switch (written < 0 ? _doserrno : 0) {
        case ERROR_NO_DATA:
        case ERROR_BROKEN_PIPE:
        case ERROR_PIPE_NOT_CONNECTED: errno = EPIPE; break;
    }
    return written;
}

}  // namespace vistel

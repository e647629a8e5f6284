#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "output/write.h"
#include "text/windows_text.h"

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

int open_to_write(const std::string& path) {
    return _wopen(wide(path).c_str(), _O_WRONLY | _O_CREAT | _O_TRUNC | _O_BINARY | _O_NOINHERIT,
                  _S_IREAD | _S_IWRITE);
}

}  // namespace vistel

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>

#include <algorithm>
#include <cerrno>
#include <string>

#include "output/write.h"
#include "text/windows_text.h"

namespace vistel {

namespace {

int errno_of(DWORD error) {
    switch (error) {
        case ERROR_BROKEN_PIPE:
        case ERROR_NO_DATA:
        case ERROR_PIPE_NOT_CONNECTED: return EPIPE;
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL: return ENOSPC;
        case ERROR_INVALID_HANDLE: return EBADF;
        default: return EIO;
    }
}

}  // namespace

std::ptrdiff_t write_some(int descriptor, const char* bytes, std::size_t size) {
    constexpr std::size_t most = std::size_t{1} << 30;
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(descriptor));
    DWORD written = 0;
    if (!WriteFile(handle, bytes, static_cast<DWORD>(std::min(size, most)), &written, nullptr)) {
        errno = errno_of(GetLastError());
        return -1;
    }
    return static_cast<std::ptrdiff_t>(written);
}

int open_to_write(const std::string& path) {
    const std::wstring file = wide(path);
    const int descriptor = _wopen(file.c_str(), _O_WRONLY | _O_CREAT | _O_TRUNC | _O_BINARY | _O_NOINHERIT,
                                  _S_IREAD | _S_IWRITE);
    if (descriptor >= 0) return descriptor;
    const DWORD attributes = GetFileAttributesW(file.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) errno = EISDIR;
    return -1;
}

void close_written(int descriptor) {
    _close(descriptor);
}

}  // namespace vistel

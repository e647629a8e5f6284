#pragma once

#include <fcntl.h>
#include <unistd.h>

#if defined(_WIN32)
#include <io.h>

#include <cstdlib>
#else
#include <sys/mman.h>
#endif

// What tests read from and write to, by descriptors; bytes stay as they are.
namespace vistel {

/// An empty file that goes when it is closed.
inline int open_nameless_file() {
#if defined(_WIN32)
    char* const name = ::_tempnam(nullptr, "recording");
    const int file = ::_open(name, _O_RDWR | _O_CREAT | _O_EXCL | _O_BINARY | _O_TEMPORARY, 0600);
    std::free(name);
    return file;
#else
    return ::memfd_create("recording", 0);
#endif
}

/// Its end to read from and the one to write to; 0 when all is well.
inline int open_pipe(int* ends) {
#if defined(_WIN32)
    constexpr unsigned room = 65536;
    return ::_pipe(ends, room, _O_BINARY);
#else
    return ::pipe(ends);
#endif
}

}  // namespace vistel

# 32-bit Windows from Debian: what g++-mingw-w64-i686-posix brings, linked so that nothing but Windows is needed.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_COMPILER i686-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER i686-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER i686-w64-mingw32-windres)
set(CMAKE_FIND_ROOT_PATH /usr/i686-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)

# Hosts of other compilers keep the stack at 4 bytes, where SSE wants 16.
foreach(language C CXX)
    set(CMAKE_${language}_FLAGS_INIT "-msse2 -mfpmath=sse -mstackrealign")
endforeach()
# What is linked is stripped at once, and without the time of the build: the same sources make the same bytes.
foreach(kind EXE SHARED MODULE)
    set(CMAKE_${kind}_LINKER_FLAGS_INIT "-static -Wl,--no-insert-timestamp")
    set(CMAKE_${kind}_LINKER_FLAGS_RELEASE_INIT "-s")
endforeach()

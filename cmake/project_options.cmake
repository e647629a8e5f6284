# What every target of the project is compiled with: link to project_options.
add_library(project_options INTERFACE)
target_compile_features(project_options INTERFACE cxx_std_20)
target_compile_options(project_options INTERFACE -Wall -Wextra -Wconversion -Wsign-conversion)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    target_compile_options(project_options INTERFACE -Wno-restrict)  # g++ 12 sees overlaps inside std::string
endif()
# With counts g++ 12 inlines further, and warns falsely of buffers; every file is compiled without counts, too.
if(PGN_VISTEL_WERROR AND NOT PGN_VISTEL_PROFILE)
    target_compile_options(project_options INTERFACE -Werror)
endif()

# Results in single precision are rounded once, at the places that the code says. The 8087 keeps more digits than that
# between operations; 32-bit x86 therefore computes with SSE2.
include(CheckCXXSymbolExists)
check_cxx_symbol_exists(__i386__ cstddef PGN_VISTEL_I386)
if(PGN_VISTEL_I386)
    target_compile_options(project_options INTERFACE -msse2 -mfpmath=sse)
endif()

# As fast as -O3 here, and smaller. What g++ 12 stores as vectors is mostly read again soon and in other pieces, which
# makes the processor wait: decoding takes 4 % longer with them.
target_compile_options(project_options INTERFACE $<$<CONFIG:Release>:-O2>)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    target_compile_options(project_options INTERFACE $<$<CONFIG:Release>:-fno-tree-vectorize>)
endif()

# What makes the programs start sooner, in less memory: no symbol of the C++ library to look up, no function that nothing
# calls.
add_library(program_options INTERFACE)
if(CMAKE_BUILD_TYPE STREQUAL Release AND NOT WIN32)
    target_link_options(program_options INTERFACE -static-libstdc++ -static-libgcc -Wl,--gc-sections)
endif()

# Optimising by counts takes two builds in one folder, since a function is known by its file's path, too. What the
# training did not run is built as without counts: hosts use more of the library than the program does.
set(counts ${PROJECT_BINARY_DIR}/counts)
if(PGN_VISTEL_PROFILE STREQUAL train)
    target_compile_options(project_options INTERFACE -fprofile-generate=${counts})
    target_link_options(project_options INTERFACE -fprofile-generate)
elseif(PGN_VISTEL_PROFILE STREQUAL use)
    target_compile_options(project_options INTERFACE -fprofile-use=${counts} -fprofile-partial-training
                                                     -Wno-missing-profile)
    target_link_options(project_options INTERFACE -fprofile-use=${counts} -fprofile-partial-training)
elseif(PGN_VISTEL_PROFILE)
    message(FATAL_ERROR "PGN_VISTEL_PROFILE is train, use or empty")
endif()

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

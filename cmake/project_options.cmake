# What every target of the project is compiled with: link to project_options.
add_library(project_options INTERFACE)
target_compile_features(project_options INTERFACE cxx_std_20)
target_compile_options(project_options INTERFACE -Wall -Wextra)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    target_compile_options(project_options INTERFACE -Wno-restrict)  # g++ 12 sees overlaps inside std::string
endif()
if(PGN_VISTEL_WERROR)
    target_compile_options(project_options INTERFACE -Werror)
endif()

# Results in single precision are rounded once, at the places that the code says. The 8087 keeps more digits than that
# between operations; 32-bit x86 therefore computes with SSE2.
include(CheckCXXSymbolExists)
check_cxx_symbol_exists(__i386__ cstddef PGN_VISTEL_I386)
if(PGN_VISTEL_I386)
    target_compile_options(project_options INTERFACE -msse2 -mfpmath=sse)
endif()

# Decoding a field crosses several small files. Optimising over them makes it faster; the objects stay usable without it,
# so whoever links the installed library needs no such option.
if(PGN_VISTEL_LTO)
    target_compile_options(project_options INTERFACE -flto=auto -ffat-lto-objects)
    # g++ 12 warns falsely of std::string and of buffers once it has inlined this far; every file was compiled with
    # the warnings on.
    target_link_options(project_options INTERFACE -flto=auto -Wno-stringop-overflow -Wno-stringop-overread)
endif()

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# What the shared library exports on Windows: the names of ${exports} that ${objects} define, and those by which hosts of
# Microsoft's compiler know them. For these an import library is made, microsoft_library.
find_program(CXXFILT NAMES i686-w64-mingw32-c++filt c++filt REQUIRED)
find_program(PGN_VISTEL_CLANG clang++-14 REQUIRED)
find_program(PGN_VISTEL_DLLTOOL llvm-dlltool-14 REQUIRED)
set(folder ${CMAKE_CURRENT_BINARY_DIR})
set(microsoft_library ${folder}/pgn_vistel_msvc.lib)
set(own_names ${PROJECT_SOURCE_DIR}/tools/exports/module_definition.py)
set(other_names ${PROJECT_SOURCE_DIR}/tools/decorated_names/decorated_names.py)
file(GLOB other_names_headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/pgn_vistel/*.h)

add_custom_command(
    OUTPUT ${folder}/own_names.def
    COMMAND ${CMAKE_COMMAND} -E env NM=${CMAKE_NM} CXXFILT=${CXXFILT}
            ${Python3_EXECUTABLE} ${own_names} ${exports} ${objects} > ${folder}/own_names.def
    DEPENDS ${own_names} ${exports} ${objects}
    COMMAND_EXPAND_LISTS
    VERBATIM)
add_custom_command(
    OUTPUT ${folder}/decorated_names.def ${folder}/decorated_names.cpp ${microsoft_library}
    COMMAND ${Python3_EXECUTABLE} ${other_names} --clang ${PGN_VISTEL_CLANG} --include ${PROJECT_SOURCE_DIR}/include
            --exports own_names.def --output .
    COMMAND ${PGN_VISTEL_DLLTOOL} -m i386 -d microsoft.def -l ${microsoft_library}
    DEPENDS ${other_names} ${folder}/own_names.def ${other_names_headers}
    WORKING_DIRECTORY ${folder}
    VERBATIM)
target_sources(pgn_vistel PRIVATE ${folder}/decorated_names.def ${folder}/decorated_names.cpp)
target_compile_definitions(pgn_vistel PRIVATE PGN_VISTEL_STATIC)

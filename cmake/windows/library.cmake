# The shared library on Windows, beyond what src/library/CMakeLists.txt says.
include(windows/version)
set_target_properties(pgn_vistel PROPERTIES PREFIX "")
add_version(pgn_vistel "NMEA 2000 traffic, decoded and shown")

# ---- the toolkit ----

# It is inside; hosts see its headers at most.
add_library(pgn_vistel_host STATIC windows_host.cpp)
set_target_properties(pgn_vistel_host PROPERTIES EXPORT_NAME host)
target_link_libraries(pgn_vistel_host PUBLIC pgn_vistel::toolkit_headers PRIVATE $<BUILD_INTERFACE:project_options>)
target_link_libraries(pgn_vistel INTERFACE pgn_vistel_host PRIVATE pgn_vistel::toolkit)

# Hosts that are written with the toolkit cannot share the one inside. They contain the library instead of loading it, so
# that there is one toolkit, and everything that takes a window or control of it is theirs to use.
add_library(pgn_vistel_views STATIC $<TARGET_OBJECTS:room_contract> $<TARGET_OBJECTS:room_platform>
                                    $<TARGET_OBJECTS:room_views> $<TARGET_OBJECTS:room_library>)
add_library(pgn_vistel::views ALIAS pgn_vistel_views)
set_target_properties(pgn_vistel_views PROPERTIES EXPORT_NAME views LINKER_LANGUAGE CXX)
target_compile_definitions(pgn_vistel_views PUBLIC PGN_VISTEL_STATIC)
target_include_directories(pgn_vistel_views PUBLIC $<BUILD_INTERFACE:${platform_public}>)
target_link_libraries(pgn_vistel_views PUBLIC pgn_vistel::core pgn_vistel::toolkit ${platform_libraries})

# ---- what it exports ----

# The names of ${exports} that ${objects} define, and those by which hosts of Microsoft's compiler know them; these have
# an import library of their own.
find_program(CXXFILT NAMES i686-w64-mingw32-c++filt c++filt REQUIRED)
find_program(PGN_VISTEL_CLANG clang++-14 REQUIRED)
find_program(PGN_VISTEL_DLLTOOL llvm-dlltool-14 REQUIRED)
set(folder ${CMAKE_CURRENT_BINARY_DIR})
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
    OUTPUT ${folder}/decorated_names.def ${folder}/decorated_names.cpp ${folder}/pgn_vistel_msvc.lib
    COMMAND ${Python3_EXECUTABLE} ${other_names} --clang ${PGN_VISTEL_CLANG} --include ${PROJECT_SOURCE_DIR}/include
            --exports own_names.def --output .
    COMMAND ${PGN_VISTEL_DLLTOOL} -m i386 -d microsoft.def -l ${folder}/pgn_vistel_msvc.lib
    DEPENDS ${other_names} ${folder}/own_names.def ${other_names_headers}
    WORKING_DIRECTORY ${folder}
    VERBATIM)
target_sources(pgn_vistel PRIVATE ${folder}/decorated_names.def ${folder}/decorated_names.cpp)
target_compile_definitions(pgn_vistel PRIVATE PGN_VISTEL_STATIC)

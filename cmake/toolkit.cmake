# wxWidgets as the target pgn_vistel::toolkit. The build reads this file and so does the installed CMake package.
#
# pgn_vistel_find_toolkit(RESULT): whether there is one. A function, so that what a host has found of wxWidgets for
# itself stays as it was.
function(pgn_vistel_find_toolkit result)
    find_package(wxWidgets 3.2 QUIET COMPONENTS core base)
    set(${result} ${wxWidgets_FOUND} PARENT_SCOPE)
    if(NOT wxWidgets_FOUND OR TARGET pgn_vistel::toolkit)
        return()
    endif()
    # Imported, so that compilers do not warn about its headers, which are not ours.
    add_library(pgn_vistel::toolkit INTERFACE IMPORTED)
    target_include_directories(pgn_vistel::toolkit INTERFACE ${wxWidgets_INCLUDE_DIRS})
    target_compile_definitions(pgn_vistel::toolkit INTERFACE ${wxWidgets_DEFINITIONS})
    target_compile_options(pgn_vistel::toolkit INTERFACE ${wxWidgets_CXX_FLAGS})
    target_link_libraries(pgn_vistel::toolkit INTERFACE ${wxWidgets_LIBRARIES})
endfunction()

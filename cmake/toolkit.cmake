# wxWidgets as the target pgn_vistel::toolkit. The build reads this file and so does the installed CMake package.
#
# pgn_vistel_find_toolkit(RESULT): whether there is one. A function, so that what a host has found of wxWidgets for
# itself stays as it was.
#
# On Windows it is the one that script/wxmsw builds, where wxWidgets_ROOT says. The library contains it, and hosts need
# no more than pgn_vistel::toolkit_headers: its headers where they are found, nothing for those who do without dialogs.
function(pgn_vistel_find_toolkit result)
    if(WIN32)
        find_package(wxWidgets 3.2 QUIET CONFIG)
    else()
        find_package(wxWidgets 3.2 QUIET COMPONENTS core base)
    endif()
    set(${result} ${wxWidgets_FOUND} PARENT_SCOPE)
    if(WIN32 AND NOT TARGET pgn_vistel::toolkit_headers)
        add_library(pgn_vistel::toolkit_headers INTERFACE IMPORTED)
    endif()
    if(NOT wxWidgets_FOUND OR TARGET pgn_vistel::toolkit)
        return()
    endif()
    # Imported, so that compilers do not warn about its headers, which are not ours.
    add_library(pgn_vistel::toolkit INTERFACE IMPORTED)
    if(WIN32)
        foreach(property INTERFACE_INCLUDE_DIRECTORIES INTERFACE_COMPILE_DEFINITIONS)
            get_target_property(value wx::mono ${property})
            set_target_properties(pgn_vistel::toolkit_headers PROPERTIES ${property} "${value}")
        endforeach()
        target_compile_definitions(pgn_vistel::toolkit_headers INTERFACE wxDEBUG_LEVEL=0)
        target_link_libraries(pgn_vistel::toolkit INTERFACE pgn_vistel::toolkit_headers wx::mono)
        return()
    endif()
    target_include_directories(pgn_vistel::toolkit INTERFACE ${wxWidgets_INCLUDE_DIRS})
    target_compile_definitions(pgn_vistel::toolkit INTERFACE ${wxWidgets_DEFINITIONS})
    target_compile_options(pgn_vistel::toolkit INTERFACE ${wxWidgets_CXX_FLAGS})
    target_link_libraries(pgn_vistel::toolkit INTERFACE ${wxWidgets_LIBRARIES})
endfunction()

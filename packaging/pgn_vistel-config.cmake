# find_package(pgn_vistel [COMPONENTS core views])
#   core   pgn_vistel::core, the decoder alone
#   views  pgn_vistel::pgn_vistel, the shared library with the windows; needs wxWidgets, on Windows for the headers of
#          the dialogs alone. There pgn_vistel::views is the same as a static library, for programs that are written with
#          wxWidgets.
# Without components: core, and views where they are installed and wxWidgets is there.
include(${CMAKE_CURRENT_LIST_DIR}/pgn_vistel-core-targets.cmake)
set(pgn_vistel_core_FOUND TRUE)

set(pgn_vistel_views_FOUND FALSE)
if(NOT pgn_vistel_FIND_COMPONENTS OR views IN_LIST pgn_vistel_FIND_COMPONENTS)
    if(NOT EXISTS ${CMAKE_CURRENT_LIST_DIR}/pgn_vistel-views-targets.cmake)
        set(pgn_vistel_views_missing "this PGN Vistel was built without the windows")
    else()
        include(${CMAKE_CURRENT_LIST_DIR}/pgn_vistel-toolkit.cmake)
        pgn_vistel_find_toolkit(pgn_vistel_views_FOUND)
        if(WIN32)
            set(pgn_vistel_views_FOUND TRUE)
        endif()
        if(pgn_vistel_views_FOUND)
            include(${CMAKE_CURRENT_LIST_DIR}/pgn_vistel-views-targets.cmake)
        else()
            set(pgn_vistel_views_missing "wxWidgets 3.2 is not there (Debian: libwxgtk3.2-dev)")
        endif()
    endif()
endif()

foreach(component IN LISTS pgn_vistel_FIND_COMPONENTS)
    if(pgn_vistel_FIND_REQUIRED_${component} AND NOT pgn_vistel_${component}_FOUND)
        set(pgn_vistel_FOUND FALSE)
        if(component STREQUAL views)
            set(pgn_vistel_NOT_FOUND_MESSAGE "No component 'views': ${pgn_vistel_views_missing}")
        else()
            set(pgn_vistel_NOT_FOUND_MESSAGE "No component '${component}'; there are: core, views")
        endif()
    endif()
endforeach()

# Debian packages of an installed tree, one for each component; script/package makes them.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR "")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each component has its own
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_COMPONENTS_ALL library development programs)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS library)
if(TARGET vistel-monitor)
    list(APPEND CPACK_COMPONENTS_ALL monitor)
    set(CPACK_COMPONENT_MONITOR_DEPENDS programs)
endif()

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SOURCE pgn-vistel)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# ---- libpgn-vistel0 ----

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libpgn-vistel${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "NMEA 2000 traffic, decoded and shown (shared library)
PGN Vistel decodes the messages of an NMEA 2000 network, the CAN bus of
boats, field by field, with units of the user's choice, and shows them live
in a window.
.
This package has the library that programs use.")
# Before version 1 a new minor version may be another interface (docs/versioning.md).
math(EXPR next_major "${PROJECT_VERSION_MAJOR} + 1")
math(EXPR next_minor "${PROJECT_VERSION_MINOR} + 1")
set(first_other ${next_major})
if(PROJECT_VERSION_MAJOR EQUAL 0)
    set(first_other 0.${next_minor})
endif()
set(name ${CPACK_DEBIAN_LIBRARY_PACKAGE_NAME})
set(shlibs "libpgn_vistel ${PROJECT_VERSION_MAJOR} ${name} (>= ${PROJECT_VERSION}), ${name} (<< ${first_other}~)\n")
file(WRITE ${made_dir}/debian/shlibs ${shlibs})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/debian/triggers
                                               ${made_dir}/debian/shlibs)

# ---- libpgn-vistel-dev ----

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libpgn-vistel-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS libwxgtk3.2-dev)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "NMEA 2000 traffic, decoded and shown (development files)
PGN Vistel decodes the messages of an NMEA 2000 network, the CAN bus of
boats, field by field, with units of the user's choice, and shows them live
in a window.
.
This package has what programs are built with: headers, the static decoder,
the CMake package and the files for pkg-config.")

# ---- pgn-vistel ----

set(CPACK_DEBIAN_PROGRAMS_PACKAGE_NAME pgn-vistel)
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_SUGGESTS "can-utils, pgn-vistel-monitor")
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_SHLIBDEPS ON)
set(CPACK_COMPONENT_PROGRAMS_DESCRIPTION "NMEA 2000 traffic, decoded and shown (programs)
The program vistel reads recordings or live traffic of an NMEA 2000 network,
the CAN bus of boats, and prints the decoded messages as text, JSON or CSV, or
shows them live in the terminal. It recognises the formats of many gateways and
tools, converts between them, records, replays, lists the devices of a bus and
builds messages.
.
It needs no display; the window is in pgn-vistel-monitor.")

# ---- pgn-vistel-monitor ----

set(CPACK_DEBIAN_MONITOR_PACKAGE_NAME pgn-vistel-monitor)
set(CPACK_DEBIAN_MONITOR_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_MONITOR_PACKAGE_SHLIBDEPS ON)
# An older pgn-vistel may have the window in it.
set(CPACK_DEBIAN_MONITOR_PACKAGE_BREAKS "pgn-vistel (<< ${PROJECT_VERSION})")
set(CPACK_DEBIAN_MONITOR_PACKAGE_REPLACES "pgn-vistel (<< ${PROJECT_VERSION})")
set(CPACK_COMPONENT_MONITOR_DESCRIPTION "NMEA 2000 traffic, decoded and shown (window)
The window of vistel monitor shows recordings or live traffic of an NMEA 2000
network, the CAN bus of boats: one line for each stream of messages, rewritten
in place, with its fields in units of the user's choice, and the devices of the
bus.")

set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/debian/finish.cmake)
set(CPACK_PGN_VISTEL_SOURCE_DIR ${PROJECT_SOURCE_DIR})
set(CPACK_PGN_VISTEL_LIBRARY_DIR ${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR})
include(CPack)

# What is installed, in four components: library (the shared library), development (what a host is built with), programs
# and monitor, the program with windows. On Windows examples and a readme go with them, for there is one package
# (script/windows). The CMake package and the pkg-config files are made from packaging/.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/pgn_vistel)
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
set(doc_dir ${CMAKE_INSTALL_DATAROOTDIR}/doc/pgn-vistel)
set(made_dir ${PROJECT_BINARY_DIR}/packaging)

# ---- headers and libraries ----

install(DIRECTORY include/pgn_vistel ${tables_dir}/pgn_vistel DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        COMPONENT development)
install(TARGETS pgn_vistel_core EXPORT core ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
install(EXPORT core FILE pgn_vistel-core-targets.cmake NAMESPACE pgn_vistel:: DESTINATION ${package_dir}
        COMPONENT development)
if(TARGET pgn_vistel)
    install(DIRECTORY src/platform/${PGN_VISTEL_PLATFORM}/public/pgn_vistel
            DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
    set(windows_targets)
    if(WIN32)
        set(windows_targets pgn_vistel_host pgn_vistel_views)
        install(FILES $<TARGET_FILE_DIR:pgn_vistel>/pgn_vistel_msvc.lib DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
    endif()
    install(TARGETS pgn_vistel ${windows_targets} EXPORT views
            RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT library
            ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
            LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development)
    install(EXPORT views FILE pgn_vistel-views-targets.cmake NAMESPACE pgn_vistel:: DESTINATION ${package_dir}
            COMPONENT development)
    install(FILES cmake/toolkit.cmake RENAME pgn_vistel-toolkit.cmake DESTINATION ${package_dir}
            COMPONENT development)
endif()

# ---- CMake package ----

# Before version 1 a new minor version may be another interface (docs/versioning.md).
set(compatibility SameMajorVersion)
if(PROJECT_VERSION_MAJOR EQUAL 0)
    set(compatibility SameMinorVersion)
endif()
write_basic_package_version_file(${made_dir}/pgn_vistel-config-version.cmake COMPATIBILITY ${compatibility})
install(FILES packaging/pgn_vistel-config.cmake ${made_dir}/pgn_vistel-config-version.cmake
        DESTINATION ${package_dir} COMPONENT development)

# ---- pkg-config ----

# Relative to where the file itself lies: the installed tree may be moved.
file(RELATIVE_PATH up_to_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" up_to_prefix "${up_to_prefix}")
set(pkgconfig_files pgn_vistel-core)
if(WIN32)
    set(pkgconfig_files)  # there is none
elseif(TARGET pgn_vistel)
    list(APPEND pkgconfig_files pgn_vistel)
    get_target_property(toolkit_includes pgn_vistel::toolkit INTERFACE_INCLUDE_DIRECTORIES)
    get_target_property(toolkit_definitions pgn_vistel::toolkit INTERFACE_COMPILE_DEFINITIONS)
    get_target_property(toolkit_options pgn_vistel::toolkit INTERFACE_COMPILE_OPTIONS)
    get_target_property(toolkit_libs pgn_vistel::toolkit INTERFACE_LINK_LIBRARIES)
    list(TRANSFORM toolkit_includes PREPEND -I)
    list(TRANSFORM toolkit_definitions PREPEND -D)
    set(toolkit_cflags ${toolkit_includes} ${toolkit_definitions} ${toolkit_options})
    foreach(flags toolkit_cflags toolkit_libs)
        list(REMOVE_ITEM ${flags} "")
        list(JOIN ${flags} " " ${flags})
    endforeach()
endif()
foreach(name IN LISTS pkgconfig_files)
    configure_file(packaging/${name}.pc.in ${made_dir}/${name}.pc @ONLY)
    install(FILES ${made_dir}/${name}.pc DESTINATION ${pkgconfig_dir} COMPONENT development)
endforeach()

# ---- programs ----

foreach(program vistel vistel-monitor vistel-top)
    set(component programs)
    if(program STREQUAL vistel-monitor)
        set(component monitor)
    endif()
    if(TARGET ${program})
        install(TARGETS ${program} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT ${component})
    endif()
    if(TARGET ${program} AND NOT WIN32)
        configure_file(man/${program}.1.in ${made_dir}/${program}.1 @ONLY)
        install(FILES ${made_dir}/${program}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT ${component})
    endif()
endforeach()
if(TARGET vistel AND NOT CMAKE_CROSSCOMPILING)  # they are run for it
    include(completion)
endif()
if(TARGET vistel-monitor AND NOT WIN32)
    include(desktop)
endif()
if(TARGET vistel)
    install(FILES examples/voyage.log DESTINATION ${doc_dir}/examples COMPONENT programs)
endif()

# ---- Windows ----

if(WIN32 AND PGN_VISTEL_EXAMPLES)
    foreach(host decode_host toolkit_host win32_host win32_tree_host)
        if(TARGET ${host})
            install(TARGETS ${host} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT programs)
            install(FILES examples/${host}.cpp DESTINATION ${doc_dir}/examples COMPONENT programs)
        endif()
    endforeach()
    if(TARGET microsoft_host)
        install(PROGRAMS ${PROJECT_BINARY_DIR}/examples/microsoft_host.exe
                DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT programs)
        install(FILES examples/microsoft_host.cpp DESTINATION ${doc_dir}/examples COMPONENT programs)
    endif()
    install(FILES examples/made_up_traffic.h examples/tree_lines.h examples/win32_host.rc DESTINATION ${doc_dir}/examples COMPONENT programs)
    install(FILES packaging/windows/README.md DESTINATION . COMPONENT programs)
endif()

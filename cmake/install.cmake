# Headers, the core library and a CMake package: find_package(pgn_vistel) gives pgn_vistel::core.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/pgn_vistel)
install(DIRECTORY include/pgn_vistel DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS pgn_vistel_core EXPORT pgn_vistel_targets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(EXPORT pgn_vistel_targets FILE pgn_vistel_targets.cmake NAMESPACE pgn_vistel:: DESTINATION ${package_dir})
foreach(program vistel vistel-monitor)
    if(TARGET ${program})
        install(TARGETS ${program} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    endif()
endforeach()

write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/pgn_vistel-config-version.cmake
                                 COMPATIBILITY SameMajorVersion)
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/pgn_vistel-config.cmake
     "include(\${CMAKE_CURRENT_LIST_DIR}/pgn_vistel_targets.cmake)\n")
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/pgn_vistel-config.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/pgn_vistel-config-version.cmake
        DESTINATION ${package_dir})

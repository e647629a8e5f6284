# What a desktop shows of the monitor: an entry in its menus, with the icon, and what software centres say of it.
set(icons_dir ${PROJECT_BINARY_DIR}/hicolor)
set(icon_tool ${PROJECT_SOURCE_DIR}/tools/icon/icon.py)
add_custom_command(
    OUTPUT ${icons_dir}/made
    COMMAND ${Python3_EXECUTABLE} ${icon_tool} ${icons_dir} vistel-monitor
    COMMAND ${CMAKE_COMMAND} -E touch ${icons_dir}/made
    DEPENDS ${icon_tool}
    COMMENT "Icons"
    VERBATIM)
add_custom_target(icons ALL DEPENDS ${icons_dir}/made)

install(DIRECTORY ${icons_dir} DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/icons COMPONENT monitor
        FILES_MATCHING PATTERN "*.png")
install(FILES packaging/desktop/vistel-monitor.desktop
        DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/applications COMPONENT monitor)
install(FILES packaging/desktop/vistel-monitor.metainfo.xml
        DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/metainfo COMPONENT monitor)

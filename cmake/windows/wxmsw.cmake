# Which wxWidgets the windows are built with: the initial cache of its own build, for script/windows. All in one static
# library, with what the windows and their tests use.
set(CMAKE_BUILD_TYPE Release CACHE STRING "")
set(wxBUILD_SHARED OFF CACHE BOOL "")
set(wxBUILD_MONOLITHIC ON CACHE BOOL "")
set(wxBUILD_USE_STATIC_RUNTIME ON CACHE BOOL "")
set(wxUSE_REPRODUCIBLE_BUILD ON CACHE BOOL "")
# The library has this path in it, so it is not the one that it is installed at.
set(CMAKE_INSTALL_PREFIX /wxwidgets CACHE PATH "")
# A failed assertion would show a message box in the host.
set(wxBUILD_DEBUG_LEVEL 0 CACHE STRING "")

# Libraries on top, and those that Debian's source leaves out.
foreach(feature
        AUI DEBUGREPORT HELP HTML MEDIACTRL OPENGL PROPGRID RIBBON RICHTEXT STC WEBVIEW WXHTML_HELP MS_HTML_HELP XML XRC
        EXPAT LIBJPEG LIBPNG LIBTIFF NANOSVG REGEX ZLIB
        ARCHIVE_STREAMS FS_ARCHIVE FS_INET FS_ZIP TARSTREAM ZIPSTREAM
        DIALUP_MANAGER IPC IPV6 PROTOCOL PROTOCOL_FILE PROTOCOL_FTP PROTOCOL_HTTP SOCKETS URL WEBREQUEST
        ACCESSIBILITY ACTIVEX ARTPROVIDER_TANGO CRASHREPORT DBGHELP JOYSTICK ON_FATAL_EXCEPTION POSTSCRIPT
        PRINTING_ARCHITECTURE SECRETSTORE SOUND SPELLCHECK STACKWALKER SVG)
    set(wxUSE_${feature} OFF CACHE STRING "")
endforeach()

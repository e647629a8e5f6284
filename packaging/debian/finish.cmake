# What Debian wants of the staged trees beyond what was installed. CPack reads this before it makes the packages, and
# what is set here holds for them.
set(staging ${CPACK_TEMPORARY_DIRECTORY})

function(run)
    execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
    set(output "${output}" PARENT_SCOPE)
endfunction()

# ---- documents of each package ----

set(debian_version ${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)  # SOURCE_DATE_EPOCH, where it is set
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} upper)
    set(documents ${staging}/${component}/usr/share/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
    configure_file(${CPACK_PGN_VISTEL_SOURCE_DIR}/packaging/debian/copyright ${documents}/copyright COPYONLY)
    configure_file(${CPACK_PGN_VISTEL_SOURCE_DIR}/CHANGELOG.md ${documents}/changelog COPYONLY)
    file(WRITE ${documents}/changelog.Debian
         "pgn-vistel (${debian_version}) UNRELEASED; urgency=medium\n\n"
         "  * Built from version ${CPACK_PACKAGE_VERSION}; what is new in it stands in changelog.gz.\n\n"
         " -- ${CPACK_PACKAGE_CONTACT}  ${date}\n")
    run(gzip -9nf ${documents}/changelog ${documents}/changelog.Debian)
    if(component MATCHES "^(programs|monitor)$")
        configure_file(${CPACK_PGN_VISTEL_SOURCE_DIR}/packaging/debian/lintian-overrides
                       ${staging}/${component}/usr/share/lintian/overrides/${CPACK_DEBIAN_${upper}_PACKAGE_NAME} COPYONLY)
    endif()
endforeach()
file(GLOB pages ${staging}/*/usr/share/man/man1/*.1)
run(gzip -9nf ${pages})

# ---- libraries ----

# The static library must be good for other compilers: without what link-time optimisation left in it.
file(GLOB static_library ${staging}/development${CPACK_PGN_VISTEL_LIBRARY_DIR}/*.a)
run(strip --strip-debug --enable-deterministic-archives --remove-section=.comment
    --remove-section=.gnu.lto_* --remove-section=.gnu.debuglto_* -N __gnu_lto_slim -N __gnu_lto_v1 ${static_library})

# CPack would find these dependencies, too, but then adds scripts that call ldconfig, which is the trigger's task.
file(GLOB shared_library ${staging}/library${CPACK_PGN_VISTEL_LIBRARY_DIR}/*.so.*.*)
file(WRITE ${staging}/shlibdeps/debian/control "Source: pgn-vistel\n\nPackage: any\nArchitecture: any\n")
run(dpkg-shlibdeps -O -e${shared_library} WORKING_DIRECTORY ${staging}/shlibdeps)
string(REGEX REPLACE "^shlibs:Depends=|\n" "" CPACK_DEBIAN_LIBRARY_PACKAGE_DEPENDS "${output}")
file(REMOVE_RECURSE ${staging}/shlibdeps)

# add_room(NAME SOURCES ... USES room ...): one room of src/ as an object library.
#
# A room sees its own headers, those of the rooms that it uses, and the public ones. Each room's headers are
# reached through a folder that holds this room alone, so an include against the direction does not build.
function(add_room name)
    cmake_parse_arguments(ROOM "" "" "SOURCES;USES" ${ARGN})
    set(view ${PROJECT_BINARY_DIR}/rooms/${name})
    file(MAKE_DIRECTORY ${view})
    file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR} ${view}/${name} SYMBOLIC)

    add_library(room_${name} OBJECT ${ROOM_SOURCES})
    target_include_directories(room_${name} PUBLIC ${PROJECT_SOURCE_DIR}/include ${view})
    target_compile_definitions(room_${name} PRIVATE PGN_VISTEL_BUILD)
    target_link_libraries(room_${name} PRIVATE project_options tables)
    foreach(used IN LISTS ROOM_USES)
        target_include_directories(room_${name}
                                   PUBLIC $<TARGET_PROPERTY:room_${used},INTERFACE_INCLUDE_DIRECTORIES>)
    endforeach()
    add_dependencies(room_${name} generate_tables)
endfunction()

# Rooms: folders whose includes go one way only.
#
# A room sees its own headers, those of the rooms that it uses, and the public ones. Each room's headers are
# reached through a folder that holds this room alone, so an include against the direction does not build
# (tests/rooms).

# add_room_target(TARGET KIND SOURCE ...): the calling folder as a room, in a library of this kind.
function(add_room_target target kind)
    cmake_path(GET CMAKE_CURRENT_SOURCE_DIR FILENAME room)
    set(view ${PROJECT_BINARY_DIR}/rooms/${target})
    file(MAKE_DIRECTORY ${view})
    file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR} ${view}/${room} SYMBOLIC)

    add_library(${target} ${kind} ${ARGN})
    if(kind STREQUAL INTERFACE)
        target_include_directories(${target} INTERFACE ${view})
    else()
        target_include_directories(${target} PUBLIC ${view})
        target_link_libraries(${target} PRIVATE project_options)
    endif()
endfunction()

# add_room(NAME SOURCES ... USES room ...): one room of src/ as an object library.
function(add_room name)
    cmake_parse_arguments(ROOM "" "" "SOURCES;USES" ${ARGN})
    add_room_target(room_${name} OBJECT ${ROOM_SOURCES})
    target_include_directories(room_${name} PUBLIC ${PROJECT_SOURCE_DIR}/include)
    target_compile_definitions(room_${name} PRIVATE PGN_VISTEL_STATIC)
    target_link_libraries(room_${name} PRIVATE tables)
    foreach(used IN LISTS ROOM_USES)
        target_include_directories(room_${name}
                                   PUBLIC $<TARGET_PROPERTY:room_${used},INTERFACE_INCLUDE_DIRECTORIES>)
    endforeach()
    add_dependencies(room_${name} generate_tables)
endfunction()

# add_host_room(NAME SOURCES ... USES target ...): one room of host/ as the library vistel_NAME; without sources it is
# headers alone.
function(add_host_room name)
    cmake_parse_arguments(ROOM "" "" "SOURCES;USES" ${ARGN})
    if(ROOM_SOURCES)
        add_room_target(vistel_${name} STATIC ${ROOM_SOURCES})
        target_link_libraries(vistel_${name} PUBLIC ${ROOM_USES})
    else()
        add_room_target(vistel_${name} INTERFACE)
        target_link_libraries(vistel_${name} INTERFACE ${ROOM_USES})
    endif()
endfunction()

# Turns the text tables of data/ into constant tables: the target `tables` brings the folder that holds them.
find_package(Python3 3.9 REQUIRED COMPONENTS Interpreter)

set(tables_dir ${CMAKE_CURRENT_BINARY_DIR}/generated)
set(tables_stamp ${tables_dir}/tables.stamp)
file(GLOB table_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/data/*.tsv
     ${CMAKE_CURRENT_SOURCE_DIR}/data/*/*.tsv ${CMAKE_CURRENT_SOURCE_DIR}/tools/tablegen/*.py)

add_custom_command(
    OUTPUT ${tables_stamp}
    COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/tools/tablegen/tablegen.py
            --data ${CMAKE_CURRENT_SOURCE_DIR}/data --out ${tables_dir}
    COMMAND ${CMAKE_COMMAND} -E touch ${tables_stamp}
    DEPENDS ${table_sources}
    COMMENT "Tables from data/"
    VERBATIM)
add_custom_target(generate_tables DEPENDS ${tables_stamp})

add_library(tables INTERFACE)
target_include_directories(tables INTERFACE ${tables_dir})
add_dependencies(tables generate_tables)

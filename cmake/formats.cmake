# What code and manual say of the formats of recordings, out of one table.
set(formats_table ${PROJECT_SOURCE_DIR}/host/readers/formats.tsv)
set(formats_generator ${PROJECT_SOURCE_DIR}/tools/formats/formats.py)
set(formats_dir ${PROJECT_BINARY_DIR}/generated/formats)

# While configuring: the man page is configured with it.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${formats_table} ${formats_generator})
execute_process(COMMAND ${Python3_EXECUTABLE} ${formats_generator} ${formats_table} --out ${formats_dir}
                COMMAND_ERROR_IS_FATAL ANY)
file(READ ${formats_dir}/formats.man formats_manual)
string(STRIP "${formats_manual}" formats_manual)

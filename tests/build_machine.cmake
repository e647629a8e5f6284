# Tests of what the build machine runs itself.
add_subdirectory(rooms)

if(TARGET vistel)
    add_test(NAME program COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/host/program_test.py)
    add_library(no_arguments MODULE host/no_arguments.cpp)
    target_link_libraries(no_arguments PRIVATE project_options)
    target_compile_options(no_arguments PRIVATE -fno-sanitize=all)  # it runs before their runtime
    target_link_options(no_arguments PRIVATE -fno-sanitize=all)
    set_tests_properties(program PROPERTIES
                         TIMEOUT 300
                         ENVIRONMENT "VISTEL=$<TARGET_FILE:vistel>;NO_ARGUMENTS=$<TARGET_FILE:no_arguments>")
    foreach(name readme completion)
        add_test(NAME ${name} COMMAND ${Python3_EXECUTABLE} ${CMAKE_CURRENT_SOURCE_DIR}/host/${name}_test.py)
        set_tests_properties(${name} PROPERTIES
                             TIMEOUT 300
                             ENVIRONMENT "VISTEL=$<TARGET_FILE:vistel>;COMPLETIONS=${PROJECT_BINARY_DIR}/completion")
    endforeach()
    add_test(NAME voyage COMMAND ${Python3_EXECUTABLE} ${PROJECT_SOURCE_DIR}/tools/voyage/test_voyage.py)
    set_tests_properties(voyage PROPERTIES ENVIRONMENT "VISTEL=$<TARGET_FILE:vistel>")
endif()

set(tablegen_dir ${PROJECT_SOURCE_DIR}/tools/tablegen)
add_test(NAME tablegen COMMAND ${Python3_EXECUTABLE} ${tablegen_dir}/test_tablegen.py)
add_test(NAME tablegen_overlay COMMAND ${Python3_EXECUTABLE} ${tablegen_dir}/test_overlay.py)
add_test(NAME tablegen_corrected COMMAND ${Python3_EXECUTABLE} ${tablegen_dir}/test_corrected.py)
add_test(NAME tables_summary COMMAND ${Python3_EXECUTABLE} ${tablegen_dir}/tablegen.py
                                     --data ${PROJECT_SOURCE_DIR}/data --check-summary)

set(generator ${PROJECT_SOURCE_DIR}/tools/formats)
add_test(NAME formats COMMAND ${Python3_EXECUTABLE} ${generator}/test_formats.py)
add_test(NAME formats_document COMMAND ${Python3_EXECUTABLE} ${generator}/formats.py
         ${PROJECT_SOURCE_DIR}/host/readers/formats.tsv --check-document ${PROJECT_SOURCE_DIR}/docs/formats.md
         ${PROJECT_SOURCE_DIR}/README.md)

set(consistency_dir ${PROJECT_SOURCE_DIR}/tools/consistency)
add_test(NAME consistency COMMAND ${Python3_EXECUTABLE} ${consistency_dir}/consistency.py
                                  --data ${PROJECT_SOURCE_DIR}/data)
add_test(NAME consistency_rules COMMAND ${Python3_EXECUTABLE} ${consistency_dir}/test_consistency.py)

# The installed tree alone must be enough for a project of its own.
set(installed_parts core)
if(TARGET pgn_vistel)
    string(APPEND installed_parts ,views)
endif()
add_test(NAME consumer
         COMMAND ${CMAKE_COMMAND} -DBUILD=${PROJECT_BINARY_DIR} -DSOURCE=${CMAKE_CURRENT_SOURCE_DIR}/consumer
                 -DSCRATCH=${CMAKE_CURRENT_BINARY_DIR}/consumer -DCOMPILER=${CMAKE_CXX_COMPILER}
                 -DFLAGS=${CMAKE_CXX_FLAGS} -DPARTS=${installed_parts}
                 -DREADME=${PROJECT_SOURCE_DIR}/README.md
                 -P ${CMAKE_CURRENT_SOURCE_DIR}/consumer/check.cmake)

# cmake -DBUILD=... -DSOURCE=... -DSCRATCH=... -DCOMPILER=... -DFLAGS=... -DPARTS=core,views -DREADME=... -P check.cmake
# Installs the project into a scratch folder and builds and runs hosts against that alone: with the CMake package, and
# with what pkg-config says.
cmake_minimum_required(VERSION 3.25)
separate_arguments(flag_list UNIX_COMMAND "${FLAGS}")

function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT status EQUAL 0)
        message(FATAL_ERROR "${ARGN}\n${output}")
    endif()
    set(output "${output}" PARENT_SCOPE)
endfunction()

# configure(FOLDER OPTION...): the consumer project against the installed tree.
macro(configure folder)
    set(configure_command ${CMAKE_COMMAND} -S ${SOURCE} -B ${SCRATCH}/${folder} -G Ninja
        -DCMAKE_PREFIX_PATH=${SCRATCH}/prefix -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_CXX_FLAGS=${FLAGS} ${ARGN})
endmacro()

# refused(TEXT OPTION...): configuring fails and says so.
function(refused text)
    configure(refused ${ARGN})
    execute_process(COMMAND ${configure_command} RESULT_VARIABLE status OUTPUT_QUIET ERROR_VARIABLE output)
    string(REGEX REPLACE "[ \n]+" " " output "${output}")
    if(status EQUAL 0 OR NOT output MATCHES "${text}")
        message(FATAL_ERROR "${ARGN}: should have failed with '${text}'\n${output}")
    endif()
    file(REMOVE_RECURSE ${SCRATCH}/refused)
endfunction()

file(REMOVE_RECURSE ${SCRATCH})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${SCRATCH}/installed)
# Found wherever it lies: it was not built for this place.
file(RENAME ${SCRATCH}/installed ${SCRATCH}/prefix)

# ---- the CMake package ----

configure(build -DPARTS=${PARTS})
run(${configure_command})
run(${CMAKE_COMMAND} --build ${SCRATCH}/build)
run(${CMAKE_CTEST_COMMAND} --test-dir ${SCRATCH}/build --output-on-failure --no-tests=error)

# A host without windows needs no wxWidgets.
set(no_toolkit -DCMAKE_DISABLE_FIND_PACKAGE_wxWidgets=ON)
configure(bare -DPARTS=core ${no_toolkit})
run(${configure_command})
refused("No component 'radar'" -DPARTS=radar)
if(PARTS MATCHES views)
    refused("No component 'views': wxWidgets 3.2 is not there" -DPARTS=views ${no_toolkit})
else()
    refused("No component 'views': this PGN Vistel was built without" -DPARTS=views)
endif()

# ---- what README.md shows of a program of one's own ----

file(READ ${README} readme)
foreach(language cmake cpp)
    if(NOT readme MATCHES "\n```${language}\n([^`]*)\n```\n")
        message(FATAL_ERROR "README.md has no block of ${language}")
    endif()
    set(${language}_block "${CMAKE_MATCH_1}\n")
endforeach()
file(WRITE ${SCRATCH}/readme_source/main.cpp "${cpp_block}")
file(WRITE ${SCRATCH}/readme_source/CMakeLists.txt
     "cmake_minimum_required(VERSION 3.25)\nproject(readme LANGUAGES CXX)\nadd_executable(my_gateway main.cpp)\n${cmake_block}")
set(everything_said "${FLAGS} -Wall -Wextra -Werror")
run(${CMAKE_COMMAND} -S ${SCRATCH}/readme_source -B ${SCRATCH}/readme -G Ninja -DCMAKE_PREFIX_PATH=${SCRATCH}/prefix
    -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_CXX_FLAGS=${everything_said})
run(${CMAKE_COMMAND} --build ${SCRATCH}/readme)
run(${SCRATCH}/readme/my_gateway)
if(NOT output MATCHES "^{.*}\n0\\.0 m\n$")
    message(FATAL_ERROR "README.md's program prints ${output}")
endif()

# ---- pkg-config ----

file(GLOB_RECURSE pkgconfig_files ${SCRATCH}/prefix/*.pc)
list(GET pkgconfig_files 0 first)
get_filename_component(pkgconfig_dir ${first} DIRECTORY)
get_filename_component(library_dir ${pkgconfig_dir} DIRECTORY)
find_program(PKG_CONFIG pkg-config REQUIRED)

# check_pkgconfig(MODULE HOST)
function(check_pkgconfig module host units)
    run(${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${pkgconfig_dir} ${PKG_CONFIG} --cflags --libs ${module})
    separate_arguments(flags UNIX_COMMAND "${output}")
    run(${COMPILER} ${flag_list} -std=c++20 ${SOURCE}/${host}.cpp ${flags} -o ${SCRATCH}/${host})
    run(${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${library_dir} ${SCRATCH}/${host})
    if(NOT output MATCHES "^${units} units\n.*Speed Water Referenced: 3\\.8877 kt")
        message(FATAL_ERROR "${module}: ${output}")
    endif()
endfunction()
check_pkgconfig(pgn_vistel-core lines 141)
if(PARTS MATCHES views)
    check_pkgconfig(pgn_vistel tree 140)
endif()

# cmake -DBUILD=... -DSOURCE=... -DSCRATCH=... -DCOMPILER=... -DFLAGS=... -P check.cmake
# Installs the project into a scratch folder and builds and runs the consumer against that alone.
function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT status EQUAL 0)
        message(FATAL_ERROR "${ARGN}\n${output}")
    endif()
endfunction()

file(REMOVE_RECURSE ${SCRATCH})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${SCRATCH}/prefix)
run(${CMAKE_COMMAND} -S ${SOURCE} -B ${SCRATCH}/build -G Ninja -DCMAKE_PREFIX_PATH=${SCRATCH}/prefix
    -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_CXX_FLAGS=${FLAGS})
run(${CMAKE_COMMAND} --build ${SCRATCH}/build)
run(${CMAKE_CTEST_COMMAND} --test-dir ${SCRATCH}/build --output-on-failure --no-tests=error)

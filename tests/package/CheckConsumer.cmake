# Installs the build in BUILD_DIR into a scratch prefix, then configures, builds
# and runs examples/consumer against that prefix with find_package only.
set(prefix ${BUILD_DIR}/package-test/prefix)
set(consumer_build ${BUILD_DIR}/package-test/consumer)
file(REMOVE_RECURSE ${BUILD_DIR}/package-test)

function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed (${rc}): ${ARGN}\n${out}")
  endif()
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
run(${CMAKE_COMMAND} -S ${SOURCE_DIR}/examples/consumer -B ${consumer_build} -G Ninja
    -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_BUILD_TYPE=Release)
run(${CMAKE_COMMAND} --build ${consumer_build})
run(${consumer_build}/consumer)
message(STATUS "consumer built and ran against ${prefix}")

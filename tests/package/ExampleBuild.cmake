# Helpers shared by the package tests: run a command or fail with its output,
# and build and run one example project against a given prefix.

# run(<command>...): fails the test with the command's output unless it succeeds.
# The output is left in RUN_OUTPUT.
function(run)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed (${rc}): ${ARGN}\n${out}")
  endif()
  set(RUN_OUTPUT "${out}" PARENT_SCOPE)
endfunction()

# build_example(<name> <prefix> <work dir> <expected output regex>): configures
# examples/<name> with only <prefix> to find the package in, builds it, runs
# the executable (LD_LIBRARY_PATH from the variable of that name, if set) and
# checks that it succeeds and prints a match of the regex.
function(build_example name prefix work expected)
  set(bin ${work}/${name})
  run(${CMAKE_COMMAND} -S ${SOURCE_DIR}/examples/${name} -B ${bin} -G Ninja
      -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_BUILD_TYPE=Release)
  run(${CMAKE_COMMAND} --build ${bin})
  string(REPLACE "-" "_" exe ${name})
  set(env QT_QPA_PLATFORM=offscreen)
  if(LD_LIBRARY_PATH)
    list(APPEND env LD_LIBRARY_PATH=${LD_LIBRARY_PATH})
  endif()
  run(${CMAKE_COMMAND} -E env ${env} ${bin}/${exe})
  if(NOT RUN_OUTPUT MATCHES "${expected}")
    message(FATAL_ERROR "${name}: unexpected output:\n${RUN_OUTPUT}")
  endif()
  message(STATUS "${name}: built and ran against ${prefix}")
endfunction()

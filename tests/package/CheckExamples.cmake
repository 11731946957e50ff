# Installs the build in BUILD_DIR into a scratch prefix once, then builds and
# runs every example application against that prefix, with find_package only.
include(${CMAKE_CURRENT_LIST_DIR}/ExampleBuild.cmake)

set(work ${BUILD_DIR}/package-test)
set(prefix ${work}/prefix)
file(REMOVE_RECURSE ${work})

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
build_example(consumer ${prefix} ${work} "natural order starts with sh1,")
build_example(console-app ${prefix} ${work} "\\[I\\] saved .*log: 6 lines, channel: 1 reports")
build_example(process-tool ${prefix} ${work} "said \"SH010 SH020\", \"done\", status 7")
build_example(timers ${prefix} ${work} "tick 5\n5 ticks, alarm rang")

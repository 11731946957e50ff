# Makes the Debian package from the build in BUILD_DIR, checks its
# dependencies, unpacks it into a scratch root and builds and runs
# examples/consumer against that root alone.
include(${CMAKE_CURRENT_LIST_DIR}/ExampleBuild.cmake)

set(work ${BUILD_DIR}/package-deb)
set(root ${work}/root)
file(REMOVE_RECURSE ${work})

run(${CPACK_COMMAND} --config ${BUILD_DIR}/CPackConfig.cmake -B ${work}/cpack)
file(GLOB debs ${work}/cpack/*.deb)
list(LENGTH debs count)
if(NOT count EQUAL 1)
  message(FATAL_ERROR "expected one .deb, got: ${debs}")
endif()

run(dpkg-deb --field ${debs} Package Depends)
foreach(expected "Package: libbrindlebasecore-dev" libqt6core6 libqt6gui6 libtbb12 qt6-base-dev
                 libtbb-dev)
  string(FIND "${RUN_OUTPUT}" "${expected}" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "control fields lack '${expected}':\n${RUN_OUTPUT}")
  endif()
endforeach()

run(dpkg -x ${debs} ${root})
file(STRINGS ${root}/usr/lib/pkgconfig/brindlebasecore.pc pc_prefix REGEX "^prefix=")
if(NOT pc_prefix STREQUAL "prefix=/usr")
  message(FATAL_ERROR "pkg-config file has ${pc_prefix}, not prefix=/usr")
endif()

set(LD_LIBRARY_PATH ${root}/usr/lib)
build_example(consumer ${root}/usr ${work} "natural order starts with sh1,")

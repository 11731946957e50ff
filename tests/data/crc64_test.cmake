# The kernels are also compiled into the test so that every one of them is
# checked, not only the one this processor selects.
target_sources(${BRINDLE_TEST_TARGET} PRIVATE ${PROJECT_SOURCE_DIR}/src/data/CRC64Kernels.cpp)
target_include_directories(${BRINDLE_TEST_TARGET} PRIVATE ${PROJECT_SOURCE_DIR}/src/data)

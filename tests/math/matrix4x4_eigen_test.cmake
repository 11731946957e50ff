# The property test compares with Eigen (header-only, test only).
find_package(Eigen3 3.3 REQUIRED NO_MODULE)
target_link_libraries(${BRINDLE_TEST_TARGET} PRIVATE Eigen3::Eigen)

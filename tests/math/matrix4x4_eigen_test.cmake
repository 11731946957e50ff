# The property test compares with Eigen (header-only, test only).
find_package(Eigen3 3.3 REQUIRED NO_MODULE)
target_link_libraries(${BRINDLE_TEST_TARGET} PRIVATE Eigen3::Eigen)

# The inverse again with the kernel capped at each lower level the
# processor may pick (a level the processor lacks falls back and still
# passes).
foreach(_level portable avx2)
  add_test(NAME ${BRINDLE_TEST_NAME}_${_level}
           COMMAND ${BRINDLE_TEST_TARGET} --gtest_filter=*Inverse*:*Singular*)
  set_tests_properties(${BRINDLE_TEST_NAME}_${_level} PROPERTIES LABELS math
                       ENVIRONMENT "BRINDLE_MATH_KERNEL=${_level}")
endforeach()

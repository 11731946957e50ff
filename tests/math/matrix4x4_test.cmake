# The identity copies again on the narrow path, and built for AVX, where the
# wide path needs no test at run time.
add_test(NAME ${BRINDLE_TEST_NAME}_portable
         COMMAND ${BRINDLE_TEST_TARGET} --gtest_filter=*CopyExactly*)
set_tests_properties(${BRINDLE_TEST_NAME}_portable PROPERTIES LABELS math
                     ENVIRONMENT "BRINDLE_MATH_KERNEL=portable")
if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
  add_executable(${BRINDLE_TEST_TARGET}_avx ${src})
  target_compile_options(${BRINDLE_TEST_TARGET}_avx PRIVATE -mavx)
  target_link_libraries(${BRINDLE_TEST_TARGET}_avx PRIVATE brindle_test_support GTest::gtest_main)
  add_test(NAME ${BRINDLE_TEST_NAME}_avx
           COMMAND ${BRINDLE_TEST_TARGET}_avx --gtest_filter=*CopyExactly*)
  set_tests_properties(${BRINDLE_TEST_NAME}_avx PROPERTIES LABELS math)
endif()

find_package(OpenSSL REQUIRED COMPONENTS Crypto)
target_link_libraries(${BRINDLE_BENCH_TARGET} PRIVATE OpenSSL::Crypto)

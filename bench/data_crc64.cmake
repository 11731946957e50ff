find_package(PkgConfig REQUIRED)
pkg_check_modules(BRINDLE_ISAL REQUIRED IMPORTED_TARGET libisal)
target_link_libraries(${BRINDLE_BENCH_TARGET} PRIVATE PkgConfig::BRINDLE_ISAL)

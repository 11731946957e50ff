# Peers of the geometry benchmark: Eigen and glm (header-only).
find_package(Eigen3 3.3 REQUIRED NO_MODULE)
find_package(glm REQUIRED)
target_link_libraries(${BRINDLE_BENCH_TARGET} PRIVATE Eigen3::Eigen glm::glm)

find_package(nlohmann_json REQUIRED)
target_link_libraries(${BRINDLE_BENCH_TARGET} PRIVATE nlohmann_json::nlohmann_json)

# Stack trace symbols: the DWARF and ELF reader of elfutils.
find_package(PkgConfig REQUIRED)
pkg_check_modules(BRINDLE_LIBDW REQUIRED libdw)
target_include_directories(BrindleBaseCore SYSTEM PRIVATE ${BRINDLE_LIBDW_INCLUDE_DIRS})
target_link_libraries(BrindleBaseCore PRIVATE ${BRINDLE_LIBDW_LINK_LIBRARIES})

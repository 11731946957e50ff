# Installation: the library, its headers, a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)

set(BRINDLE_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/BrindleBaseCore)

install(TARGETS BrindleBaseCore EXPORT BrindleBaseCoreTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/BrindleBaseCore
                  ${PROJECT_BINARY_DIR}/include/BrindleBaseCore
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
        FILES_MATCHING PATTERN "*.h")
install(EXPORT BrindleBaseCoreTargets
  NAMESPACE BrindleBaseCore::
  DESTINATION ${BRINDLE_CMAKE_DIR})

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/BrindleBaseCoreConfig.cmake.in
  ${PROJECT_BINARY_DIR}/BrindleBaseCoreConfig.cmake
  INSTALL_DESTINATION ${BRINDLE_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/BrindleBaseCoreConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/BrindleBaseCoreConfig.cmake
              ${PROJECT_BINARY_DIR}/BrindleBaseCoreConfigVersion.cmake
        DESTINATION ${BRINDLE_CMAKE_DIR})

configure_file(${PROJECT_SOURCE_DIR}/cmake/brindlebasecore.pc.in
               ${PROJECT_BINARY_DIR}/brindlebasecore.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/brindlebasecore.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# Data files an area installs (translations, ...) are added by the area itself.
if(BRINDLE_BUILD_TOOLS)
  install(TARGETS brindle RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

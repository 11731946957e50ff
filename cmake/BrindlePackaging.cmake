# Debian package: `cpack -G DEB` in the build tree makes one development
# package, libbrindlebasecore-dev, holding everything that is installed (the
# shared library, headers, CMake package, pkg-config file, translations and the
# brindle tool), installed under /usr. It depends on Debian's Qt 6 and oneTBB
# runtime packages, and on their development packages, since the CMake package
# finds Qt6 and TBB itself.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME libbrindlebasecore-dev)
set(CPACK_PACKAGE_VENDOR "BrindleBaseCore developers")
set(CPACK_PACKAGE_CONTACT "BrindleBaseCore developers <brindlebasecore@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
    "Base library of the animation applications (shared library and development files)")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_DEPENDS
    "libc6 (>= 2.36), libstdc++6 (>= 12), libqt6core6 (>= 6.4), libqt6gui6 (>= 6.4), libtbb12, qt6-base-dev (>= 6.4), libtbb-dev")

# The pkg-config file is written for the build's own install prefix; in the
# package it must name /usr.
set(_brindle_fix_pc ${PROJECT_BINARY_DIR}/BrindlePackagePcPrefix.cmake)
file(WRITE ${_brindle_fix_pc} [=[
file(GLOB_RECURSE _pc "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*/brindlebasecore.pc")
foreach(_file IN LISTS _pc)
  file(READ ${_file} _text)
  string(REGEX REPLACE "(^|\n)prefix=[^\n]*" "\\1prefix=${CPACK_PACKAGING_INSTALL_PREFIX}" _text "${_text}")
  file(WRITE ${_file} "${_text}")
endforeach()
]=])
set(CPACK_PRE_BUILD_SCRIPTS ${_brindle_fix_pc})

include(CPack)

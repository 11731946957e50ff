# The reference manual: `cmake --build --preset release --target docs` writes
# build/<preset>/docs/html. With BRINDLE_DOCS_STRICT (CI) an undocumented
# exported name or a documentation error fails the build.
option(BRINDLE_DOCS_STRICT "Fail the manual on any Doxygen warning" OFF)
find_program(BRINDLE_DOXYGEN doxygen)
if(BRINDLE_DOXYGEN)
  set(BRINDLE_DOCS_OUTPUT ${PROJECT_BINARY_DIR}/docs)
  if(BRINDLE_DOCS_STRICT)
    set(BRINDLE_DOCS_WARN_AS_ERROR FAIL_ON_WARNINGS)
  else()
    set(BRINDLE_DOCS_WARN_AS_ERROR NO)
  endif()
  configure_file(${PROJECT_SOURCE_DIR}/docs/Doxyfile.in ${BRINDLE_DOCS_OUTPUT}/Doxyfile @ONLY)
  add_custom_target(docs
    COMMAND ${CMAKE_COMMAND} -E make_directory ${BRINDLE_DOCS_OUTPUT}
    COMMAND ${BRINDLE_DOXYGEN} ${BRINDLE_DOCS_OUTPUT}/Doxyfile
    WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
    COMMENT "Reference manual (Doxygen)"
    VERBATIM)
endif()

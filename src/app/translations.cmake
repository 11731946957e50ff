# The library's own translations: translations/<base>_<language>.ts compiled
# with Qt's lrelease into <base>_<language>.qm, in the folder where start-up
# looks for them when the installation has no "lang" folder of its own:
# <platform folder>/share/brindlebasecore/lang, that is <build>/share/... for
# programs run from the build tree and <prefix>/share/... once installed.
find_package(Qt6 QUIET COMPONENTS LinguistTools)
if(TARGET Qt6::lrelease)
  set(BRINDLE_LRELEASE Qt6::lrelease)
else()
  find_program(BRINDLE_LRELEASE NAMES lrelease lrelease-qt6
               HINTS /usr/lib/qt6/bin ${QT6_INSTALL_PREFIX}/${QT6_INSTALL_BINS})
  if(NOT BRINDLE_LRELEASE)
    message(FATAL_ERROR "Qt's lrelease was not found (Debian package qt6-l10n-tools)")
  endif()
endif()

set(BRINDLE_LANG_SUBDIR share/brindlebasecore/lang)
set(BRINDLE_LANG_BUILD_DIR ${PROJECT_BINARY_DIR}/${BRINDLE_LANG_SUBDIR})
file(MAKE_DIRECTORY ${BRINDLE_LANG_BUILD_DIR})

brindle_glob(_ts_files ${PROJECT_SOURCE_DIR}/translations/*.ts)
set(_qm_files "")
foreach(ts IN LISTS _ts_files)
  get_filename_component(_base ${ts} NAME_WE)
  set(_qm ${BRINDLE_LANG_BUILD_DIR}/${_base}.qm)
  add_custom_command(OUTPUT ${_qm}
    COMMAND ${BRINDLE_LRELEASE} -silent ${ts} -qm ${_qm}
    DEPENDS ${ts}
    COMMENT "Compiling translation ${_base}.qm"
    VERBATIM)
  list(APPEND _qm_files ${_qm})
endforeach()

add_custom_target(brindle_translations ALL DEPENDS ${_qm_files})
add_dependencies(BrindleBaseCore brindle_translations)
install(FILES ${_qm_files} DESTINATION ${CMAKE_INSTALL_DATADIR}/brindlebasecore/lang)

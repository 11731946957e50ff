# Compiler settings shared by every target of the project.

find_program(BRINDLE_CCACHE ccache)
if(BRINDLE_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER
      env CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
      CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} ${BRINDLE_CCACHE})
endif()

add_library(brindle_warnings INTERFACE)
target_compile_options(brindle_warnings INTERFACE -Wall -Wextra)
if(BRINDLE_WERROR)
  target_compile_options(brindle_warnings INTERFACE -Werror)
endif()

# brindle_area_sources(<out-var> <area>): the sources of one area of the library.
function(brindle_glob out pattern)
  file(GLOB _files CONFIGURE_DEPENDS ${pattern})
  list(SORT _files)
  set(${out} ${_files} PARENT_SCOPE)
endfunction()

set(BRINDLE_AREAS math text files app os data)

# Builds and runs the code blocks of README.md's "Using the library" section
# against the library of the build tree. Each ```cpp block is the body of a
# program: its #include lines go at file scope, every other line inside
#   int main(int argc, char** argv)
# The blocks become one scratch project with one executable each, built with
# warnings as errors; every executable must then exit with status 0.
# Variables: SOURCE_DIR, BUILD_DIR, LIBRARY (the built shared library),
# INCLUDE_DIRS (the library's public include folders, separated by '|').
include(${CMAKE_CURRENT_LIST_DIR}/ExampleBuild.cmake)

set(work ${BUILD_DIR}/readme-snippets)
file(REMOVE_RECURSE ${work})
string(REPLACE "|" ";" INCLUDE_DIRS "${INCLUDE_DIRS}")

file(READ ${SOURCE_DIR}/README.md readme)
string(FIND "${readme}" "\n## Using the library\n" begin)
if(begin EQUAL -1)
  message(FATAL_ERROR "README.md has no \"## Using the library\" section")
endif()
string(SUBSTRING "${readme}" ${begin} -1 section)
string(SUBSTRING "${section}" 1 -1 rest)
string(FIND "${rest}" "\n## " end)
if(NOT end EQUAL -1)
  string(SUBSTRING "${section}" 0 ${end} section)
endif()

# Lines are walked one by one; ';' in the text would split a CMake list, so it
# travels as a placeholder.
string(REPLACE ";" "<semicolon>" section "${section}")
string(REPLACE "\n" ";" lines "${section}")
set(count 0)
set(inside FALSE)
foreach(line IN LISTS lines)
  string(REPLACE "<semicolon>" ";" line "${line}")
  if(NOT inside AND line STREQUAL "```cpp")
    set(inside TRUE)
    set(includes "")
    set(body "")
  elseif(inside AND line STREQUAL "```")
    set(inside FALSE)
    math(EXPR count "${count} + 1")
    file(WRITE ${work}/snippet_${count}.cpp
         "${includes}\nint main([[maybe_unused]] int argc, [[maybe_unused]] char** argv)\n{\n${body}}\n")
  elseif(inside AND line MATCHES "^#include")
    string(APPEND includes "${line}\n")
  elseif(inside)
    string(APPEND body "    ${line}\n")
  endif()
endforeach()
if(count EQUAL 0)
  message(FATAL_ERROR "no ```cpp block in README.md's \"Using the library\" section")
endif()

file(WRITE ${work}/CMakeLists.txt "cmake_minimum_required(VERSION 3.25)
project(readme_snippets LANGUAGES CXX)
set(CMAKE_CXX_STANDARD 20)
find_package(Qt6 6.4 REQUIRED COMPONENTS Core Gui)
find_package(TBB REQUIRED)
add_library(BrindleBaseCore SHARED IMPORTED)
set_target_properties(BrindleBaseCore PROPERTIES IMPORTED_LOCATION \"${LIBRARY}\"
  INTERFACE_INCLUDE_DIRECTORIES \"${INCLUDE_DIRS}\"
  INTERFACE_LINK_LIBRARIES \"Qt6::Core;Qt6::Gui;TBB::tbb\")
foreach(n RANGE 1 ${count})
  add_executable(snippet_\${n} snippet_\${n}.cpp)
  target_compile_options(snippet_\${n} PRIVATE -Wall -Wextra -Werror)
  target_link_libraries(snippet_\${n} PRIVATE BrindleBaseCore)
endforeach()
")
run(${CMAKE_COMMAND} -S ${work} -B ${work}/build -G Ninja -DCMAKE_BUILD_TYPE=Release)
execute_process(COMMAND ${CMAKE_COMMAND} --build ${work}/build RESULT_VARIABLE rc
                OUTPUT_VARIABLE out ERROR_VARIABLE out)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "a README block does not build (sources in ${work}):\n${out}")
endif()
foreach(n RANGE 1 ${count})
  run(${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen ${work}/build/snippet_${n})
  message(STATUS "block ${n}: ${RUN_OUTPUT}")
endforeach()

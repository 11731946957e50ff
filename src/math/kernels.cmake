# The 4x4 kernels must give the same bits in every form: never contract a
# multiplication and an addition into a fused multiply-add. The precompiled
# header would bring its own contraction setting back, so these files go
# without it.
set(_brindle_kernels ${CMAKE_CURRENT_SOURCE_DIR}/math/Matrix4x4Kernels.cpp
                     ${CMAKE_CURRENT_SOURCE_DIR}/math/Matrix4x4InverseAvx2.cpp
                     ${CMAKE_CURRENT_SOURCE_DIR}/math/Matrix4x4InverseAvx512.cpp
                     ${CMAKE_CURRENT_SOURCE_DIR}/math/Matrix4x4.cpp)
set_source_files_properties(${_brindle_kernels} PROPERTIES COMPILE_OPTIONS -ffp-contract=off
                                                           SKIP_PRECOMPILE_HEADERS ON)

# The vector inverses are one long chain of dependent steps; GCC's scheduler
# before register allocation orders the independent work around it so that
# more of the next call overlaps, and the pass after allocation would only
# move it back.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    set_property(SOURCE ${CMAKE_CURRENT_SOURCE_DIR}/math/Matrix4x4InverseAvx2.cpp
                        ${CMAKE_CURRENT_SOURCE_DIR}/math/Matrix4x4InverseAvx512.cpp APPEND
                 PROPERTY COMPILE_OPTIONS -fschedule-insns -fsched-pressure -fno-schedule-insns2)
endif()

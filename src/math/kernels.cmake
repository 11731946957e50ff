# The 4x4 kernels must give the same bits in every form: never contract a
# multiplication and an addition into a fused multiply-add.
set_source_files_properties(${CMAKE_CURRENT_SOURCE_DIR}/math/Matrix4x4Kernels.cpp
                            ${CMAKE_CURRENT_SOURCE_DIR}/math/Matrix4x4.cpp
                            PROPERTIES COMPILE_OPTIONS -ffp-contract=off)

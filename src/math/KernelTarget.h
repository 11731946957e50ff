// Regions of code compiled for a processor level chosen at run time: every
// function defined between BRINDLE_TARGET_BEGIN("isa,...") and
// BRINDLE_TARGET_END may use that level's instructions.
#pragma once

#define BRINDLE_PRAGMA(x) _Pragma(#x)

#if defined(__clang__)
#define BRINDLE_TARGET_BEGIN(isa)                                                                  \
    BRINDLE_PRAGMA(clang attribute push(__attribute__((target(isa))), apply_to = function))
#define BRINDLE_TARGET_END BRINDLE_PRAGMA(clang attribute pop)
#else
#define BRINDLE_TARGET_BEGIN(isa) BRINDLE_PRAGMA(GCC push_options) BRINDLE_PRAGMA(GCC target(isa))
#define BRINDLE_TARGET_END BRINDLE_PRAGMA(GCC pop_options)
#endif

// Global definitions shared by every header of BrindleBaseCore.
#pragma once

// BRINDLE_EXPORT marks a class or free function as part of the library's
// binary interface. Everything else is hidden (the library is built with
// -fvisibility=hidden), so an unmarked symbol cannot be linked against.
#if defined(__GNUC__) || defined(__clang__)
#  define BRINDLE_EXPORT __attribute__((visibility("default")))
#  define BRINDLE_NO_EXPORT __attribute__((visibility("hidden")))
#else
#  define BRINDLE_EXPORT
#  define BRINDLE_NO_EXPORT
#endif

#include <BrindleBaseCore/Version.h>

/// The version of the library the application runs with (may differ from
/// BRINDLEBASECORE_VERSION_STRING, the version it was compiled against).
BRINDLE_EXPORT char const* brindleBaseCoreVersion();

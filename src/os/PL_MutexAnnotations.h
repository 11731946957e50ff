// Happens-before hints for ThreadSanitizer where the synchronisation itself
// happens in a library that was not built with it (oneTBB's queuing lock,
// QMutex's contended path). They compile to nothing in other builds.
#pragma once

#if defined(__SANITIZE_THREAD__)
#define PL_TSAN_HINTS 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define PL_TSAN_HINTS 1
#endif
#endif

#ifdef PL_TSAN_HINTS
extern "C" void __tsan_acquire(void* addr);
extern "C" void __tsan_release(void* addr);
#endif

namespace PL_MutexAnnotations {

// Called right after a lock on `sync` was obtained.
inline void acquired([[maybe_unused]] void const* sync)
{
#ifdef PL_TSAN_HINTS
    __tsan_acquire(const_cast<void*>(sync));
#endif
}

// Called right before a lock on `sync` is given up.
inline void releasing([[maybe_unused]] void const* sync)
{
#ifdef PL_TSAN_HINTS
    __tsan_release(const_cast<void*>(sync));
#endif
}

} // namespace PL_MutexAnnotations

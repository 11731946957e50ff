#include <BrindleBaseCore/os/PL_Mutex.h>

#include "os/PL_MutexAnnotations.h"

#include <cerrno>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>

#include <pthread.h>

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#endif

namespace {

inline void spinWaitHint()
{
#if defined(__x86_64__) || defined(__i386__)
    _mm_pause();
#elif defined(__aarch64__)
    asm volatile("yield");
#endif
}

} // namespace

PL_SpinMutex::PL_SpinMutex()
    : m_state(new std::atomic<unsigned char>(0))
{}

PL_SpinMutex::~PL_SpinMutex()
{
    delete m_state;
}

void PL_SpinMutex::acquireContended()
{
    int count = 1;
    for (;;) {
        if (count <= 16) {
            for (int i = 0; i < count; ++i)
                spinWaitHint();
            count *= 2;
        } else {
            std::this_thread::yield();
        }
        // Test before the compare-and-swap so that waiters do not keep stealing
        // the cache line from the holder.
        if (m_state->load(std::memory_order_relaxed) != 0)
            continue;
        unsigned char expected = 0;
        if (m_state->compare_exchange_strong(expected, 1, std::memory_order_acquire))
            return;
    }
}

PL_SpinRwMutex::PL_SpinRwMutex()
    : m_word(new PL_MutexDetail::SpinRwWord)
{}

PL_SpinRwMutex::~PL_SpinRwMutex()
{
    delete m_word;
}

PL_QueuingRwMutex::ScopeLock::ScopeLock(PL_QueuingRwMutex& mutex, bool write)
{
    acquire(mutex, write);
}

PL_QueuingRwMutex::ScopeLock::~ScopeLock()
{
    if (m_mutex)
        release();
}

void PL_QueuingRwMutex::ScopeLock::acquire(PL_QueuingRwMutex& mutex, bool write)
{
    m_lock.acquire(mutex.m_mutex, write);
    m_mutex = &mutex;
    PL_MutexAnnotations::acquired(m_mutex);
}

void PL_QueuingRwMutex::ScopeLock::release()
{
    PL_MutexAnnotations::releasing(m_mutex);
    m_lock.release();
    m_mutex = nullptr;
}

bool PL_QueuingRwMutex::ScopeLock::upgradeToWriter()
{
    PL_MutexAnnotations::releasing(m_mutex);
    bool const kept = m_lock.upgrade_to_writer();
    PL_MutexAnnotations::acquired(m_mutex);
    return kept;
}

struct PL_RecursiveMutex::Private
{
    std::recursive_mutex mutex;
};

PL_RecursiveMutex::PL_RecursiveMutex()
    : d(new Private)
{}

PL_RecursiveMutex::~PL_RecursiveMutex()
{
    delete d;
}

void PL_RecursiveMutex::acquire()
{
    d->mutex.lock();
}

void PL_RecursiveMutex::release()
{
    // A thread that does not own the mutex gets EPERM here and changes nothing.
    pthread_mutex_unlock(d->mutex.native_handle());
}

bool PL_RecursiveMutex::try_acquire()
{
    int const rc = pthread_mutex_trylock(d->mutex.native_handle());
    if (rc == 0)
        return true;
    if (rc == EBUSY)
        return false;
    throw std::system_error(rc, std::generic_category(), "PL_RecursiveMutex::try_acquire");
}

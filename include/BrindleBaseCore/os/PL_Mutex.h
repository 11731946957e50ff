// The library's locking primitives: a spin lock, a reader-writer spin lock, a
// fair (queuing) reader-writer lock, a recursive mutex and their scope guards.
#pragma once

#include <BrindleBaseCore/Global.h>

// oneTBB names a member "emit", which Qt defines as a macro for applications
// built with Qt keywords: hide the macro while the oneTBB headers are read.
#pragma push_macro("emit")
#undef emit
#include <oneapi/tbb/queuing_rw_mutex.h>
#include <oneapi/tbb/spin_rw_mutex.h>
#pragma pop_macro("emit")

#include <atomic>

template <class Mutex>
class PL_MutexScopeLock;

/// A one-byte spin lock with exponential back-off (1, 2, 4, 8, 16 spin-wait hints,
/// then yielding the time slice before every further attempt). For very short
/// critical sections only: no owner check, no recursion, releasing an unheld lock
/// is not detected. Locked and unlocked through PL_MutexScopeLock<PL_SpinMutex>.
class BRINDLE_EXPORT PL_SpinMutex
{
public:
    PL_SpinMutex();
    ~PL_SpinMutex();
    PL_SpinMutex(PL_SpinMutex const&) = delete;
    PL_SpinMutex& operator=(PL_SpinMutex const&) = delete;

private:
    friend class PL_MutexScopeLock<PL_SpinMutex>;

    void acquire()
    {
        unsigned char expected = 0;
        if (!m_state->compare_exchange_strong(expected, 1, std::memory_order_acquire))
            acquireContended();
    }
    void release() { m_state->store(0, std::memory_order_release); }
    void acquireContended();

    std::atomic<unsigned char>* m_state; // 0 free, 1 held
};

namespace PL_MutexDetail {
/// The reader-writer word: bit 0 a writer holds it, bit 1 a writer waits, the
/// rest counts the readers in units of 4.
class SpinRwWord : public tbb::spin_rw_mutex
{
public:
    /// Whether a writer holds the word.
    bool writerHolds() const { return (m_state.load(std::memory_order_relaxed) & WRITER) != 0; }
};
} // namespace PL_MutexDetail

/// A reader-writer spin lock: any number of readers or one writer. Used through
/// PL_SpinRwMutex::ScopeLock.
class BRINDLE_EXPORT PL_SpinRwMutex
{
public:
    PL_SpinRwMutex();
    ~PL_SpinRwMutex();
    PL_SpinRwMutex(PL_SpinRwMutex const&) = delete;
    PL_SpinRwMutex& operator=(PL_SpinRwMutex const&) = delete;

    /// Holds the mutex for reading or writing while it lives.
    class ScopeLock
    {
    public:
        ScopeLock() = default;
        /// Acquires `mutex` for writing or reading.
        ScopeLock(PL_SpinRwMutex& mutex, bool write) { acquire(mutex, write); }
        ~ScopeLock()
        {
            if (m_mutex)
                release();
        }
        ScopeLock(ScopeLock const&) = delete;
        ScopeLock& operator=(ScopeLock const&) = delete;

        /// Acquires `mutex`; the guard must hold nothing.
        void acquire(PL_SpinRwMutex& mutex, bool write)
        {
            mutex.acquire(write);
            m_mutex = &mutex;
        }
        /// Releases the held mutex; the guard must hold one.
        void release()
        {
            m_mutex->release();
            m_mutex = nullptr;
        }

    private:
        PL_SpinRwMutex* m_mutex = nullptr;
    };

private:
    void acquire(bool write)
    {
        if (write)
            m_word->lock();
        else
            m_word->lock_shared();
    }
    /// Whether a writer or a reader leaves is read from the word itself.
    void release()
    {
        if (m_word->writerHolds())
            m_word->unlock();
        else
            m_word->unlock_shared();
    }

    PL_MutexDetail::SpinRwWord* m_word;
};

/// A fair reader-writer lock: waiters are served in arrival order. Used through
/// PL_QueuingRwMutex::ScopeLock, which can turn a reader into a writer.
class BRINDLE_EXPORT PL_QueuingRwMutex
{
public:
    PL_QueuingRwMutex() = default;
    ~PL_QueuingRwMutex() = default;
    PL_QueuingRwMutex(PL_QueuingRwMutex const&) = delete;
    PL_QueuingRwMutex& operator=(PL_QueuingRwMutex const&) = delete;

    /// Holds the mutex for reading or writing while it lives; a reader can be
    /// upgraded to a writer.
    class BRINDLE_EXPORT ScopeLock
    {
    public:
        ScopeLock() = default;
        /// Acquires `mutex` for writing or reading.
        ScopeLock(PL_QueuingRwMutex& mutex, bool write);
        /// Releases the held mutex; a failure to release ends the process.
        ~ScopeLock();
        ScopeLock(ScopeLock const&) = delete;
        ScopeLock& operator=(ScopeLock const&) = delete;

        /// Acquires `mutex`; the guard must hold nothing.
        void acquire(PL_QueuingRwMutex& mutex, bool write);
        /// Releases the held mutex.
        void release();
        /// True when the reader became a writer without giving the lock up; false
        /// when it was released and re-acquired in between, so whatever was read
        /// under the reader lock must be read again.
        bool upgradeToWriter();

    private:
        tbb::queuing_rw_mutex::scoped_lock m_lock;
        PL_QueuingRwMutex* m_mutex = nullptr;
    };

private:
    tbb::queuing_rw_mutex m_mutex;
};

/// A recursive mutex that can also be tried. Runtime errors are thrown as
/// std::system_error.
class BRINDLE_EXPORT PL_RecursiveMutex
{
public:
    PL_RecursiveMutex();
    ~PL_RecursiveMutex();
    PL_RecursiveMutex(PL_RecursiveMutex const&) = delete;
    PL_RecursiveMutex& operator=(PL_RecursiveMutex const&) = delete;

private:
    friend class PL_MutexScopeLock<PL_RecursiveMutex>;

    void acquire();
    void release();
    bool try_acquire(); // false when busy; throws on any other error

    struct Private;
    Private* d;
};

static_assert(sizeof(PL_SpinMutex) == sizeof(void*));
static_assert(sizeof(PL_SpinRwMutex) == sizeof(void*));
static_assert(sizeof(PL_RecursiveMutex) == sizeof(void*));

/// Holds a PL_SpinMutex from construction to destruction or release().
template <>
class PL_MutexScopeLock<PL_SpinMutex>
{
public:
    /// Acquires `mutex`.
    explicit PL_MutexScopeLock(PL_SpinMutex& mutex)
        : m_mutex(&mutex)
    {
        mutex.acquire();
    }
    ~PL_MutexScopeLock()
    {
        if (m_mutex)
            release();
    }
    PL_MutexScopeLock(PL_MutexScopeLock const&) = delete;
    PL_MutexScopeLock& operator=(PL_MutexScopeLock const&) = delete;

    /// Releases the mutex early; the guard must hold it.
    void release()
    {
        m_mutex->release();
        m_mutex = nullptr;
    }

private:
    PL_SpinMutex* m_mutex;
};

/// Holds a PL_RecursiveMutex. Beware: try_acquire records the mutex before trying
/// (intended), so after a failed try the guard still counts as holding and its
/// destructor releases a mutex this thread does not hold (the release is refused
/// by the mutex and has no effect). A caller that gets false must not rely on it.
template <>
class PL_MutexScopeLock<PL_RecursiveMutex>
{
public:
    PL_MutexScopeLock() = default;
    /// Acquires `mutex`.
    explicit PL_MutexScopeLock(PL_RecursiveMutex& mutex) { acquire(mutex); }
    ~PL_MutexScopeLock()
    {
        if (m_mutex)
            release();
    }
    PL_MutexScopeLock(PL_MutexScopeLock const&) = delete;
    PL_MutexScopeLock& operator=(PL_MutexScopeLock const&) = delete;

    /// Acquires `mutex` (again, when this thread holds it).
    void acquire(PL_RecursiveMutex& mutex)
    {
        mutex.acquire();
        m_mutex = &mutex;
    }
    /// Acquires `mutex` if free or held by this thread; false when busy (see
    /// the class: the guard counts as holding either way).
    bool try_acquire(PL_RecursiveMutex& mutex)
    {
        m_mutex = &mutex;
        return mutex.try_acquire();
    }
    /// Releases the mutex once; the guard must hold it.
    void release()
    {
        m_mutex->release();
        m_mutex = nullptr;
    }

private:
    PL_RecursiveMutex* m_mutex = nullptr;
};

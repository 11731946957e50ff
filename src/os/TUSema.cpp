#include <BrindleBaseCore/os/TUSema.h>

#include <QtCore/QMutexLocker>
#include <QtCore/QWaitCondition>
#include <QtCore/qtsan_impl.h>

#include <algorithm>

TUSema::TUSema(quint32 initialCount)
    : m_count(initialCount)
{}

TUSema::~TUSema() = default;

namespace {

// QWaitCondition gives the mutex up and takes it back inside Qt; tell a
// ThreadSanitizer build so, as QMutex's own inline code does for lock and unlock.
void waitOn(QWaitCondition& condition, QMutex& mutex)
{
    QtTsan::mutexPreUnlock(&mutex, 0);
    QtTsan::mutexPostUnlock(&mutex, 0);
    condition.wait(&mutex);
    QtTsan::mutexPreLock(&mutex, 0);
    QtTsan::mutexPostLock(&mutex, 0, 0);
}

} // namespace

void TUSema::acquire()
{
    QMutexLocker locker(&m_mutex);
    while (m_count == 0) {
        // A thread waits on one semaphore at a time, so one condition per thread
        // serves all of them.
        thread_local QWaitCondition woken;
        m_waiters.push_back(&woken);
        // A wake-up is only sent after the waiter has been taken off the queue;
        // while it is still queued the return was spurious and it waits again.
        for (;;) {
            waitOn(woken, m_mutex);
            if (std::find(m_waiters.begin(), m_waiters.end(), &woken) == m_waiters.end())
                break;
        }
    }
    --m_count;
}

bool TUSema::tryAcquire()
{
    QMutexLocker locker(&m_mutex);
    bool const taken = m_count > 0;
    if (taken)
        --m_count;
    return taken;
}

void TUSema::release()
{
    release(1);
}

void TUSema::release(quint32 n)
{
    QMutexLocker locker(&m_mutex);
    m_count += n;
    while (n != 0 && !m_waiters.empty()) {
        m_waiters.front()->wakeOne();
        m_waiters.pop_front();
        --n;
    }
}

// A counting semaphore whose waiters are woken in the order they began to wait.
#pragma once

#include <BrindleBaseCore/Global.h>

#include <QtCore/QMutex>

#include <deque>

class QWaitCondition;

/// acquire() blocks while the count is 0. release() wakes the longest-waiting
/// thread; a woken thread takes a unit only if one is still there when it runs
/// (a thread calling acquire or tryAcquire in between may take it first), and
/// otherwise queues again at the back. release(n) with more units than waiters
/// wakes them all and keeps the surplus in the count. Nothing fails, and a
/// waiter has no time-out.
class BRINDLE_EXPORT TUSema
{
public:
    /// Starts with `initialCount` units.
    explicit TUSema(quint32 initialCount = 0);
    ~TUSema();
    TUSema(TUSema const&) = delete;
    TUSema& operator=(TUSema const&) = delete;

    /// Takes a unit, waiting in turn while there is none.
    void acquire();
    /// Takes a unit if one is there; false otherwise, without waiting.
    bool tryAcquire();
    /// Adds a unit and wakes the longest waiter.
    void release();
    /// Adds `n` units and wakes up to `n` waiters.
    void release(quint32 n);

private:
    QMutex m_mutex;
    quint32 m_count;
    std::deque<QWaitCondition*> m_waiters;
};

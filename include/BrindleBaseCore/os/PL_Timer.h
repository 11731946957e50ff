// Timers whose notifications run on the user-interface thread.
#pragma once

#include <BrindleBaseCore/Global.h>

class QObject;
struct PL_TimerRecord;

/// Base class of a timer: override TimerNotify() and call StartTimer/StopTimer.
/// Notifications arrive on the thread of the object given to
/// PL_TimerManager::SetUIThread, either as soon as the expiry reaches it
/// (direct) or from PL_TimerManager::Idle() (queued). A periodic queued timer
/// whose delivery is late gets one notification for all the expiries in between.
/// Destroying an active timer stops it. StartTimer() returns false when the
/// delay is over 1,000,000 ms or the timer thread cannot take the timer.
class BRINDLE_EXPORT PL_Timer
{
public:
    PL_Timer() = default;
    virtual ~PL_Timer();
    PL_Timer(PL_Timer const&) = delete;
    PL_Timer& operator=(PL_Timer const&) = delete;

    /// Called on the user-interface thread at expiry.
    virtual void TimerNotify() = 0;

    /// Delays below the timer resolution (10 ms) are raised to it. A periodic
    /// direct timer is notified for its first expiry only (intended).
    bool StartTimer(unsigned long milliseconds, bool oneShot, bool direct);
    /// Stops the timer; true when it was not active or stopped cleanly.
    bool StopTimer();
    /// Whether the timer is running.
    bool IsTimerActive() const { return m_record != nullptr; }

private:
    friend class PL_TimerManager;
    PL_TimerRecord* m_record = nullptr;
};

/// The process-wide timer manager. Expiries are measured on a timer thread of
/// the library and posted as an event of type 32812 to the object given to
/// SetUIThread; the library routes that event into HandleTimingEvent itself.
/// Until SetUIThread is called (or after the object is destroyed) expiries are
/// dropped. Start, Stop, HandleTimingEvent and Idle belong to that thread.
class BRINDLE_EXPORT PL_TimerManager
{
public:
    /// The manager, created on the first call.
    static PL_TimerManager* GetInstance();

    /// `window` is an object living on the user-interface thread (null: none).
    static void SetUIThread(QObject* window);
    /// Calls Idle() whenever the event loop of the calling thread is about to
    /// wait for events, so that SetUIThread plus this call give working timers.
    /// False when the thread has no event dispatcher yet.
    static bool InstallIdleHook();

    /// Notifies (direct) or queues (queued) the timer of the expiry `id`.
    void HandleTimingEvent(unsigned long id);
    /// Delivers the queued expiries; does nothing when called from a notification.
    void Idle();

    /// Restarts `timer`; false for null or when the delay cannot be set.
    bool Start(PL_Timer* timer, unsigned long milliseconds, bool oneShot, bool direct);
    /// Stops `timer`; true when it was not active or stopped cleanly.
    bool Stop(PL_Timer* timer);
    /// The record of the expiry id, or null.
    PL_TimerRecord* findInPendingTimers(unsigned long id) const;
    /// Drops the record of the expiry id (not freed).
    void eraseFromPendingTimers(unsigned long id);

    /// The resolution in milliseconds.
    unsigned int Resolution() const;

    virtual ~PL_TimerManager();
    PL_TimerManager(PL_TimerManager const&) = delete;
    PL_TimerManager& operator=(PL_TimerManager const&) = delete;

protected:
    PL_TimerManager();

private:
    static void onExpiry(unsigned int id);

    struct Private;
    Private* d;
};

#include <BrindleBaseCore/os/PL_Timer.h>

#include "os/PL_TimerService.h"

#include <QtCore/QAbstractEventDispatcher>
#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QThread>

#include <algorithm>
#include <deque>
#include <mutex>
#include <vector>

struct PL_TimerRecord
{
    PL_Timer* timer; // null once stopped while an expiry is on its way
    quint32 id;
    quint32 event; // the service's event; 0 when none
    bool oneShot;
    bool direct;
    bool posted = false;   // expiries are dropped while set
    bool inFlight = false; // an expiry event sits in the UI thread's queue
    bool queued = false;   // in the idle queue
};

namespace {

constexpr QEvent::Type kTimingEvent = QEvent::Type(32812);
constexpr unsigned int kMinResolution = 10;

class TimingEvent : public QEvent
{
public:
    explicit TimingEvent(quint32 id)
        : QEvent(kTimingEvent)
        , id(id)
    {}
    quint32 const id;
};

std::mutex g_pendingLock;  // guards the pending vector
std::mutex g_callbackLock; // orders the expiry callback against Stop; guards the flags
std::mutex g_windowLock;   // guards g_window against its destruction
QObject* g_window = nullptr;
quint32 g_nextId = 0;

// Sits on the user-interface object and hands the expiry events to the manager.
class TimingRouter : public QObject
{
public:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() != kTimingEvent)
            return QObject::eventFilter(watched, event);
        PL_TimerManager::GetInstance()->HandleTimingEvent(static_cast<TimingEvent*>(event)->id);
        return true;
    }
};

QPointer<TimingRouter> g_router;

} // namespace

struct PL_TimerManager::Private
{
    unsigned int resolution = 0;
    std::vector<PL_TimerRecord*> pending; // in start order
    std::deque<PL_TimerRecord*> idleQueue;
    bool idleRunning = false;

    std::vector<PL_TimerRecord*>::iterator find(quint32 id)
    {
        return std::find_if(pending.begin(), pending.end(),
                            [id](PL_TimerRecord const* r) { return r->id == id; });
    }
    void erase(PL_TimerRecord* record)
    {
        std::lock_guard lock(g_pendingLock);
        pending.erase(std::remove(pending.begin(), pending.end(), record), pending.end());
    }
};

PL_Timer::~PL_Timer()
{
    if (m_record)
        StopTimer();
}

bool PL_Timer::StartTimer(unsigned long milliseconds, bool oneShot, bool direct)
{
    return PL_TimerManager::GetInstance()->Start(this, milliseconds, oneShot, direct);
}

bool PL_Timer::StopTimer()
{
    return PL_TimerManager::GetInstance()->Stop(this);
}

PL_TimerManager::PL_TimerManager()
    : d(new Private)
{
    d->resolution = std::max(PL_TimerService::kMinPeriod, kMinResolution);
}

PL_TimerManager::~PL_TimerManager()
{
    delete d;
}

PL_TimerManager* PL_TimerManager::GetInstance()
{
    // Lives to the end of the process.
    static PL_TimerManager* const manager = new PL_TimerManager;
    return manager;
}

unsigned int PL_TimerManager::Resolution() const
{
    return d->resolution;
}

void PL_TimerManager::SetUIThread(QObject* window)
{
    delete g_router; // leaves the previous object
    {
        std::lock_guard lock(g_windowLock);
        g_window = window;
    }
    if (!window)
        return;
    auto* const router = new TimingRouter;
    router->moveToThread(window->thread());
    router->setParent(window);
    window->installEventFilter(router);
    QObject::connect(
        window, &QObject::destroyed, router,
        [window] {
            std::lock_guard lock(g_windowLock);
            if (g_window == window)
                g_window = nullptr;
        },
        Qt::DirectConnection);
    g_router = router;
}

bool PL_TimerManager::InstallIdleHook()
{
    QAbstractEventDispatcher* const dispatcher = QAbstractEventDispatcher::instance();
    if (!dispatcher)
        return false;
    char const* const installed = "brindleTimerIdleHook";
    if (dispatcher->property(installed).toBool())
        return true;
    dispatcher->setProperty(installed, true);
    QObject::connect(
        dispatcher, &QAbstractEventDispatcher::aboutToBlock, dispatcher,
        [] { GetInstance()->Idle(); }, Qt::DirectConnection);
    return true;
}

PL_TimerRecord* PL_TimerManager::findInPendingTimers(unsigned long id) const
{
    std::lock_guard lock(g_pendingLock);
    auto const it = d->find(quint32(id));
    return it == d->pending.end() ? nullptr : *it;
}

void PL_TimerManager::eraseFromPendingTimers(unsigned long id)
{
    std::lock_guard lock(g_pendingLock);
    auto const it = d->find(quint32(id));
    if (it != d->pending.end())
        d->pending.erase(it);
}

bool PL_TimerManager::Start(PL_Timer* timer, unsigned long milliseconds, bool oneShot, bool direct)
{
    if (!timer)
        return false;
    if (timer->m_record)
        Stop(timer);
    unsigned long const delay = std::max<unsigned long>(milliseconds, d->resolution);
    auto* const record = new PL_TimerRecord{timer, g_nextId++, 0, oneShot, direct};
    {
        std::lock_guard lock(g_pendingLock);
        d->pending.push_back(record);
    }
    unsigned int const event =
        delay > PL_TimerService::kMaxPeriod
            ? 0
            : PL_TimerService::instance().setEvent(unsigned(delay), d->resolution, &onExpiry,
                                                   record->id, !oneShot);
    if (event == 0) {
        d->erase(record);
        delete record;
        return false;
    }
    {
        std::lock_guard lock(g_callbackLock);
        // A one-shot expiry that came first has already ended the event.
        if (!(record->oneShot && record->posted))
            record->event = event;
    }
    timer->m_record = record;
    return true;
}

void PL_TimerManager::onExpiry(unsigned int id)
{
    std::lock_guard lock(g_callbackLock);
    std::lock_guard window(g_windowLock);
    if (!g_window)
        return;
    PL_TimerRecord* const record = GetInstance()->findInPendingTimers(id);
    if (!record || record->posted)
        return; // one expiry in flight at most: the others are dropped
    if (record->oneShot)
        record->event = 0; // one-shot events end by themselves
    record->posted = true;
    record->inFlight = true;
    QCoreApplication::postEvent(g_window, new TimingEvent(id));
}

bool PL_TimerManager::Stop(PL_Timer* timer)
{
    PL_TimerRecord* const record = timer ? timer->m_record : nullptr;
    if (!record)
        return true;
    quint32 event;
    {
        std::lock_guard lock(g_callbackLock);
        event = record->event;
        record->event = 0;
    }
    // No callback for this record runs once the event is killed.
    bool const killed = event == 0 || PL_TimerService::instance().killEvent(event);
    record->timer = nullptr;
    timer->m_record = nullptr;
    std::lock_guard lock(g_callbackLock);
    // A record whose expiry is on its way stays in the pending vector so that
    // HandleTimingEvent finds it and frees it; a queued one is freed by Idle.
    if (!record->queued && !record->inFlight) {
        d->erase(record);
        delete record;
    }
    return killed;
}

void PL_TimerManager::HandleTimingEvent(unsigned long id)
{
    PL_Timer* notify = nullptr;
    {
        std::lock_guard lock(g_callbackLock);
        PL_TimerRecord* const record = findInPendingTimers(id);
        if (!record)
            return;
        record->inFlight = false;
        if (!record->timer) {
            if (!record->queued) { // stopped while on its way
                d->erase(record);
                delete record;
            }
            return;
        }
        if (record->direct) {
            // `posted` stays set, so a periodic direct timer is notified for its
            // first expiry only; intended.
            notify = record->timer;
            if (record->oneShot) {
                record->event = 0;
                notify->m_record = nullptr;
                d->erase(record);
                delete record;
            }
        } else if (!record->queued) {
            if (record->oneShot)
                d->erase(record);
            record->queued = true;
            d->idleQueue.push_back(record);
        }
    }
    if (notify)
        notify->TimerNotify();
}

void PL_TimerManager::Idle()
{
    if (d->idleRunning)
        return;
    d->idleRunning = true;
    while (!d->idleQueue.empty()) {
        PL_Timer* notify = nullptr;
        {
            std::lock_guard lock(g_callbackLock);
            PL_TimerRecord* const record = d->idleQueue.front();
            d->idleQueue.pop_front();
            record->posted = false;
            record->queued = false;
            notify = record->timer;
            if (!notify || record->oneShot) {
                if (notify)
                    notify->m_record = nullptr;
                if (!record->inFlight) {
                    d->erase(record);
                    delete record;
                }
            }
        }
        if (notify)
            notify->TimerNotify();
    }
    d->idleRunning = false;
}

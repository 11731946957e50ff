#include "os/PL_TimerService.h"

#include <thread>
#include <vector>

PL_TimerService& PL_TimerService::instance()
{
    // Lives to the end of the process, as does its (detached) thread.
    static PL_TimerService* const service = new PL_TimerService;
    return *service;
}

unsigned int PL_TimerService::setEvent(unsigned int delay, unsigned int /*resolution*/,
                                       Callback callback, unsigned int user, bool periodic)
{
    if (delay < kMinPeriod || delay > kMaxPeriod || !callback)
        return 0;
    std::lock_guard lock(m_mutex);
    if (!m_running) {
        std::thread(&PL_TimerService::run, this).detach();
        m_running = true;
    }
    unsigned int id = m_nextEvent++;
    if (id == 0 || m_events.count(id))
        id = m_nextEvent++; // wrapped around: 0 means "no event"
    std::chrono::milliseconds const period(delay);
    m_events[id] = Event{Clock::now() + period, period, callback, user, periodic};
    m_changed.notify_one();
    return id;
}

bool PL_TimerService::killEvent(unsigned int event)
{
    std::lock_guard lock(m_mutex);
    bool const found = m_events.erase(event) != 0;
    if (found)
        m_changed.notify_one();
    return found;
}

void PL_TimerService::run()
{
    std::unique_lock lock(m_mutex);
    std::vector<unsigned int> due;
    for (;;) {
        if (m_events.empty()) {
            m_changed.wait(lock);
            continue;
        }
        auto next = Clock::time_point::max();
        for (auto const& [id, event] : m_events)
            next = std::min(next, event.due);
        if (m_changed.wait_until(lock, next) == std::cv_status::no_timeout)
            continue; // the set changed: look again
        auto const now = Clock::now();
        due.clear();
        for (auto const& [id, event] : m_events)
            if (event.due <= now)
                due.push_back(id);
        for (unsigned int id : due) {
            auto it = m_events.find(id);
            if (it == m_events.end())
                continue;
            Event& event = it->second;
            Callback const callback = event.callback;
            unsigned int const user = event.user;
            if (event.periodic) {
                // Keep the phase; expiries missed while late are skipped.
                while (event.due <= now)
                    event.due += event.period;
            } else {
                m_events.erase(it);
            }
            callback(user);
        }
    }
}

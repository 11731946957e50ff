// The timer service behind PL_TimerManager: one thread of the library's own
// that runs periodic and one-shot events and calls their callback on expiry.
#pragma once

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>

class PL_TimerService
{
public:
    using Callback = void (*)(unsigned int user);

    // The smallest and largest event periods it supports, in milliseconds.
    static constexpr unsigned int kMinPeriod = 1;
    static constexpr unsigned int kMaxPeriod = 1000000;

    static PL_TimerService& instance();

    // Starts an event; returns its id, or 0 when the delay is out of range.
    // `resolution` is the accuracy asked for; expiries are as precise as the
    // thread can wake up, which is finer.
    unsigned int setEvent(unsigned int delay, unsigned int resolution, Callback callback,
                          unsigned int user, bool periodic);
    // Ends an event; false when there is no such event (a one-shot event that has
    // fired is gone). A callback running at the time has finished when it returns.
    bool killEvent(unsigned int event);

private:
    using Clock = std::chrono::steady_clock;
    struct Event
    {
        Clock::time_point due;
        std::chrono::milliseconds period;
        Callback callback;
        unsigned int user;
        bool periodic;
    };

    PL_TimerService() = default;
    void run();

    std::mutex m_mutex; // held while callbacks run, so that killEvent waits for them
    std::condition_variable m_changed;
    std::map<unsigned int, Event> m_events;
    unsigned int m_nextEvent = 1;
    bool m_running = false;
};

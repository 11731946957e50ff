#include <BrindleBaseCore/os/TUSema.h>

#include <gtest/gtest.h>

#include <QtCore/QFile>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>
#include <vector>

#include <unistd.h>

namespace {

using namespace std::chrono_literals;

// Waiters started one after the other, each asleep in acquire() before the next
// starts; `order` records in which order they came out.
struct Waiters
{
    TUSema sema;
    std::mutex mutex;
    std::vector<int> order;
    std::vector<std::jthread> threads; // last member: joined first

    explicit Waiters(int count)
    {
        for (int i = 0; i < count; ++i) {
            std::atomic<pid_t> tid{0};
            threads.emplace_back([this, i, &tid] {
                tid = gettid();
                sema.acquire();
                std::lock_guard lock(mutex);
                order.push_back(i);
            });
            while (tid.load() == 0)
                std::this_thread::yield();
            QFile stat(QStringLiteral("/proc/self/task/%1/stat").arg(tid.load()));
            for (int tries = 0; tries < 2000; ++tries, std::this_thread::sleep_for(1ms)) {
                stat.open(QIODevice::ReadOnly);
                QByteArray const text = stat.readAll();
                stat.close();
                if (text.mid(text.lastIndexOf(')') + 2, 1) == "S")
                    break;
            }
        }
    }
    // How many came out, once at least `atLeast` did or after a second.
    size_t done(size_t atLeast = 0)
    {
        for (int i = 0;; ++i, std::this_thread::sleep_for(2ms)) {
            std::lock_guard lock(mutex);
            if (order.size() >= atLeast || i == 500)
                return order.size();
        }
    }
};

TEST(Sema, WakesInArrivalOrder)
{
    Waiters w(5);
    for (size_t i = 1; i <= 2; ++i) {
        w.sema.release();
        ASSERT_EQ(w.done(i), i);
    }
    EXPECT_EQ(w.order, (std::vector<int>{0, 1}));
    // Two units go to the next two (they may finish in either order); the last waits.
    w.sema.release(2);
    ASSERT_EQ(w.done(4), 4u);
    std::this_thread::sleep_for(20ms);
    EXPECT_EQ(w.done(), 4u);
    std::sort(w.order.begin() + 2, w.order.end());
    EXPECT_EQ(w.order, (std::vector<int>{0, 1, 2, 3}));
    w.sema.release(3); // wakes the last, keeps two
    ASSERT_EQ(w.done(5), 5u);
    EXPECT_TRUE(w.sema.tryAcquire() && w.sema.tryAcquire());
    EXPECT_FALSE(w.sema.tryAcquire());
}

// Every unit is taken exactly once: the two initial ones are left at the end.
TEST(Sema, ProducersAndConsumersBalance)
{
    TUSema sema(2);
    {
        std::vector<std::jthread> threads;
        for (int t = 0; t < 6; ++t)
            threads.emplace_back([&, t] {
                for (int i = 0; i < 2000; ++i) {
                    if (t < 3)
                        sema.acquire();
                    else if (i % 4 == 0)
                        sema.release(1);
                    else
                        sema.release();
                }
            });
    }
    int taken = 0;
    while (taken < 10 && sema.tryAcquire())
        ++taken;
    EXPECT_EQ(taken, 2);
}

} // namespace

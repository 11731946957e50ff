#include <BrindleBaseCore/os/TUSema.h>

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtCore/QString>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>
#include <vector>

#include <unistd.h>

namespace {

using namespace std::chrono_literals;

TEST(Sema, CountsUnitsWithoutWaiters)
{
    TUSema sema(2);
    EXPECT_TRUE(sema.tryAcquire());
    EXPECT_TRUE(sema.tryAcquire());
    EXPECT_FALSE(sema.tryAcquire());
    sema.release(5); // nobody waits: all five stay in the count
    for (int i = 0; i < 5; ++i)
        EXPECT_TRUE(sema.tryAcquire());
    EXPECT_FALSE(sema.tryAcquire());
}

// Starts waiters one after the other, each certainly queued before the next
// begins, and records the order in which they come out of acquire().
struct Waiters
{
    TUSema sema;
    std::mutex mutex;
    std::vector<int> order;
    std::vector<std::thread> threads;

    void start(int count)
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
            waitUntilAsleep(tid.load());
        }
    }
    // Waits until the thread sleeps, which it only does inside acquire().
    static void waitUntilAsleep(pid_t tid)
    {
        QString const stat = QStringLiteral("/proc/self/task/%1/stat").arg(tid);
        for (int i = 0; i < 2000; ++i) {
            QFile file(stat);
            if (file.open(QIODevice::ReadOnly)) {
                QByteArray const text = file.readAll();
                qsizetype const paren = text.lastIndexOf(')');
                if (paren > 0 && text.mid(paren + 2, 1) == "S")
                    return;
            }
            std::this_thread::sleep_for(1ms);
        }
    }
    size_t done()
    {
        std::lock_guard lock(mutex);
        return order.size();
    }
    void waitFor(size_t count)
    {
        for (int i = 0; i < 500 && done() < count; ++i)
            std::this_thread::sleep_for(2ms);
    }
    void join()
    {
        for (auto& t : threads)
            t.join();
    }
};

TEST(Sema, WakesInArrivalOrder)
{
    Waiters w;
    w.start(4);
    for (size_t i = 1; i <= 2; ++i) {
        w.sema.release();
        w.waitFor(i);
        ASSERT_EQ(w.done(), i);
    }
    EXPECT_EQ(w.order, (std::vector<int>{0, 1}));
    // Two units at once go to the next two (they may finish in either order).
    w.sema.release(2);
    w.join();
    std::sort(w.order.begin() + 2, w.order.end());
    EXPECT_EQ(w.order, (std::vector<int>{0, 1, 2, 3}));
    EXPECT_FALSE(w.sema.tryAcquire());
}

TEST(Sema, ReleaseOfTwoLeavesTheThirdWaiting)
{
    Waiters w;
    w.start(3);
    w.sema.release(2);
    w.waitFor(2);
    std::this_thread::sleep_for(20ms);
    ASSERT_EQ(w.done(), 2u);
    std::sort(w.order.begin(), w.order.end());
    EXPECT_EQ(w.order, (std::vector<int>{0, 1}));
    w.sema.release();
    w.join();
    EXPECT_EQ(w.order.back(), 2);
}

TEST(Sema, SurplusStaysAfterWakingEveryone)
{
    Waiters w;
    w.start(2);
    w.sema.release(5);
    w.join();
    EXPECT_EQ(w.order.size(), 2u);
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(w.sema.tryAcquire());
    EXPECT_FALSE(w.sema.tryAcquire());
}

TEST(Sema, ProducersAndConsumersBalance)
{
    TUSema sema;
    constexpr int kItems = 2000;
    std::atomic<int> consumed{0};
    std::vector<std::thread> threads;
    for (int c = 0; c < 3; ++c)
        threads.emplace_back([&] {
            for (int i = 0; i < kItems; ++i) {
                sema.acquire();
                ++consumed;
            }
        });
    for (int p = 0; p < 3; ++p)
        threads.emplace_back([&, p] {
            for (int i = 0; i < kItems; ++i) {
                if ((i + p) % 4 == 0)
                    sema.release(1);
                else
                    sema.release();
            }
        });
    for (auto& t : threads)
        t.join();
    EXPECT_EQ(consumed.load(), 3 * kItems);
    EXPECT_FALSE(sema.tryAcquire());
}

} // namespace

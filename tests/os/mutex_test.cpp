#include <BrindleBaseCore/os/PL_Mutex.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

// Runs `body(index)` on `count` threads at once and joins them.
template <class Body>
void onThreads(int count, Body body)
{
    std::vector<std::jthread> threads;
    for (int i = 0; i < count; ++i)
        threads.emplace_back(body, i);
}

constexpr int kThreads = 4;
constexpr int kRounds = 5000;

// Counters left plain on purpose: only the locks protect them.
TEST(SpinAndRecursiveMutex, ExactCountsUnderContention)
{
    PL_SpinMutex spin;
    PL_RecursiveMutex recursive;
    long spinCount = 0, recursiveCount = 0;
    onThreads(kThreads, [&](int) {
        for (int i = 0; i < kRounds; ++i) {
            {
                PL_MutexScopeLock<PL_SpinMutex> guard(spin);
                ++spinCount;
                if (i % 2)
                    guard.release(); // the destructor must not release again
            }
            PL_MutexScopeLock<PL_RecursiveMutex> outer(recursive);
            PL_MutexScopeLock<PL_RecursiveMutex> inner;
            EXPECT_TRUE(inner.try_acquire(recursive)); // the owner can always re-enter
            ++recursiveCount;
        }
    });
    EXPECT_EQ(spinCount, long(kThreads) * kRounds);
    EXPECT_EQ(recursiveCount, long(kThreads) * kRounds);
}

TEST(SpinRwMutex, WritersExcludeEveryoneReadersShare)
{
    PL_SpinRwMutex mutex;
    long counter = 0;
    std::atomic<long> writes{0};
    std::atomic<int> holders{0}; // readers, plus 1000 per writer
    std::atomic<bool> overlap{false};
    onThreads(kThreads, [&](int index) {
        for (int i = 0; i < kRounds; ++i) {
            bool const write = (i + index) % 3 == 0;
            PL_SpinRwMutex::ScopeLock lock(mutex, write);
            int const before = holders.fetch_add(write ? 1000 : 1);
            overlap = overlap || (write ? before != 0 : before >= 1000);
            if (write) {
                ++counter;
                ++writes;
            }
            holders.fetch_sub(write ? 1000 : 1);
        }
    });
    EXPECT_FALSE(overlap);
    EXPECT_EQ(counter, writes.load());

    // Readers hold the lock together: each waits inside until all are in.
    std::atomic<int> inside{0}, sawAll{0};
    onThreads(3, [&](int) {
        PL_SpinRwMutex::ScopeLock lock(mutex, /*write=*/false);
        ++inside;
        for (int spin = 0; spin < 5000 && inside.load() < 3; ++spin)
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        sawAll += inside.load() == 3;
    });
    EXPECT_EQ(sawAll.load(), 3);
}

TEST(QueuingRwMutex, ExactCountWithUpgrades)
{
    PL_QueuingRwMutex mutex;
    {
        PL_QueuingRwMutex::ScopeLock alone(mutex, false);
        EXPECT_TRUE(alone.upgradeToWriter()); // nobody else: kept throughout
    }
    long counter = 0;
    onThreads(kThreads, [&](int) {
        for (int i = 0; i < kRounds / 2; ++i) {
            PL_QueuingRwMutex::ScopeLock lock;
            lock.acquire(mutex, /*write=*/false);
            long seen = counter;
            if (!lock.upgradeToWriter())
                seen = counter; // given up in between: read again
            counter = seen + 1;
        }
    });
    EXPECT_EQ(counter, long(kThreads) * (kRounds / 2));
}

TEST(RecursiveMutex, FailedTryStillReleasesOnDestruction)
{
#if defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "releases from a thread that does not own the mutex, on purpose";
#endif
    PL_RecursiveMutex mutex;
    PL_MutexScopeLock<PL_RecursiveMutex> holder(mutex);
    // A failed guard releases on destruction; the mutex refuses, since that thread
    // does not own it, so the holder keeps the lock until it lets it go.
    for (bool const free : {false, false, true}) {
        if (free)
            holder.release();
        std::thread([&] {
            PL_MutexScopeLock<PL_RecursiveMutex> guard;
            EXPECT_EQ(guard.try_acquire(mutex), free);
        }).join();
    }
}

} // namespace

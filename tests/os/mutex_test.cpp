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
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i)
        threads.emplace_back(body, i);
    for (auto& t : threads)
        t.join();
}

constexpr int kThreads = 4;
constexpr int kRounds = 20000;

TEST(SpinMutex, ExactCountUnderContention)
{
    PL_SpinMutex mutex;
    long counter = 0; // plain on purpose: only the lock protects it
    onThreads(kThreads, [&](int) {
        for (int i = 0; i < kRounds; ++i) {
            PL_MutexScopeLock<PL_SpinMutex> guard(mutex);
            ++counter;
        }
    });
    EXPECT_EQ(counter, long(kThreads) * kRounds);
}

TEST(SpinMutex, EarlyReleaseLetsOthersIn)
{
    PL_SpinMutex mutex;
    PL_MutexScopeLock<PL_SpinMutex> guard(mutex);
    std::atomic<bool> entered{false};
    std::thread other([&] {
        PL_MutexScopeLock<PL_SpinMutex> inner(mutex);
        entered = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_FALSE(entered);
    guard.release(); // the destructor must not release a second time
    other.join();
    EXPECT_TRUE(entered);
}

TEST(SpinRwMutex, WritersExcludeEveryone)
{
    PL_SpinRwMutex mutex;
    long counter = 0;
    std::atomic<int> writers{0};
    std::atomic<int> readers{0};
    std::atomic<bool> overlap{false};
    onThreads(kThreads, [&](int index) {
        for (int i = 0; i < kRounds / 4; ++i) {
            bool const write = (i + index) % 3 == 0;
            PL_SpinRwMutex::ScopeLock lock(mutex, write);
            if (write) {
                if (writers.fetch_add(1) != 0 || readers.load() != 0)
                    overlap = true;
                ++counter;
                writers.fetch_sub(1);
            } else {
                readers.fetch_add(1);
                if (writers.load() != 0)
                    overlap = true;
                readers.fetch_sub(1);
            }
        }
    });
    EXPECT_FALSE(overlap);
    long expected = 0;
    for (int index = 0; index < kThreads; ++index)
        for (int i = 0; i < kRounds / 4; ++i)
            expected += (i + index) % 3 == 0;
    EXPECT_EQ(counter, expected);
}

TEST(SpinRwMutex, ReadersShareTheLock)
{
    PL_SpinRwMutex mutex;
    std::atomic<int> readers{0};
    std::atomic<int> sawAll{0};
    onThreads(3, [&](int) {
        PL_SpinRwMutex::ScopeLock lock(mutex, /*write=*/false);
        ++readers;
        // Each reader holds its lock until the other two have come in as well.
        for (int spin = 0; spin < 5000 && readers.load() < 3; ++spin)
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        if (readers.load() == 3)
            ++sawAll;
    });
    EXPECT_EQ(sawAll.load(), 3);
    // Every reader has left: a writer gets in at once, and a reader after it.
    PL_SpinRwMutex::ScopeLock writer(mutex, true);
    writer.release();
    PL_SpinRwMutex::ScopeLock reader;
    reader.acquire(mutex, false);
}

TEST(QueuingRwMutex, ExactCountAndUpgrade)
{
    PL_QueuingRwMutex mutex;
    long counter = 0;
    std::atomic<int> upgrades{0};
    onThreads(kThreads, [&](int) {
        for (int i = 0; i < kRounds / 8; ++i) {
            PL_QueuingRwMutex::ScopeLock lock(mutex, /*write=*/false);
            long seen = counter;
            if (!lock.upgradeToWriter())
                seen = counter; // given up in between: read again
            else
                ++upgrades;
            counter = seen + 1;
        }
    });
    EXPECT_EQ(counter, long(kThreads) * (kRounds / 8));
    EXPECT_GT(upgrades.load(), 0);
}

TEST(QueuingRwMutex, UncontendedUpgradeKeepsTheLock)
{
    PL_QueuingRwMutex mutex;
    PL_QueuingRwMutex::ScopeLock lock;
    lock.acquire(mutex, false);
    EXPECT_TRUE(lock.upgradeToWriter());
    lock.release();
    PL_QueuingRwMutex::ScopeLock again(mutex, true); // free again
}

TEST(RecursiveMutex, RecursionAndExclusion)
{
    PL_RecursiveMutex mutex;
    long counter = 0;
    onThreads(kThreads, [&](int) {
        for (int i = 0; i < kRounds / 4; ++i) {
            PL_MutexScopeLock<PL_RecursiveMutex> outer(mutex);
            PL_MutexScopeLock<PL_RecursiveMutex> inner;
            EXPECT_TRUE(inner.try_acquire(mutex)); // the owner can always re-enter
            ++counter;
        }
    });
    EXPECT_EQ(counter, long(kThreads) * (kRounds / 4));
}

TEST(RecursiveMutex, FailedTryKeepsThePointer)
{
#if defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "releases from a thread that does not own the mutex, on purpose";
#endif
    PL_RecursiveMutex mutex;
    PL_MutexScopeLock<PL_RecursiveMutex> holder(mutex);
    std::thread other([&] {
        PL_MutexScopeLock<PL_RecursiveMutex> guard;
        EXPECT_FALSE(guard.try_acquire(mutex));
        // The guard still releases on destruction; the mutex refuses it because
        // this thread does not own it, so the holder keeps the lock.
    });
    other.join();
    std::thread third([&] {
        PL_MutexScopeLock<PL_RecursiveMutex> guard;
        EXPECT_FALSE(guard.try_acquire(mutex));
    });
    third.join();
    holder.release();
    std::thread last([&] {
        PL_MutexScopeLock<PL_RecursiveMutex> guard;
        EXPECT_TRUE(guard.try_acquire(mutex));
    });
    last.join();
}

} // namespace

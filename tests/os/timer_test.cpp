#include <BrindleBaseCore/os/PL_Timer.h>

#include <gtest/gtest.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QEventLoop>
#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <functional>
#include <memory>
#include <thread>

namespace {

class CountingTimer : public PL_Timer
{
public:
    int count = 0;
    QElapsedTimer clock;
    qint64 firstAfterMs = -1;
    std::function<void()> onNotify;

    void TimerNotify() override
    {
        if (count++ == 0 && clock.isValid())
            firstAfterMs = clock.elapsed();
        if (onNotify)
            onNotify();
    }
};

// Runs the event loop for `ms` milliseconds, or until `done` holds.
void runLoop(int ms, std::function<bool()> const& done = {})
{
    QEventLoop loop;
    QElapsedTimer elapsed;
    elapsed.start();
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, [&] {
        if (elapsed.elapsed() >= ms || (done && done()))
            loop.quit();
    });
    tick.start(2);
    loop.exec();
}

class Timers : public ::testing::Test
{
protected:
    std::unique_ptr<QObject> window = std::make_unique<QObject>();

    void SetUp() override { PL_TimerManager::SetUIThread(window.get()); }
    void TearDown() override { PL_TimerManager::SetUIThread(nullptr); }

    // Blocks the user-interface thread, as a long computation would, then
    // handles the posted expiries and, when asked, delivers the queued ones.
    static void late(int ms, bool idle = true)
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(ms));
        QCoreApplication::processEvents();
        if (idle)
            PL_TimerManager::GetInstance()->Idle();
    }
};

// Queued expiries wait for Idle(); a late periodic one is delivered once for all
// the expiries in between, and the next one is posted only after that.
TEST_F(Timers, QueuedDeliveryWaitsForIdleAndIsCoalesced)
{
    CountingTimer oneShot, periodic;
    ASSERT_TRUE(oneShot.StartTimer(10, true, false));
    ASSERT_TRUE(periodic.StartTimer(10, false, false));
    late(60, /*idle=*/false);
    EXPECT_EQ(oneShot.count + periodic.count, 0);
    late(60);
    EXPECT_EQ(oneShot.count, 1);
    EXPECT_FALSE(oneShot.IsTimerActive());
    EXPECT_EQ(periodic.count, 1);
    late(60);
    EXPECT_EQ(oneShot.count, 1);
    EXPECT_EQ(periodic.count, 2);
}

TEST_F(Timers, IdleHookDeliversFromTheEventLoop)
{
    ASSERT_TRUE(PL_TimerManager::InstallIdleHook());
    ASSERT_TRUE(PL_TimerManager::InstallIdleHook()); // once is enough
    CountingTimer timer;
    ASSERT_TRUE(timer.StartTimer(20, false, false));
    runLoop(3000, [&] { return timer.count >= 3; });
    EXPECT_GE(timer.count, 3);
    EXPECT_TRUE(timer.IsTimerActive());
    EXPECT_TRUE(timer.StopTimer());
    int const stoppedAt = timer.count;
    runLoop(60);
    EXPECT_EQ(timer.count, stoppedAt);
}

TEST_F(Timers, StopWhilePostedNeverNotifies)
{
    for (bool direct : {false, true}) {
        for (bool oneShot : {false, true}) {
            CountingTimer timer;
            ASSERT_TRUE(timer.StartTimer(10, oneShot, direct));
            std::this_thread::sleep_for(std::chrono::milliseconds(80)); // posted, not handled
            EXPECT_TRUE(timer.StopTimer());
            late(0);
            EXPECT_EQ(timer.count, 0) << direct << oneShot;
            EXPECT_FALSE(timer.IsTimerActive());
        }
    }
    // Stopped (by its destructor) while queued for Idle: freed there, without
    // notifying the dead timer.
    auto queued = std::make_unique<CountingTimer>();
    ASSERT_TRUE(queued->StartTimer(10, false, false));
    late(80, /*idle=*/false);
    queued.reset();
    PL_TimerManager::GetInstance()->Idle();
}

// A direct one-shot timer is notified once per start, not before the 10 ms
// resolution, and may restart itself and stop another from its notification.
// A periodic direct timer is notified for its first expiry only (intended).
TEST_F(Timers, DirectTimersAreNotifiedOncePerStart)
{
    CountingTimer timer, other, periodic;
    ASSERT_TRUE(periodic.StartTimer(10, false, true));
    timer.onNotify = [&] {
        if (timer.count == 1)
            timer.StartTimer(10, true, true); // restart itself
        other.StopTimer();
    };
    ASSERT_TRUE(other.StartTimer(500, true, true));
    timer.clock.start();
    ASSERT_TRUE(timer.StartTimer(1, /*oneShot=*/true, /*direct=*/true));
    EXPECT_TRUE(timer.IsTimerActive());
    runLoop(2000, [&] { return timer.count >= 2; });
    runLoop(40);
    EXPECT_EQ(timer.count, 2);
    EXPECT_GE(timer.firstAfterMs, 9); // 1 ms is raised to the resolution
    EXPECT_FALSE(timer.IsTimerActive());
    EXPECT_FALSE(other.IsTimerActive());
    EXPECT_EQ(other.count, 0);
    EXPECT_EQ(periodic.count, 1);
    EXPECT_TRUE(periodic.IsTimerActive());
    EXPECT_TRUE(timer.StopTimer());                      // inactive: nothing to do
    EXPECT_FALSE(timer.StartTimer(1000001, true, true)); // beyond the longest period
    EXPECT_FALSE(timer.IsTimerActive());
    EXPECT_TRUE(timer.StartTimer(1000000, true, true) && timer.StopTimer());
}

TEST_F(Timers, WithoutWindowNothingIsDelivered)
{
    PL_TimerManager::SetUIThread(nullptr);
    CountingTimer timer;
    ASSERT_TRUE(timer.StartTimer(10, true, true));
    runLoop(60);
    PL_TimerManager::GetInstance()->Idle();
    EXPECT_EQ(timer.count, 0);
    EXPECT_TRUE(timer.IsTimerActive()); // never expired as far as it knows

    // A destroyed window counts as none.
    auto gone = std::make_unique<QObject>();
    PL_TimerManager::SetUIThread(gone.get());
    CountingTimer later;
    ASSERT_TRUE(later.StartTimer(10, false, true));
    gone.reset();
    runLoop(60);
    EXPECT_EQ(later.count, 0);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

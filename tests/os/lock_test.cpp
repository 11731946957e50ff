#include <BrindleBaseCore/os/TULock.h>

#include <gtest/gtest.h>

#include <QtCore/QStringList>

#include <atomic>
#include <memory>
#include <thread>

namespace {

// An owner that records what it was asked.
class RecordingOwner : public TULockOwner
{
public:
    using TULockOwner::TULockOwner;
    ~RecordingOwner() override = default;

    QStringList calls;
    bool answer = true;

protected:
    LockResult_t doGetLock(QString const& key) override
    {
        calls << "get " + key;
        return static_cast<LockResult_t>(7);
    }
    bool doReleaseLock(QString const& key) override
    {
        calls << "release " + key;
        return answer;
    }
    bool doForceReleaseLock(QString const& key) override
    {
        calls << "force " + key;
        return !answer;
    }
    LockResult_t doTestLock(QString const& key) override
    {
        calls << "test " + key;
        return static_cast<LockResult_t>(-3);
    }
};

TEST(Lock, EntryPointsForwardUnchanged)
{
    RecordingOwner owner;
    owner.answer = false;
    EXPECT_EQ(int(owner.getLock("a")), 7);
    EXPECT_FALSE(owner.releaseLock("b"));
    EXPECT_TRUE(owner.forceReleaseLock("c"));
    EXPECT_EQ(int(owner.testLock("d")), -3);
    EXPECT_EQ(owner.calls, (QStringList{"get a", "release b", "force c", "test d"}));
}

TEST(Lock, TicketGivesTheLockBack)
{
    RecordingOwner owner;
    {
        TULockTicket held("scene", &owner);
        TULockTicket emptyKey(QString(), &owner);
        EXPECT_EQ(held.owner(), &owner);
        EXPECT_EQ(held.key(), "scene");
    }
    // The empty key only unregistered; the other called the release operation.
    EXPECT_EQ(owner.calls, QStringList{"release scene"});
}

TEST(Lock, CopiesReleaseTooAndReleaseOwnerDetaches)
{
    RecordingOwner owner;
    {
        TULockTicket first("x", &owner);
        TULockTicket copy(first);
        TULockTicket assigned(QString(), nullptr);
        assigned = first;
        EXPECT_EQ(assigned.owner(), &owner);
        first.releaseOwner();
        EXPECT_EQ(first.owner(), nullptr);
    }
    // `first` was detached; its two copies each give the lock back.
    EXPECT_EQ(owner.calls, (QStringList{"release x", "release x"}));
}

TEST(Lock, OwnerDestroyedFirstOrphansTickets)
{
    auto owner = std::make_unique<RecordingOwner>();
    auto a = std::make_unique<TULockTicket>("a", owner.get());
    auto b = std::make_unique<TULockTicket>("b", owner.get());
    auto copyOwner = std::make_unique<RecordingOwner>(*owner); // shares the set
    copyOwner.reset();                                         // orphans every shared ticket
    EXPECT_EQ(a->owner(), nullptr);
    owner.reset();
    EXPECT_EQ(b->owner(), nullptr);
    a.reset(); // no call into the dead owner (ASan would see it)
    b.reset();
}

TEST(Lock, TicketsOfOwnersOnManyThreads)
{
    // Each thread has its own owner, as the protocol requires; they run at once.
    std::atomic<int> released{0};
    std::thread threads[4];
    for (auto& t : threads)
        t = std::thread([&] {
            RecordingOwner owner;
            for (int i = 0; i < 500; ++i) {
                owner.getLock(QString::number(i));
                TULockTicket ticket(QString::number(i), &owner);
            }
            released += int(owner.calls.size()) / 2;
        });
    for (auto& t : threads)
        t.join();
    EXPECT_EQ(released.load(), 2000);
}

} // namespace

#include <BrindleBaseCore/os/TULock.h>

#include <gtest/gtest.h>

#include <QtCore/QStringList>

#include <memory>

namespace {

// An owner that records the releases it was asked for.
class RecordingOwner : public TULockOwner
{
public:
    using TULockOwner::TULockOwner;
    QStringList calls;

protected:
    LockResult_t doGetLock(QString const&) override { return static_cast<LockResult_t>(7); }
    bool doReleaseLock(QString const& key) override
    {
        calls << key;
        return true;
    }
    bool doForceReleaseLock(QString const&) override { return false; }
    LockResult_t doTestLock(QString const&) override { return static_cast<LockResult_t>(-3); }
};

TEST(Lock, TicketGivesTheLockBackOnDestruction)
{
    RecordingOwner owner;
    EXPECT_EQ(int(owner.getLock("scene")), 7); // values pass through unchanged
    EXPECT_EQ(int(owner.testLock("scene")), -3);
    {
        TULockTicket held("scene", &owner);
        TULockTicket emptyKey(QString(), &owner); // only unregisters
        TULockTicket copy(held);                  // not registered, releases all the same
        TULockTicket assigned(QString(), nullptr);
        assigned = held; // takes key and owner
        TULockTicket detached("gone", &owner);
        detached.releaseOwner(); // never calls the owner again
    }
    EXPECT_EQ(owner.calls, (QStringList{"scene", "scene", "scene"}));
}

TEST(Lock, OwnerDestroyedFirstOrphansTickets)
{
    auto owner = std::make_unique<RecordingOwner>();
    auto a = std::make_unique<TULockTicket>("a", owner.get());
    auto b = std::make_unique<TULockTicket>("b", owner.get());
    auto copy = std::make_unique<RecordingOwner>(*owner); // shares the ticket set
    copy.reset();                                         // orphans every shared ticket
    EXPECT_TRUE(a->owner() == nullptr && b->owner() == nullptr);
    owner.reset();
    a.reset(); // no call into the dead owner (ASan would see it)
    b.reset();
}

} // namespace

// Keyed locks: an owner grants named locks and a ticket holds one of them,
// giving it back when the ticket is destroyed.
#pragma once

#include <BrindleBaseCore/Global.h>

#include <QtCore/QString>

#include <memory>
#include <set>

/// A registered ticket of a TULockOwner.
class BRINDLE_EXPORT TULockTicketBase
{
public:
    virtual ~TULockTicketBase();
    /// Forget the owner: the lock is no longer given back through this ticket.
    virtual void releaseOwner() = 0;
};

/// The granting side. A concrete owner implements the four protected operations;
/// the public entry points forward to them unchanged. Tickets register with
/// add() and leave with remove(); an owner that dies first orphans its tickets
/// (releaseOwner) so that none of them calls into it afterwards. The ticket set
/// is not guarded: create and destroy the tickets of one owner on one thread, or
/// guard them in the concrete owner.
class BRINDLE_EXPORT TULockOwner
{
public:
    /// The values are defined by the concrete owners; they are passed through as is.
    enum LockResult_t : int
    {
    };

    TULockOwner();
    /// Deliberately shallow: the copy shares the source's ticket set, and destroying
    /// either one orphans every ticket in it. Copies must not outlive the source.
    TULockOwner(TULockOwner const& other);
    TULockOwner& operator=(TULockOwner const&) = delete;

    LockResult_t getLock(QString const& key) { return doGetLock(key); }
    bool releaseLock(QString const& key) { return doReleaseLock(key); }
    bool forceReleaseLock(QString const& key) { return doForceReleaseLock(key); }
    LockResult_t testLock(QString const& key) { return doTestLock(key); }

    void add(TULockTicketBase* ticket);
    void remove(TULockTicketBase* ticket);

protected:
    virtual ~TULockOwner();

    virtual LockResult_t doGetLock(QString const& key) = 0;
    virtual bool doReleaseLock(QString const& key) = 0;
    virtual bool doForceReleaseLock(QString const& key) = 0;
    virtual LockResult_t doTestLock(QString const& key) = 0;

private:
    std::shared_ptr<std::set<TULockTicketBase*>> m_tickets;
};

/// Holds the lock `key` of `owner`: registers with the owner when constructed and
/// gives the lock back through the owner's release operation when destroyed
/// (an empty key only unregisters). Copies take key and owner without
/// registering, and give the lock back as well when they die.
class BRINDLE_EXPORT TULockTicket : public TULockTicketBase
{
public:
    TULockTicket(QString key, TULockOwner* owner);
    TULockTicket(TULockTicket const& other);
    TULockTicket& operator=(TULockTicket const& other);
    ~TULockTicket() override;

    QString const& key() const { return m_key; }
    TULockOwner* owner() const { return m_owner; }
    void releaseOwner() override;

private:
    bool release();

    QString m_key;
    TULockOwner* m_owner;
};

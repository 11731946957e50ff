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

    /// Takes the lock `key`.
    LockResult_t getLock(QString const& key) { return doGetLock(key); }
    /// Gives back the lock `key`.
    bool releaseLock(QString const& key) { return doReleaseLock(key); }
    /// Gives back the lock `key`, whoever holds it.
    bool forceReleaseLock(QString const& key) { return doForceReleaseLock(key); }
    /// The state of the lock `key`, unchanged.
    LockResult_t testLock(QString const& key) { return doTestLock(key); }

    /// Registers a ticket.
    void add(TULockTicketBase* ticket);
    /// Unregisters a ticket (nothing when unknown).
    void remove(TULockTicketBase* ticket);

protected:
    virtual ~TULockOwner();

    /// Implements getLock().
    virtual LockResult_t doGetLock(QString const& key) = 0;
    /// Implements releaseLock().
    virtual bool doReleaseLock(QString const& key) = 0;
    /// Implements forceReleaseLock().
    virtual bool doForceReleaseLock(QString const& key) = 0;
    /// Implements testLock().
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
    /// Registers with `owner` (null: none); takes no lock itself.
    TULockTicket(QString key, TULockOwner* owner);
    /// Same key and owner, not registered.
    TULockTicket(TULockTicket const& other);
    /// Takes key and owner; registrations are left as they are.
    TULockTicket& operator=(TULockTicket const& other);
    ~TULockTicket() override;

    /// The key (empty once given back).
    QString const& key() const { return m_key; }
    /// The owner, or null once released or orphaned.
    TULockOwner* owner() const { return m_owner; }
    void releaseOwner() override;

private:
    bool release();

    QString m_key;
    TULockOwner* m_owner;
};

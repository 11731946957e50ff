#include <BrindleBaseCore/os/TULock.h>

TULockTicketBase::~TULockTicketBase() = default;

TULockOwner::TULockOwner()
    : m_tickets(std::make_shared<std::set<TULockTicketBase*>>())
{}

TULockOwner::TULockOwner(TULockOwner const& other) = default;

TULockOwner::~TULockOwner()
{
    // releaseOwner must not change the set; copy it all the same in case a
    // ticket class does.
    auto const tickets = *m_tickets;
    for (TULockTicketBase* ticket : tickets)
        ticket->releaseOwner();
    m_tickets->clear();
}

void TULockOwner::add(TULockTicketBase* ticket)
{
    m_tickets->insert(ticket);
}

void TULockOwner::remove(TULockTicketBase* ticket)
{
    m_tickets->erase(ticket);
}

TULockTicket::TULockTicket(QString key, TULockOwner* owner)
    : m_key(std::move(key))
    , m_owner(owner)
{
    if (m_owner)
        m_owner->add(this);
}

TULockTicket::TULockTicket(TULockTicket const& other)
    : TULockTicketBase()
    , m_key(other.m_key)
    , m_owner(other.m_owner)
{}

TULockTicket& TULockTicket::operator=(TULockTicket const& other)
{
    m_key = other.m_key;
    m_owner = other.m_owner;
    return *this;
}

TULockTicket::~TULockTicket()
{
    release();
}

void TULockTicket::releaseOwner()
{
    // Leaving the owner's set as well keeps a detached ticket that dies before
    // its owner from being called back by it.
    if (m_owner)
        m_owner->remove(this);
    m_owner = nullptr;
}

bool TULockTicket::release()
{
    if (!m_owner)
        return true;
    m_owner->remove(this);
    if (m_key.isEmpty())
        return true;
    bool const released = m_owner->releaseLock(m_key);
    m_key.clear();
    m_owner = nullptr;
    return released;
}

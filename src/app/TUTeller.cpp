#include <BrindleBaseCore/app/TUTeller.h>

TUTeller::TUTeller() = default;

TUTeller::TUTeller(TUTeller const& other)
    : m_listeners(other.m_listeners)
    , m_busy(other.m_busy)
{}

TUTeller& TUTeller::operator=(TUTeller const& other)
{
    m_listeners = other.m_listeners;
    m_busy = other.m_busy;
    return *this;
}

TUTeller::~TUTeller()
{
    if (m_busy)
        return;
    m_busy = true;
    // A listener may hang up from tellerDestroyed: step past it before calling.
    for (auto it = m_listeners.begin(); it != m_listeners.end();)
        (*it++)->tellerDestroyed(this);
    m_busy = false;
}

void TUTeller::tell()
{
    if (m_busy)
        return;
    m_busy = true;
    for (auto it = m_listeners.begin(); it != m_listeners.end();)
        (*it++)->hear(this);
    m_busy = false;
}

void TUListener::tellerDestroyed(TUTeller*) {}

void TUListener::phone(TUTeller* teller)
{
    teller->m_listeners.insert(this);
}

void TUListener::hangUp(TUTeller* teller)
{
    teller->m_listeners.erase(this);
}

TUListenerWithAutoDisconnect::TUListenerWithAutoDisconnect() = default;

TUListenerWithAutoDisconnect::TUListenerWithAutoDisconnect(
    TUListenerWithAutoDisconnect const& other)
    : TUListener(other)
    , m_tellers(other.m_tellers)
{}

TUListenerWithAutoDisconnect&
TUListenerWithAutoDisconnect::operator=(TUListenerWithAutoDisconnect const& other)
{
    m_tellers = other.m_tellers;
    return *this;
}

TUListenerWithAutoDisconnect::~TUListenerWithAutoDisconnect()
{
    hangUpAll();
}

void TUListenerWithAutoDisconnect::tellerDestroyed(TUTeller* teller)
{
    m_tellers.erase(teller);
}

void TUListenerWithAutoDisconnect::phone(TUTeller* teller)
{
    TUListener::phone(teller);
    m_tellers.insert(teller);
}

void TUListenerWithAutoDisconnect::hangUp(TUTeller* teller)
{
    TUListener::hangUp(teller);
    m_tellers.erase(teller);
}

void TUListenerWithAutoDisconnect::hangUpAll()
{
    for (auto it = m_tellers.begin(); it != m_tellers.end();) {
        TUTeller* teller = *it++;
        TUListener::hangUp(teller);
        m_tellers.erase(teller);
    }
    m_tellers.clear();
}

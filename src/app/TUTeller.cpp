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
    if (m_busy) {
        // Destroyed by one of its listeners: the running tell() must stop.
        if (m_destroyedWhileTelling)
            *m_destroyedWhileTelling = true;
        return;
    }
    m_busy = true;
    for (TUListener* listener = next(nullptr); listener; listener = next(listener))
        listener->tellerDestroyed(this);
    m_busy = false;
}

TUListener* TUTeller::next(TUListener* after) const
{
    // Looked up afresh each time, so listeners may phone or hang up while told.
    auto it = after ? m_listeners.upper_bound(after) : m_listeners.begin();
    return it == m_listeners.end() ? nullptr : *it;
}

void TUTeller::tell()
{
    if (m_busy)
        return;
    m_busy = true;
    bool destroyed = false;
    m_destroyedWhileTelling = &destroyed;
    for (TUListener* listener = next(nullptr); listener; listener = next(listener)) {
        listener->hear(this);
        if (destroyed)
            return;
    }
    m_destroyedWhileTelling = nullptr;
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

// The library's small observer mechanism: a listener phones a teller to be
// told, and hears each tell().
#pragma once

#include <BrindleBaseCore/Global.h>

#include <set>

class TUListener;
class TUListenerWithAutoDisconnect;

/// Keeps the listeners that phoned it, ordered by address, and tells them in
/// that order. A tell() made while the teller is already telling is dropped;
/// a teller destroyed while telling tells nobody of its end.
/// A copy shares the listener set without the listeners knowing (intended).
class BRINDLE_EXPORT TUTeller
{
public:
    TUTeller();
    TUTeller(TUTeller const& other);
    TUTeller& operator=(TUTeller const& other);
    /// Calls tellerDestroyed(this) on every listener unless it is telling.
    virtual ~TUTeller();

protected:
    /// Calls hear(this) on every listener.
    void tell();

private:
    friend class TUListener;
    friend class TUListenerWithAutoDisconnect;

    TUListener* next(TUListener* after) const;

    std::set<TUListener*> m_listeners;
    bool m_busy = false;
    bool* m_destroyedWhileTelling = nullptr;
};

/// Hears the tellers it phoned. A plain listener is not removed from its
/// tellers when it is destroyed: its owner hangs up first (or uses
/// TUListenerWithAutoDisconnect). It has no virtual destructor (intended): it
/// is never deleted through this class.
class BRINDLE_EXPORT TUListener
{
public:
    virtual void hear(TUTeller* teller) = 0;
    /// Called while the teller is destroyed; does nothing here.
    virtual void tellerDestroyed(TUTeller* teller);

    /// Registers with the teller (once); removes the registration.
    void phone(TUTeller* teller);
    void hangUp(TUTeller* teller);

protected:
    TUListener() = default;
    TUListener(TUListener const&) = default;
    TUListener& operator=(TUListener const&) = default;
    ~TUListener() = default;
};

/// A listener that remembers the tellers it phoned and hangs up on all of them
/// when destroyed. A copy takes the set of tellers without phoning them (intended).
class BRINDLE_EXPORT TUListenerWithAutoDisconnect : public TUListener
{
public:
    TUListenerWithAutoDisconnect();
    TUListenerWithAutoDisconnect(TUListenerWithAutoDisconnect const& other);
    TUListenerWithAutoDisconnect& operator=(TUListenerWithAutoDisconnect const& other);
    ~TUListenerWithAutoDisconnect();

    void tellerDestroyed(TUTeller* teller) override;

    void phone(TUTeller* teller);
    void hangUp(TUTeller* teller);
    void hangUpAll();

private:
    std::set<TUTeller*> m_tellers;
};

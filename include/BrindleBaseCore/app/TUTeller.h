// The library's small observer mechanism: a listener phones a teller to be
// told, and hears each tell().
#pragma once

#include <BrindleBaseCore/Global.h>

#include <set>

class TUListener;
class TUListenerWithAutoDisconnect;

/// The telling side of the observer mechanism. Keeps the listeners that phoned it, ordered by
/// address, and tells them in that order. A tell() made while the teller is already telling is
/// dropped; a teller destroyed while telling tells nobody of its end. A copy shares the listener
/// set without the listeners knowing (intended).
class BRINDLE_EXPORT TUTeller
{
public:
    /// A teller with no listener.
    TUTeller();
    /// Tells the same listeners as `other` (see the class).
    TUTeller(TUTeller const& other);
    /// Tells the same listeners as `other` from now on (see the class).
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
    /// Called by tell() of a teller this listener phoned.
    virtual void hear(TUTeller* teller) = 0;
    /// Called while the teller is destroyed; does nothing here.
    virtual void tellerDestroyed(TUTeller* teller);

    /// Registers with the teller (once).
    void phone(TUTeller* teller);
    /// Removes the registration (nothing when absent).
    void hangUp(TUTeller* teller);

protected:
    TUListener() = default;
    /// The copy has phoned no teller.
    TUListener(TUListener const&) = default;
    /// The copy has phoned no teller.
    TUListener& operator=(TUListener const&) = default;
    ~TUListener() = default;
};

/// A listener that remembers the tellers it phoned and hangs up on all of them
/// when destroyed. A copy takes the set of tellers without phoning them (intended).
class BRINDLE_EXPORT TUListenerWithAutoDisconnect : public TUListener
{
public:
    /// A listener with no teller.
    TUListenerWithAutoDisconnect();
    /// Takes `other`'s tellers without phoning them.
    TUListenerWithAutoDisconnect(TUListenerWithAutoDisconnect const& other);
    /// Takes `other`'s tellers without phoning them.
    TUListenerWithAutoDisconnect& operator=(TUListenerWithAutoDisconnect const& other);
    /// hangUpAll().
    ~TUListenerWithAutoDisconnect();

    /// Forgets the teller.
    void tellerDestroyed(TUTeller* teller) override;

    /// Phones the teller and remembers it.
    void phone(TUTeller* teller);
    /// Hangs up and forgets the teller.
    void hangUp(TUTeller* teller);
    /// Hangs up on every remembered teller.
    void hangUpAll();

private:
    std::set<TUTeller*> m_tellers;
};

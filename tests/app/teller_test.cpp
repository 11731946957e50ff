#include <BrindleBaseCore/app/TUTeller.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

namespace {

// A teller whose tell() the tests may call.
class Announcer : public TUTeller
{
public:
    using TUTeller::tell;
};

// Appends its name to a shared journal when it hears or loses a teller.
template <typename Base>
class Recorder : public Base
{
public:
    Recorder(std::string name, std::vector<std::string>& journal)
        : name(std::move(name))
        , journal(journal)
    {}
    void hear(TUTeller* teller) override
    {
        journal.push_back(name);
        if (onHear)
            onHear(teller);
    }
    void tellerDestroyed(TUTeller* teller) override
    {
        journal.push_back(name + "~");
        Base::tellerDestroyed(teller);
    }

    std::string name;
    std::vector<std::string>& journal;
    std::function<void(TUTeller*)> onHear;
};

using Plain = Recorder<TUListener>;
using Auto = Recorder<TUListenerWithAutoDisconnect>;
using Names = std::vector<std::string>;

// Tells TELLER and returns what was heard during that tell.
Names told(Announcer& teller, Names& journal)
{
    journal.clear();
    teller.tell();
    return journal;
}

TEST(Teller, TellsEachListenerOnceInAddressOrder)
{
    Names journal;
    std::vector<Plain> listeners;
    listeners.reserve(3);
    for (char const* name : {"a", "b", "c"})
        listeners.emplace_back(name, journal);
    Announcer teller;
    for (Plain* l : {&listeners[2], &listeners[0], &listeners[1], &listeners[0]})
        l->phone(&teller);
    EXPECT_EQ(told(teller, journal), (Names{"a", "b", "c"}));

    // The first listener hangs up the second while being told.
    listeners[0].onHear = [&](TUTeller* t) { listeners[1].hangUp(t); };
    EXPECT_EQ(told(teller, journal), (Names{"a", "c"}));
    listeners[1].hangUp(&teller); // no longer there
    EXPECT_EQ(told(teller, journal), (Names{"a", "c"}));
    for (Plain& l : listeners)
        l.hangUp(&teller);
}

TEST(Teller, TellFromInsideANotificationIsDropped)
{
    Names journal;
    Announcer teller;
    Plain listener("l", journal);
    int depth = 0;
    listener.onHear = [&](TUTeller*) {
        if (++depth < 3)
            teller.tell();
    };
    listener.phone(&teller);
    EXPECT_EQ(told(teller, journal), Names{"l"});
    EXPECT_EQ(told(teller, journal), Names{"l"}) << "busy flag must be cleared after a tell";
    listener.hangUp(&teller);
}

TEST(Teller, DestructionTellsListenersUnlessBusy)
{
    Names journal;
    Plain plain("p", journal);
    Auto automatic("a", journal);
    {
        Announcer teller;
        plain.phone(&teller);
        automatic.phone(&teller);
    }
    std::sort(journal.begin(), journal.end());
    EXPECT_EQ(journal, (Names{"a~", "p~"}));

    // Destroyed from inside its own tell: nobody is told.
    auto* teller = new Announcer;
    plain.phone(teller);
    plain.onHear = [](TUTeller* t) { delete static_cast<Announcer*>(t); };
    EXPECT_EQ(told(*teller, journal), Names{"p"});
}

TEST(Teller, AutoDisconnectHangsUpOnDestructionAndHangUpAll)
{
    Names journal;
    Announcer first, second;
    {
        Auto listener("a", journal);
        listener.phone(&first);
        listener.phone(&second);
    }
    EXPECT_TRUE(told(first, journal).empty() && told(second, journal).empty());

    Auto listener("a", journal);
    listener.phone(&first);
    listener.phone(&second);
    listener.hangUp(&first);
    EXPECT_TRUE(told(first, journal).empty());
    EXPECT_EQ(told(second, journal), Names{"a"});
    listener.hangUpAll();
    EXPECT_TRUE(told(second, journal).empty());

    // A teller that died is forgotten: hanging up later does not touch it.
    {
        Announcer shortLived;
        listener.phone(&shortLived);
    }
    listener.hangUpAll();
}

TEST(Teller, CopiesAreShallow)
{
    Names journal;
    Plain plain("p", journal);
    Announcer original;
    plain.phone(&original);
    {
        Announcer copy;
        copy = original;
        EXPECT_EQ(told(copy, journal), Names{"p"});
        plain.hangUp(&copy);
    }
    // A copied auto listener knows the tellers but is not registered with them.
    Auto automatic("a", journal);
    automatic.phone(&original);
    Auto twin(automatic);
    EXPECT_EQ(told(original, journal).size(), 2u) << "p and a, not the twin";
    plain.hangUp(&original);
}

} // namespace

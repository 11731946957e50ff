#include <BrindleBaseCore/app/TUTeller.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace {

// A teller whose tell() the tests may call.
class Announcer : public TUTeller
{
public:
    using TUTeller::tell;
};

// Appends its name to a shared journal when it hears a teller, and its name and '~' when it
// loses one.
template <typename Base>
class Recorder : public Base
{
public:
    Recorder(std::string name, std::string& journal)
        : name(std::move(name))
        , journal(journal)
    {}
    void hear(TUTeller* teller) override
    {
        journal += name;
        if (onHear)
            onHear(teller);
    }
    void tellerDestroyed(TUTeller* teller) override
    {
        journal += name + "~";
        Base::tellerDestroyed(teller);
    }

    std::string name;
    std::string& journal;
    std::function<void(TUTeller*)> onHear;
};

using Plain = Recorder<TUListener>;
using Auto = Recorder<TUListenerWithAutoDisconnect>;

// Tells TELLER and returns what was heard during that tell.
std::string told(Announcer& teller, std::string& journal)
{
    journal.clear();
    teller.tell();
    return journal;
}

TEST(Teller, TellsEachListenerOnceInAddressOrderAndDropsNestedTells)
{
    std::string journal;
    Plain listeners[] = {{"a", journal}, {"b", journal}, {"c", journal}};
    Announcer teller;
    for (Plain* l : {&listeners[2], &listeners[0], &listeners[1], &listeners[0]})
        l->phone(&teller);
    listeners[2].onHear = [&, depth = 0](TUTeller*) mutable {
        if (++depth < 3)
            teller.tell(); // dropped: the teller is busy
    };
    EXPECT_EQ(told(teller, journal), "abc");

    // The first listener hangs up the second while being told.
    listeners[0].onHear = [&](TUTeller* t) { listeners[1].hangUp(t); };
    EXPECT_EQ(told(teller, journal), "ac") << "busy flag must be cleared after a tell";
    listeners[1].hangUp(&teller); // no longer there
    EXPECT_EQ(told(teller, journal), "ac");
}

TEST(Teller, DestructionTellsListenersUnlessBusy)
{
    std::string journal;
    Plain plain("p", journal);
    Auto automatic("a", journal);
    {
        Announcer teller;
        plain.phone(&teller);
        automatic.phone(&teller);
    }
    EXPECT_TRUE(journal == "a~p~" || journal == "p~a~") << journal; // either address order
    // The auto listener forgot the dead teller: its own end must not touch it.

    // Destroyed from inside its own tell: nobody is told.
    auto* teller = new Announcer;
    plain.phone(teller);
    plain.onHear = [](TUTeller* t) { delete static_cast<Announcer*>(t); };
    EXPECT_EQ(told(*teller, journal), "p");
}

TEST(Teller, AutoDisconnectHangsUpOnDestructionAndHangUpAll)
{
    std::string journal;
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
    EXPECT_EQ(told(second, journal), "a");
    listener.hangUpAll();
    EXPECT_TRUE(told(second, journal).empty());
}

TEST(Teller, CopiesAreShallow)
{
    std::string journal;
    Plain plain("p", journal);
    Announcer original;
    plain.phone(&original);
    {
        Announcer copy;
        copy = original;
        EXPECT_EQ(told(copy, journal), "p");
        plain.hangUp(&copy);
    }
    // A copied auto listener knows the tellers but is not registered with them.
    Auto automatic("a", journal);
    automatic.phone(&original);
    Auto twin(automatic);
    EXPECT_EQ(told(original, journal).size(), 2u) << "p and a, not the twin";
}

} // namespace

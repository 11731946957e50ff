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

TEST(Teller, TellsEachListenerOnceInAddressOrder)
{
    std::vector<std::string> journal;
    std::vector<Plain> listeners;
    listeners.reserve(3);
    for (char const* name : {"a", "b", "c"})
        listeners.emplace_back(name, journal);
    Announcer teller;
    for (Plain* l : {&listeners[2], &listeners[0], &listeners[1], &listeners[0]})
        l->phone(&teller);
    teller.tell();
    EXPECT_EQ(journal, (std::vector<std::string>{"a", "b", "c"}));

    // The first listener hangs up the second while being told.
    journal.clear();
    listeners[0].onHear = [&](TUTeller* t) { listeners[1].hangUp(t); };
    teller.tell();
    EXPECT_EQ(journal, (std::vector<std::string>{"a", "c"}));
    listeners[1].hangUp(&teller);
    journal.clear();
    teller.tell();
    EXPECT_EQ(journal, (std::vector<std::string>{"a", "c"}));
    for (Plain& l : listeners)
        l.hangUp(&teller);
}

TEST(Teller, TellFromInsideANotificationIsDropped)
{
    std::vector<std::string> journal;
    Announcer teller;
    Plain listener("l", journal);
    int depth = 0;
    listener.onHear = [&](TUTeller*) {
        if (++depth < 3)
            teller.tell();
    };
    listener.phone(&teller);
    teller.tell();
    EXPECT_EQ(journal, std::vector<std::string>{"l"});
    teller.tell();
    EXPECT_EQ(journal.size(), 2u) << "busy flag must be cleared after a tell";
    listener.hangUp(&teller);
}

TEST(Teller, DestructionTellsListenersUnlessBusy)
{
    std::vector<std::string> journal;
    Plain plain("p", journal);
    Auto automatic("a", journal);
    {
        Announcer teller;
        plain.phone(&teller);
        automatic.phone(&teller);
    }
    std::sort(journal.begin(), journal.end());
    EXPECT_EQ(journal, (std::vector<std::string>{"a~", "p~"}));

    // Destroyed from inside its own tell: nobody is told.
    journal.clear();
    auto* teller = new Announcer;
    plain.phone(teller);
    plain.onHear = [](TUTeller* t) { delete static_cast<Announcer*>(t); };
    teller->tell();
    EXPECT_EQ(journal, std::vector<std::string>{"p"});
}

TEST(Teller, AutoDisconnectHangsUpOnDestructionAndHangUpAll)
{
    std::vector<std::string> journal;
    Announcer first, second;
    {
        Auto listener("a", journal);
        listener.phone(&first);
        listener.phone(&second);
    }
    first.tell();
    second.tell();
    EXPECT_TRUE(journal.empty());

    Auto listener("a", journal);
    listener.phone(&first);
    listener.phone(&second);
    listener.hangUp(&first);
    first.tell();
    second.tell();
    EXPECT_EQ(journal, std::vector<std::string>{"a"});
    listener.hangUpAll();
    second.tell();
    EXPECT_EQ(journal.size(), 1u);

    // A teller that died is forgotten: hanging up later does not touch it.
    {
        Announcer shortLived;
        listener.phone(&shortLived);
    }
    listener.hangUpAll();
}

TEST(Teller, CopiesAreShallow)
{
    std::vector<std::string> journal;
    Plain plain("p", journal);
    Announcer original;
    plain.phone(&original);
    {
        Announcer copy;
        copy = original;
        copy.tell();
        EXPECT_EQ(journal, std::vector<std::string>{"p"});
        plain.hangUp(&copy);
    }
    // A copied auto listener knows the tellers but is not registered with them.
    Auto automatic("a", journal);
    automatic.phone(&original);
    Auto twin(automatic);
    journal.clear();
    original.tell();
    EXPECT_EQ(journal.size(), 2u) << "p and a, not the twin";
    plain.hangUp(&original);
}

} // namespace

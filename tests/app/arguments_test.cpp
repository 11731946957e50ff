// The argument list and the iterator that option parsers walk it with.
#include <BrindleBaseCore/app/BAPP_Application.h>
#include <BrindleBaseCore/app/BAPP_Arguments.h>

#include <gtest/gtest.h>

TEST(Arguments, ReadingOutOfRangeGivesNullAndEraseIgnoresIt)
{
    BAPP_Arguments args(QStringList({"a", "b"}));
    EXPECT_EQ(args.at(1), u"b");
    EXPECT_TRUE(args[2].isNull());
    EXPECT_TRUE(args.at(-1).isNull());
    args.erase(2);
    args.erase(-1);
    args.erase(0);
    EXPECT_EQ(args.list(), QStringList({"b"}));
}

TEST(Arguments, ParseSkipsTheProgramAndDecodesUtf8)
{
    char program[] = "prog", word[] = "caf\xc3\xa9", option[] = "-lang";
    char* argv[] = {program, word, option, nullptr};
    BAPP_Arguments args = BAPP_Application::parseArguments(3, argv);
    EXPECT_EQ(args.list(), QStringList({QStringLiteral(u"café"), "-lang"}));
    EXPECT_EQ(BAPP_Application::parseArguments(1, argv).size(), 0);
}

TEST(ArgumentIterator, LooksAheadAndMovesByOne)
{
    BAPP_Arguments args(QStringList({"-size", "10", "x"}));
    BAPP_ArgumentIterator it = args.begin();
    EXPECT_EQ(*it, u"-size");
    EXPECT_EQ(it[1], u"10");
    EXPECT_TRUE(it[3].isNull());
    EXPECT_TRUE(it.hasMoreArgument(3));
    EXPECT_FALSE(it.hasMoreArgument(4));
    ++it;
    ++it;
    EXPECT_EQ(it->size(), 1);
    EXPECT_TRUE(it.hasMoreArgument(1));
    EXPECT_FALSE(it.hasMoreArgument(2));
    ++it;
    EXPECT_TRUE(it == args.end());
    EXPECT_TRUE(it->isNull());
}

TEST(ArgumentIterator, HandledRemovesInPlaceAndStopsAtTheEnd)
{
    BAPP_Arguments args(QStringList({"a", "-opt", "v", "b"}));
    BAPP_ArgumentIterator it = args.begin();
    ++it;
    it.handled(2); // keeps its index, now that of "b"
    EXPECT_EQ(*it, u"b");
    EXPECT_EQ(args.list(), QStringList({"a", "b"}));

    it.handled(5);
    EXPECT_EQ(args.list(), QStringList({"a"}));
    EXPECT_TRUE(it == args.end());
}

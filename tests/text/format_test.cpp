// UT_FormatMessage and the frame formatter.
#include <BrindleBaseCore/text/UT_Format.h>
#include <BrindleBaseCore/text/UT_String.h>

#include <gtest/gtest.h>

#include <cstdint>

TEST(FormatMessage, PrintfConversions)
{
    EXPECT_EQ(UT_FormatMessage("%d|%5d|%-4d|%04d|%+d", 42, 7, 3, 9, 5), u"42|    7|3   |0009|+5");
    EXPECT_EQ(UT_FormatMessage("%x %X %#o %u", 255, 255, 8, 4000000000u), u"ff FF 010 4000000000");
    EXPECT_EQ(UT_FormatMessage("%hd %ld %qd", 70000, -5L, std::int64_t(1) << 40),
              u"4464 -5 1099511627776");
    EXPECT_EQ(UT_FormatMessage("%.2f %e %g", 3.14159, 1.0, 0.5), u"3.14 1.000000e+00 0.5");
    EXPECT_EQ(UT_FormatMessage("100%% %c%C", 'o', u'\u00E9'), u"100% o\u00E9");
    EXPECT_EQ(UT_FormatMessage(u"%s and %S", "caf\xC3\xA9", u"th\u00E9"),
              u"caf\u00E9 and th\u00E9");
    EXPECT_EQ(UT_FormatMessage("[%6s][%-4S][%.2s]", "ab", u"cd", "efgh"), u"[    ab][cd  ][ef]");
    EXPECT_EQ(UT_FormatMessage("%s/%S", static_cast<char const*>(nullptr),
                               static_cast<UT_Char const*>(nullptr)),
              u"(null)/(null)");
    EXPECT_EQ(UT_FormatMessage("%P", reinterpret_cast<void*>(0xABC)), u"0x0000000000000ABC");
    EXPECT_EQ(UT_FormatMessage("%ls|%hS|%lc|%lld", u"w", "n", u'x', 5LL), u"w|n|x|5");
}

TEST(FormatMessage, StarWidthsPositionsAndManyConversions)
{
    EXPECT_EQ(UT_FormatMessage("%*d|%-*d|%.*f", 4, 1, 3, 2, 1, 2.25), u"   1|2  |2.2");
    EXPECT_EQ(UT_FormatMessage("%*d", -3, 7), u"7  "); // a negative width left-aligns
    EXPECT_EQ(UT_FormatMessage("%2$s %1$s", "world", "hello"), u"hello world");
    EXPECT_EQ(UT_FormatMessage("%2$d %1$.*3$f %2$d", 1.5, 7, 2), u"7 1.50 7");
    EXPECT_EQ(UT_FormatMessage("%1$*2$d|", 5, 3), u"  5|");
    // More conversions than the table on the stack holds.
    char const* format = "%d%d%d%d%d%d%d%d%d%d%d%d";
    EXPECT_EQ(UT_FormatMessage(format, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12), u"123456789101112");
    EXPECT_EQ(UT_FormatMessage("%12$d%11$d%10$d%9$d%8$d%7$d%6$d%5$d%4$d%3$d%2$d%1$d", 1, 2, 3, 4, 5,
                               6, 7, 8, 9, 10, 11, 12),
              u"121110987654321");
}

TEST(FormatMessage, OddSpecificationsAndUnitCounts)
{
    EXPECT_EQ(UT_FormatMessage("%y|%d", 4), u"%y|4");
    EXPECT_EQ(UT_FormatMessage("tail %"), u"tail %");
    EXPECT_EQ(UT_FormatMessage("tail %-5"), u"tail %-5");
    EXPECT_EQ(UT_FormatMessage("%9$d"), u"%9$d"); // beyond what one conversion can use
    EXPECT_EQ(UT_FormatMessage("%0$d"), u"%0$d");
    EXPECT_EQ(UT_FormatMessage("%999999999999d", 1).size(), 1000000u); // width is capped

    // %n and %hn store the UTF-16 units written so far.
    int count = -1;
    short shortCount = -1;
    EXPECT_EQ(UT_FormatMessage("\xC3\xA9t\xC3\xA9%n-%hn", &count, &shortCount), u"\u00E9t\u00E9-");
    EXPECT_EQ(count, 3);
    EXPECT_EQ(shortCount, 4);
}

TEST(FormatFrame, TimecodeFeetAndFrameNumbers)
{
    EXPECT_EQ(UT_FormatFrame(1, 24), u"00:01");
    EXPECT_EQ(UT_FormatFrame(1500, 24), u"01:02:12");
    EXPECT_EQ(UT_FormatFrame(1500, 24, true), u"00:01:02:12");
    EXPECT_EQ(UT_FormatFrame(86400, 24), u"01:00:00:00");
    EXPECT_EQ(UT_FormatFrame(86399, 24), u"59:59:23");
    EXPECT_EQ(UT_FormatFrame(30 * 3600 * 100 + 29, 30), u"100:00:00:29");
    EXPECT_EQ(UT_FormatFrame(5, 0), u"");
    EXPECT_EQ(UT_FormatFrame(5, 1u << 28), u""); // frames per hour wrap to zero

    EXPECT_EQ(UT_Format::formatFrame(35, 24, false, UT_Format::FeetAndFrames), u"2:3");
    EXPECT_EQ(UT_Format::formatFrame(1234, 0, true, UT_Format::FrameNumber), u"1234");
    EXPECT_EQ(UT_Format::formatFrame(35, 24, false, static_cast<UT_Format::frameFormat>(3)), u"");
}

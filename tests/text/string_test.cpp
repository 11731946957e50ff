// UT_String: UTF-8 in and out, the extra operations and the 8-bit conversions.
#include <BrindleBaseCore/text/UT_String.h>

#include <gtest/gtest.h>

#include <clocale>
#include <stdexcept>

TEST(UTString, DecodesUtf8UpToTheFirstBadSequence)
{
    EXPECT_EQ(UT_String("caf\xC3\xA9"), u"caf\u00E9");
    EXPECT_EQ(UT_String("ab\xC3"), u"ab");                     // truncated
    EXPECT_EQ(UT_String("ab\x80x"), u"ab");                    // stray continuation byte
    EXPECT_EQ(UT_String("a\xC0\xAFz"), u"a");                  // overlong
    EXPECT_EQ(UT_String("a\xED\xA0\x80z"), u"a");              // encoded surrogate
    EXPECT_EQ(UT_String("a\xF4\x90\x80\x80z"), u"a");          // above U+10FFFF
    EXPECT_EQ(UT_String("\xF0\x9F\x98\x80!"), u"\U0001F600!"); // two units
    EXPECT_EQ(UT_String(static_cast<char const*>(nullptr)), u"");

    UT_String s(u"old");
    s = "\xE6\x97\xA5\xE6\x9C\xAC";
    EXPECT_EQ(s, u"\u65E5\u672C");
}

TEST(UTString, ChunkBoundariesDoNotChangeTheResult)
{
    // Long runs of each width, shifted so that characters straddle every chunk edge.
    for (std::string piece : {"a", "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80"}) {
        for (int shift = 0; shift < 4; ++shift) {
            std::string bytes(std::size_t(shift), 'x');
            std::u16string expected(std::size_t(shift), u'x');
            std::u16string unit = UT_String(piece.c_str());
            for (int i = 0; i < 300; ++i) {
                bytes += piece;
                expected += unit;
            }
            UT_String decoded(bytes.c_str());
            EXPECT_EQ(decoded, expected);
            EXPECT_EQ(decoded.utf8(), bytes);
            EXPECT_EQ(UT_String((bytes + "\xE2\x82").c_str()), expected); // truncated tail
        }
    }
}

TEST(UTString, Utf8OutputStopsAtAnUnpairedSurrogate)
{
    // Every width round-trips in the chunk test above.
    for (UT_String const bad : {u"ab\xD800", u"ab\xD800x", u"ab\xDC00x"})
        EXPECT_EQ(bad.utf8(), "ab");
    EXPECT_EQ(UT_String(u"a\0b", 3).utf8(), std::string("a\0b", 3));
}

TEST(UTString, QStringRoundTripKeepsEveryUnit)
{
    QString const text = QString::fromUtf16(u"x\0\xD800y", 4);
    UT_String s(text);
    EXPECT_EQ(s.ToQString(), text);
    EXPECT_EQ(UT_String() = text, s);
}

TEST(UTString, BehavesAsTheStandardString)
{
    UT_String s(u"hello");
    EXPECT_THROW(s.substr(6), std::out_of_range);
    EXPECT_THROW(s.erase(9), std::out_of_range);
    // The modifiers return the UT_String itself, so the extra operations chain.
    s.append(u"  ").insert(0, u"  ").TrimLeft().TrimRight();
    EXPECT_EQ(s, u"hello");
    UT_String joined = u"<" + s + u'>';
    EXPECT_EQ(joined.substr(1, 5), u"hello");
    EXPECT_EQ(std::hash<UT_String>{}(s), std::hash<std::u16string>{}(u"hello"));
}

TEST(UTString, CompareAndCaseMapping)
{
    EXPECT_EQ(UT_String(u"ab").compare(UT_String(u"abc")), -1);
    EXPECT_EQ(UT_String(u"abc").compare(u"ab"), 1);
    EXPECT_EQ(UT_String(u"B").compare(u"a"), -1);
    EXPECT_EQ(UT_String(u"\xFFFF").compare(u"a"), 1); // units are unsigned
    EXPECT_EQ(UT_String(u"abc").compare(UT_String(u"abc")), 0);
    EXPECT_EQ(UT_String(u"ab").compare(0, 1, u"a"), 0); // standard overloads remain
    EXPECT_EQ(UT_String(u"Hello").compare_nocase(UT_String(u"hELLO")), 0);
    EXPECT_LT(UT_String(u"abc").compare_nocase(UT_String(u"ABD")), 0);

    // Case mapping stops at the first zero unit and leaves the original alone.
    UT_String const s(u"MiXeD\0TAIL", 10);
    EXPECT_EQ(s.lower(), u"mixed");
    EXPECT_EQ(s.upper(), u"MIXED");
}

TEST(UTString, Trims)
{
    EXPECT_EQ(UT_String(u"x \r\n").TrimRight(), u"x \r"); // carriage return stays
    EXPECT_EQ(UT_String(u"\t\n x").TrimLeft(), u"x");
    EXPECT_EQ(UT_String(u"000").TrimLeft(u'0'), u"");
    EXPECT_EQ(UT_String(u"0120").TrimRight(u'0'), u"012");
    EXPECT_EQ(UT_String(u"--ab-+").TrimRight(u"+-").TrimLeft(u"-"), u"ab");
    EXPECT_EQ(UT_String(u" \t ").TrimRight(), u"");
    UT_String const set(u"x\0y", 3); // the 'y' after the zero is not part of the set
    EXPECT_EQ(UT_String(u"xyax").TrimLeft(set), u"yax");
}

TEST(UTString, NumbersAndLocaleConversions)
{
    EXPECT_EQ(UT_W2Int(UT_String(u"12abc")), 12);
    EXPECT_EQ(UT_W2Int(UT_String(u"  -7")), -7);
    EXPECT_EQ(UT_W2Int(UT_String()), 0);
    EXPECT_EQ(UT_W2Int(UT_String(u"\u01315")), 15); // the low byte of U+0131 is '1'
    EXPECT_DOUBLE_EQ(UT_W2Float(UT_String(u"2,75")), 2.75);
    EXPECT_DOUBLE_EQ(UT_W2Float(UT_String(u"-1.5e2x")), -150.0);
    EXPECT_DOUBLE_EQ(UT_W2Float(UT_String(u"abc")), 0.0);

    ASSERT_NE(std::setlocale(LC_ALL, "C.UTF-8"), nullptr);
    EXPECT_EQ(UT_A2W("caf\xC3\xA9"), u"caf\u00E9");
    EXPECT_EQ(UT_A2W("a\377b"), u"a\uFFFDb"); // not UTF-8: replaced, not cut
    EXPECT_EQ(UT_A2W(nullptr), u"");
    UT_String out(u"previous");
    UT_S2W(std::string("x\0y", 3), out);
    EXPECT_EQ(out, u"x");

    UT_String const wide(u"\u00E9\U0001F600\0\xD800", 5);
    EXPECT_EQ(UT_W2S(wide), std::string("\xC3\xA9\xF0\x9F\x98\x80\0?", 8));

    ASSERT_NE(std::setlocale(LC_ALL, "C"), nullptr);
    EXPECT_EQ(UT_W2S(UT_String(u"a\u00E9")), "a?");
    EXPECT_LT(UT_Compare(UT_String(u"a"), UT_String(u"b")), 0);
    EXPECT_EQ(UT_CompareNoCase(UT_String(u"ABC"), UT_String(u"abc")), 0);
}

TEST(UTString, LoadString)
{
    char const* pair[] = {"TUMessage", "Disk full"};
    EXPECT_EQ(UT_LoadString(pair), u"Disk full");
    EXPECT_EQ(UT_LoadString(static_cast<char const* const*>(nullptr)), u"");
}

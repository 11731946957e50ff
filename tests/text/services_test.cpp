// UT_StringServices: white space, 8-bit copies, the tuple order and conditions.
#include <BrindleBaseCore/text/UT_StringServices.h>

#include <QtCore/QStringList>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>

using namespace UT_StringServices;

TEST(StringServices, FlushSpaceAndIsUnicode)
{
    auto flushed = [](std::string s) {
        FlushSpace(s);
        return s;
    };
    EXPECT_EQ(flushed("\t\v\f\r\n x y \r\n"), "x y");
    EXPECT_EQ(flushed(" \t "), "");
    EXPECT_FALSE(isUnicode(QString()));
    EXPECT_FALSE(isUnicode(QStringLiteral("plain \x7F")));
    EXPECT_TRUE(isUnicode(QString::fromUtf8("caf\xC3\xA9")));
}

TEST(StringServices, Wchar2CharMakesOwnedUtf8Copies)
{
    UT_Char const* in[] = {u"one", u"t\u00E9", nullptr};
    char* out[4] = {reinterpret_cast<char*>(1), reinterpret_cast<char*>(1),
                    reinterpret_cast<char*>(1), reinterpret_cast<char*>(1)};
    wchar2char(in, 3, out, true);
    EXPECT_STREQ(out[0], "one");
    EXPECT_STREQ(out[1], "t\xC3\xA9");
    EXPECT_EQ(out[2], nullptr);
    EXPECT_EQ(out[3], nullptr);
    for (char* copy : out)
        std::free(copy);

    char* single[2] = {nullptr, reinterpret_cast<char*>(1)};
    wchar2char(in, 1, single, false);
    EXPECT_EQ(single[1], reinterpret_cast<char*>(1)); // no terminator asked for
    std::free(single[0]);
}

TEST(StringServices, TupleLessOrdersFileNames)
{
    auto less = NumericAlphanumericTupleLess;
    // "first<second", strictly: numbers by value, names with an extension first
    // and by extension, '/' as the last separator.
    for (QString const pair : {"file2.tga<file10.tga", "a.txt<a", "b.exr<a.tga", "x_1<xA1", "007<7",
                               "a<A", "z<A", "9<a", "<a", "dir.v2/shot<dir.v2/shot1"}) {
        QStringList const ab = pair.split('<');
        EXPECT_TRUE(less(ab[0], ab[1]) && !less(ab[1], ab[0])) << pair.toStdString();
    }
    EXPECT_TRUE(less("a99999999999b", "a1b") || less("a1b", "a99999999999b"));
    for (char const* name : {"", "a", "x.1", "007", "a.b.c", "\xE9", "_", "99999999999"})
        EXPECT_FALSE(less(QString::fromLatin1(name), QString::fromLatin1(name))) << name;
    QStringList names = {"shot10.exr", "shot2.exr", "Shot2.exr", "shot2", "shot_2.exr", "readme"};
    std::stable_sort(names.begin(), names.end(), NumericAlphanumericTupleLess);
    EXPECT_EQ(names, QStringList({"shot_2.exr", "shot2.exr", "shot10.exr", "Shot2.exr", "readme",
                                  "shot2"}));
}

TEST(StringServices, TupleLessIsAStrictWeakOrder)
{
    // std::sort relies on it: check every law on random triples of tricky names.
    static char const alphabet[] = "0019aAzZ_./\\- \xE9";
    std::mt19937 random(99);
    auto name = [&] {
        QByteArray bytes;
        for (std::size_t n = random() % 7; n > 0; --n)
            bytes.append(alphabet[random() % (sizeof alphabet - 1)]);
        if (random() % 6 == 0)
            bytes.append("4294967297");
        return QString::fromLatin1(bytes);
    };
    auto less = NumericAlphanumericTupleLess;
    auto same = [&](QString const& x, QString const& y) { return !less(x, y) && !less(y, x); };
    for (int round = 0; round < 20000; ++round) {
        QString a = name(), b = name(), c = name();
        std::string const names = (a + " | " + b + " | " + c).toStdString();
        ASSERT_FALSE(less(a, a) || (less(a, b) && less(b, a))) << names;
        ASSERT_TRUE(!(less(a, b) && less(b, c)) || less(a, c)) << names;
        ASSERT_TRUE(!(same(a, b) && same(b, c)) || same(a, c)) << names;
    }
}

TEST(StringServices, EvaluateCondition)
{
    std::set<std::string> const defined = {"linux", "x64", "debug_1"};
    for (char const* yes :
         {"linux", "linux && x64", " linux and not windows ", "windows || debug_1",
          "windows or !mac", "windows && mac || linux" /* && binds tighter */, "!!linux",
          "not windows and not mac", "((((linux))))"})
        EXPECT_TRUE(EvaluateCondition(yes, defined)) << yes;
    for (char const* no : {"windows", "!(linux && x64)", "windows && (mac || linux)",
                           "notlinux" /* a name, not an operator */})
        EXPECT_FALSE(EvaluateCondition(no, defined)) << no;
    // Malformed conditions are false.
    for (char const* bad :
         {"", "   ", "linux &&", "&& linux", "linux x64", "(linux", "linux)", "linux & x64",
          "linux | x64", "()", "!", "linux && || x64", "linux$", "linux !x64", "not"})
        EXPECT_FALSE(EvaluateCondition(bad, defined)) << bad;
    std::string deep(200000, '(');
    deep += "linux";
    deep += std::string(200000, ')');
    EXPECT_TRUE(EvaluateCondition(deep, defined));
    EXPECT_FALSE(EvaluateCondition(std::string(200000, '!') + "(", defined));
}

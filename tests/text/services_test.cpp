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
    std::string s = "\t\v\f\r\n x y \r\n";
    FlushSpace(s);
    EXPECT_EQ(s, "x y");
    s = " \t ";
    FlushSpace(s);
    EXPECT_EQ(s, "");
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

TEST(StringServices, TupleLess)
{
    auto less = [](char const* a, char const* b) {
        return NumericAlphanumericTupleLess(QString::fromLatin1(a), QString::fromLatin1(b));
    };
    EXPECT_TRUE(less("file2.tga", "file10.tga"));
    EXPECT_FALSE(less("file10.tga", "file2.tga"));
    EXPECT_TRUE(less("a.txt", "a"));     // extension first
    EXPECT_TRUE(less("b.exr", "a.tga")); // ordered by extension first
    EXPECT_TRUE(less("x_1", "xA1"));
    EXPECT_TRUE(less("007", "7"));
    EXPECT_TRUE(less("a", "A"));
    EXPECT_TRUE(less("z", "A"));
    EXPECT_TRUE(less("9", "a"));
    EXPECT_TRUE(less("", "a"));
    EXPECT_FALSE(less("a", ""));
    EXPECT_TRUE(less("dir.v2/shot", "dir.v2/shot1")); // the last separator is '/'
    EXPECT_TRUE(less("a99999999999b", "a1b") || less("a1b", "a99999999999b"));
    for (char const* name : {"", "a", "x.1", "007", "a.b.c", "\xE9", "_", "99999999999"})
        EXPECT_FALSE(less(name, name)) << name;
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
    for (int round = 0; round < 20000; ++round) {
        QString a = name(), b = name(), c = name();
        ASSERT_FALSE(less(a, a)) << a.toStdString();
        ASSERT_FALSE(less(a, b) && less(b, a)) << a.toStdString() << " " << b.toStdString();
        if (less(a, b) && less(b, c)) {
            ASSERT_TRUE(less(a, c))
                << a.toStdString() << " " << b.toStdString() << " " << c.toStdString();
        }
        bool abEquivalent = !less(a, b) && !less(b, a);
        bool bcEquivalent = !less(b, c) && !less(c, b);
        if (abEquivalent && bcEquivalent) {
            ASSERT_TRUE(!less(a, c) && !less(c, a));
        }
    }
}

TEST(StringServices, TupleLessSortsFileNames)
{
    QStringList names = {"shot10.exr", "shot2.exr", "Shot2.exr", "shot2", "shot_2.exr", "readme"};
    std::stable_sort(names.begin(), names.end(), NumericAlphanumericTupleLess);
    EXPECT_EQ(names, QStringList({"shot_2.exr", "shot2.exr", "shot10.exr", "Shot2.exr", "readme",
                                  "shot2"}));
}

TEST(StringServices, EvaluateCondition)
{
    std::set<std::string> const defined = {"linux", "x64", "debug_1"};
    auto eval = [&](char const* expression) { return EvaluateCondition(expression, defined); };
    EXPECT_TRUE(eval("linux"));
    EXPECT_FALSE(eval("windows"));
    EXPECT_TRUE(eval("linux && x64"));
    EXPECT_TRUE(eval(" linux and not windows "));
    EXPECT_TRUE(eval("windows || debug_1"));
    EXPECT_TRUE(eval("windows or !mac"));
    EXPECT_FALSE(eval("!(linux && x64)"));
    EXPECT_TRUE(eval("windows && mac || linux")); // && binds tighter
    EXPECT_FALSE(eval("windows && (mac || linux)"));
    EXPECT_TRUE(eval("!!linux"));
    EXPECT_TRUE(eval("not windows and not mac"));
    EXPECT_TRUE(eval("((((linux))))"));
    EXPECT_FALSE(eval("notlinux")); // a name, not an operator
}

TEST(StringServices, MalformedConditionsAreFalse)
{
    std::set<std::string> const defined = {"a", "b"};
    for (char const* bad : {"", "   ", "a &&", "&& a", "a b", "(a", "a)", "a & b", "a | b", "()",
                            "!", "a && || b", "a$", "a !b", "not"}) {
        EXPECT_FALSE(EvaluateCondition(bad, defined)) << bad;
    }
    std::string deep(200000, '(');
    deep += "a";
    deep += std::string(200000, ')');
    EXPECT_TRUE(EvaluateCondition(deep, defined));
    EXPECT_FALSE(EvaluateCondition(std::string(200000, '!') + "(", defined));
}

// UT_StringSortNatural: fixed cases and agreement with a direct implementation
// of the token comparison on random names.
#include <BrindleBaseCore/text/UT_StringSortNatural.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>

using namespace UT_StringSortNatural;

namespace {

struct Token
{
    bool number = false;
    QString text;
    std::uint32_t value = 0;
};

std::vector<Token> tokens(QString const& item)
{
    std::vector<Token> list;
    for (QChar c : item) {
        int const digit = c.digitValue();
        if (list.empty() || list.back().number != (digit >= 0))
            list.push_back(Token{digit >= 0, {}, 0});
        if (digit < 0)
            list.back().text.append(c);
        else
            list.back().value = list.back().value * 10 + std::uint32_t(digit);
    }
    return list;
}

// The comparison as stated, straight on QStrings: the reference.
bool referenceLess(QString const& a, QString const& b)
{
    std::vector<Token> ta = tokens(a);
    std::vector<Token> tb = tokens(b);
    for (std::size_t i = 0; i < std::min(ta.size(), tb.size()); ++i) {
        if (ta[i].number != tb[i].number)
            return ta[i].number;
        if (!ta[i].number) {
            int order = ta[i].text.compare(tb[i].text, Qt::CaseInsensitive);
            if (order != 0)
                return order < 0;
        } else if (ta[i].value != tb[i].value) {
            return std::int32_t(ta[i].value) < std::int32_t(tb[i].value);
        }
    }
    if (ta.size() != tb.size())
        return ta.size() < tb.size();
    return a.size() < b.size();
}

std::vector<QString> ordered(std::vector<QString> const& items)
{
    std::vector<QString> result;
    for (std::size_t index : getOrder(items))
        result.push_back(items[index]);
    return result;
}

QString randomName(std::mt19937& random)
{
    // Few symbols so that ties and shared prefixes are frequent.
    static char16_t const alphabet[] = {
        u'a',      u'B',      u'b',      u'_',      u'.',      u'0',      u'1',      u'9',
        u'\u00E9', u'\u00C9', u'\u0663', u'\u00DF', u'\xD801', u'\xDC00', u'\xDC28', u'\u0130'};
    QString name;
    std::size_t length = random() % 12;
    for (std::size_t i = 0; i < length; ++i) {
        if (random() % 8 == 0) { // a long digit run, often past 2^31
            name += QString::number(random() % 5000000000ull);
            continue;
        }
        name.append(QChar(alphabet[random() % std::size(alphabet)]));
    }
    return name;
}

} // namespace

TEST(NaturalSort, SmallCases)
{
    EXPECT_TRUE(getOrder({}).empty());
    EXPECT_EQ(getOrder({"x"}), std::vector<std::size_t>{0});
    std::vector<QString> result = ordered({"b10", "b2", "B2", "a"});
    std::sort(result.begin() + 1, result.begin() + 3); // "b2" and "B2" are equivalent
    EXPECT_EQ(result, (std::vector<QString>{"a", "B2", "b2", "b10"}));
    EXPECT_EQ(ordered({"a01", "a1", "a"}), (std::vector<QString>{"a", "a1", "a01"}));
    EXPECT_EQ(ordered({"x", "1", "x1", ""}), (std::vector<QString>{"", "1", "x", "x1"}));
    // 3000000000 wraps past 2^31 and sorts before small numbers (intended).
    EXPECT_EQ(ordered({"f5", "f3000000000"}), (std::vector<QString>{"f3000000000", "f5"}));
    // Any Unicode decimal digit is a digit: Arabic-Indic three is 3.
    EXPECT_EQ(ordered({"p10", QString::fromUtf8("p\xD9\xA3")}),
              (std::vector<QString>{QString::fromUtf8("p\xD9\xA3"), "p10"}));
    // The range form sorts in place.
    QList<QString> list = {"img12", "img3", "IMG1", "img"};
    sort(list.begin(), list.end());
    EXPECT_EQ(list, (QList<QString>{"img", "IMG1", "img3", "img12"}));
    QList<QString> empty;
    sort(empty.begin(), empty.end()); // an empty range is fine
}

TEST(NaturalSort, AgreesWithTheTokenComparison)
{
    std::mt19937 random(12345);
    for (int round = 0; round < 200; ++round) {
        std::vector<QString> items(1 + random() % 60);
        for (QString& item : items)
            item = randomName(random);
        std::vector<QString> result = ordered(items);
        std::vector<QString> expected = items;
        std::sort(expected.begin(), expected.end(), referenceLess);
        ASSERT_EQ(result.size(), expected.size());
        for (std::size_t i = 0; i < result.size(); ++i) // equivalent element by element
            ASSERT_FALSE(referenceLess(result[i], expected[i]) ||
                         referenceLess(expected[i], result[i]))
                << i << ": " << result[i].toStdString() << " / " << expected[i].toStdString();
    }
}

#include <BrindleBaseCore/os/UT_Id.h>

#include <gtest/gtest.h>

#include <QtCore/QRegularExpression>

#include <set>

TEST(UT_Id, NewIdentifiersAreUniqueAndReadBack)
{
    std::set<UT_Id> seen;
    for (int i = 0; i < 1000; ++i)
        EXPECT_TRUE(seen.insert(UT_Id()).second);

    UT_Id const id;
    EXPECT_FALSE(id.IsNull());
    QString const text = QString::fromStdU16String(id.AsString());
    EXPECT_TRUE(
        QRegularExpression(QStringLiteral("^\\{[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}\\}$"))
            .match(text)
            .hasMatch())
        << text.toStdString();
    EXPECT_EQ(UT_Id::FromString(id.AsString()), id);
    EXPECT_EQ(UT_Id::FromString(UT_String(text.mid(1, 36).toUpper().toStdU16String())), id);
}

TEST(UT_Id, NullAndBadText)
{
    EXPECT_TRUE(UT_Id::Null().IsNull());
    EXPECT_NE(UT_Id(), UT_Id::Null());
    EXPECT_TRUE(UT_Id::FromString(UT_String(u"not an id")).IsNull());
    EXPECT_TRUE(UT_Id::FromString(UT_String()).IsNull());
}

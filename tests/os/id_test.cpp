#include <BrindleBaseCore/os/UT_Id.h>

#include <gtest/gtest.h>

#include <QtCore/QRegularExpression>

TEST(UT_Id, TextFormReadsBackAndBadTextGivesNull)
{
    UT_Id const id;
    EXPECT_NE(id, UT_Id());
    EXPECT_TRUE(UT_Id::Null().IsNull() && !id.IsNull());
    QString const text = QString::fromStdU16String(id.AsString());
    EXPECT_TRUE(
        QRegularExpression(QStringLiteral("^\\{[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}\\}$"))
            .match(text)
            .hasMatch())
        << text.toStdString();
    EXPECT_EQ(UT_Id::FromString(id.AsString()), id);
    EXPECT_EQ(UT_Id::FromString(UT_String(text.mid(1, 36).toUpper().toStdU16String())), id);
    EXPECT_TRUE(UT_Id::FromString(UT_String(u"not an id")).IsNull());
}

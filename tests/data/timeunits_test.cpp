#include <BrindleBaseCore/data/UT_TimeUnits.h>

#include <gtest/gtest.h>

namespace {

std::u16string label(int frame)
{
    UT_String out(u"old");
    UT_TimeUnits::GetInstance()->GetFrameLabel(frame, out);
    return out;
}

} // namespace

TEST(UT_TimeUnits, PlainFrames)
{
    UT_TimeUnits* units = UT_TimeUnits::GetInstance();
    ASSERT_EQ(units, UT_TimeUnits::GetInstance());
    EXPECT_EQ(units->GetNumberingSystem(), UT_TimeUnits::Frames);
    EXPECT_EQ(label(0), u"1");
    EXPECT_EQ(label(99), u"100");
    EXPECT_EQ(label(-1), u"0");
    EXPECT_EQ(label(std::numeric_limits<int>::max()), u"2147483648");
    EXPECT_FALSE(units->ShouldLabelCell(8));
    EXPECT_TRUE(units->ShouldLabelCell(9));
    EXPECT_EQ(units->GetCellColorIndex(9), 1);
    EXPECT_EQ(units->GetCellColorIndex(10), 0);
    EXPECT_EQ(units->GetNbColors(), 2);
    EXPECT_EQ(units->GetColorDelta(), 10);
    EXPECT_EQ(units->GetLabelDelta(), 10);
}

TEST(UT_TimeUnits, GroupsOfSixteen)
{
    UT_TimeUnits* units = UT_TimeUnits::GetInstance();
    units->SetNumberingSystem(UT_TimeUnits::FramesBy16);
    EXPECT_EQ(label(0), u"0:1");
    EXPECT_EQ(label(15), u"1:0");
    EXPECT_EQ(label(16), u"1:1");
    EXPECT_EQ(label(-2), u"0:-1"); // truncating division
    EXPECT_TRUE(units->ShouldLabelCell(15));
    EXPECT_FALSE(units->ShouldLabelCell(16));
    for (int f : {0, 7, 16, 23})
        EXPECT_EQ(units->GetCellColorIndex(f), 1) << f;
    for (int f : {8, 15, 24})
        EXPECT_EQ(units->GetCellColorIndex(f), 0) << f;
    EXPECT_EQ(units->GetNbColors(), 2);
    EXPECT_EQ(units->GetColorDelta(), 8);
    EXPECT_EQ(units->GetLabelDelta(), 16);

    units->SetNumberingSystem(static_cast<UT_TimeUnits::eTimeUnits>(7));
    EXPECT_EQ(label(15), u"16");
    EXPECT_FALSE(units->ShouldLabelCell(9));
    EXPECT_EQ(units->GetCellColorIndex(9), 0);
    EXPECT_EQ(units->GetNbColors(), 1);
    EXPECT_EQ(units->GetColorDelta(), 10);
    EXPECT_EQ(units->GetLabelDelta(), 10);
    units->SetNumberingSystem(UT_TimeUnits::Frames);
}

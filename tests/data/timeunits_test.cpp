#include <BrindleBaseCore/data/UT_TimeUnits.h>

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <tuple>

using namespace std::string_literals;

TEST(UT_TimeUnits, LabelsCellsAndBandsPerSystem)
{
    UT_TimeUnits* units = UT_TimeUnits::GetInstance();
    ASSERT_EQ(units, UT_TimeUnits::GetInstance());
    EXPECT_EQ(units->GetNumberingSystem(), UT_TimeUnits::Frames);
    // {label, shows its label, colour index} of a frame; {colours, colour delta, label delta}.
    auto cell = [&](int frame) {
        UT_String out(u"old");
        units->GetFrameLabel(frame, out);
        return std::tuple(std::u16string(out), units->ShouldLabelCell(frame),
                          units->GetCellColorIndex(frame));
    };
    auto bands = [&] {
        return std::tuple(units->GetNbColors(), units->GetColorDelta(), units->GetLabelDelta());
    };

    EXPECT_EQ(cell(0), std::tuple(u"1"s, false, 0));
    EXPECT_EQ(cell(9), std::tuple(u"10"s, true, 1));
    EXPECT_EQ(cell(-1), std::tuple(u"0"s, true, 1));
    EXPECT_EQ(cell(std::numeric_limits<int>::max()), std::tuple(u"2147483648"s, false, 0));
    EXPECT_EQ(bands(), std::tuple(2, 10, 10));

    units->SetNumberingSystem(UT_TimeUnits::FramesBy16);
    EXPECT_EQ(cell(0), std::tuple(u"0:1"s, false, 1));
    EXPECT_EQ(cell(7), std::tuple(u"0:8"s, false, 1));
    EXPECT_EQ(cell(8), std::tuple(u"0:9"s, false, 0));
    EXPECT_EQ(cell(15), std::tuple(u"1:0"s, true, 0));
    EXPECT_EQ(cell(16), std::tuple(u"1:1"s, false, 1));
    EXPECT_EQ(cell(-2), std::tuple(u"0:-1"s, false, 1)); // truncating division
    EXPECT_EQ(bands(), std::tuple(2, 8, 16));

    units->SetNumberingSystem(static_cast<UT_TimeUnits::eTimeUnits>(7)); // kept, plain labels
    EXPECT_EQ(cell(9), std::tuple(u"10"s, false, 0));
    EXPECT_EQ(cell(15), std::tuple(u"16"s, false, 0));
    EXPECT_EQ(bands(), std::tuple(1, 10, 10));
    units->SetNumberingSystem(UT_TimeUnits::Frames);
}

#include <BrindleBaseCore/data/UT_FrameRate.h>

#include <gtest/gtest.h>

TEST(UT_FrameRate, SnappingAndRationalForm)
{
    UT_FrameRate const ntsc(23.976);
    EXPECT_EQ(ntsc.fps(), 24000.0 / 1001);
    EXPECT_EQ(ntsc.numerator(), 24000);
    EXPECT_EQ(ntsc.denominator(), 1001);
    EXPECT_EQ(ntsc.fpsRound(), 24);
    EXPECT_EQ(ntsc, UT_FrameRate::predefinedFrameRate(UT_FrameRate::Rate23_976));

    UT_FrameRate const near(23.97); // 0.006 away: kept
    EXPECT_EQ(near.fps(), 23.97);
    EXPECT_EQ(near.numerator(), 23970);
    EXPECT_EQ(near.denominator(), 1000);

    UT_FrameRate const video(29.97);
    EXPECT_EQ(video.fps(), 30000.0 / 1001);
    EXPECT_EQ(video.fpsRound(), 30);
    EXPECT_EQ(UT_FrameRate(29.9700999).fps(), 30000.0 / 1001);
    EXPECT_EQ(UT_FrameRate(29.9702).fps(), 29.9702);

    UT_FrameRate const high(59.94); // not predefined, still 60000/1001
    EXPECT_EQ(high.fps(), 59.94);
    EXPECT_EQ(high.numerator(), 60000);
    EXPECT_EQ(high.denominator(), 1001);
    EXPECT_EQ(UT_FrameRate(119.88).numerator(), 120000);
    EXPECT_EQ(UT_FrameRate(25.0).numerator(), 25000);
    EXPECT_EQ(UT_FrameRate(25.0).denominator(), 1000);
    EXPECT_EQ(UT_FrameRate(1e300).numerator(), std::numeric_limits<int>::max());

    EXPECT_EQ(UT_FrameRate(24u), UT_FrameRate::defaultFrameRate());
    EXPECT_EQ(UT_FrameRate(), UT_FrameRate::defaultFrameRate());
    EXPECT_EQ(UT_FrameRate(8.00005).fps(), 8.0);
    EXPECT_EQ(
        UT_FrameRate::predefinedFrameRate(static_cast<UT_FrameRate::PredefinedFrameRate>(8)).fps(),
        30.0);
}

TEST(UT_FrameRate, ValidityAndOrder)
{
    EXPECT_EQ(UT_FrameRate::nullFrameRate().fps(), 0.0);
    EXPECT_FALSE(UT_FrameRate::nullFrameRate().isValid());
    EXPECT_FALSE(UT_FrameRate(-24.0).isValid());
    EXPECT_TRUE(UT_FrameRate(0.5).isValid());
    EXPECT_LT(UT_FrameRate(23.976), UT_FrameRate(24u));
    EXPECT_GT(UT_FrameRate(30u), UT_FrameRate(29.97));
    EXPECT_NE(UT_FrameRate(23.97), UT_FrameRate(23.976));
    UT_FrameRate r(12u);
    r = UT_FrameRate(15.0);
    EXPECT_EQ(r.fps(), 15.0);
    EXPECT_EQ(UT_FrameRate(24.2).fpsRound(), 25);
}

TEST(UT_Timecode, Frames)
{
    EXPECT_EQ(UT_Timecode::getTimeInFrames(u"01:00:00.05"_qs, UT_FrameRate(24u)), 86405u);
    EXPECT_EQ(UT_Timecode::getTimeInFrames(u"00:00:02.03"_qs, UT_FrameRate(25u)), 53u);
    EXPECT_EQ(UT_Timecode::getTimeInFrames(u"00:01:00.00"_qs, UT_FrameRate(29.97)), 1798u);
    EXPECT_EQ(UT_Timecode::getTimeInFrames(u"2.03"_qs, UT_FrameRate(25u)), 53u);
    EXPECT_EQ(UT_Timecode::getTimeInFrames(u"1:2.3"_qs, UT_FrameRate(10u)), 623u);
    EXPECT_EQ(UT_Timecode::getTimeInFrames(u"00:00:10"_qs, UT_FrameRate(24u)), 10u); // all frames
    EXPECT_EQ(UT_Timecode::getTimeInFrames(u"9:1:00:00.01"_qs, UT_FrameRate(24u)), 86401u);
}

TEST(UT_Timecode, GarbageFieldsCountZero)
{
    UT_FrameRate const fps(24u);
    EXPECT_EQ(UT_Timecode::getTimeInFrames(QString(), fps), 0u);
    EXPECT_EQ(UT_Timecode::getTimeInFrames(u"::."_qs, fps), 0u);
    EXPECT_EQ(UT_Timecode::getTimeInFrames(u"xx:01:00.zz"_qs, fps), 1440u);
    EXPECT_EQ(UT_Timecode::getTimeInFrames(u"-1:00:01.-5"_qs, fps), 24u);
    EXPECT_EQ(UT_Timecode::getTimeInFrames(u"1.2.3"_qs, fps), 2u * 24 + 3);
    EXPECT_EQ(UT_Timecode::getTimeInFrames(u"00:00:01.99999999999"_qs, fps), 24u);
    EXPECT_EQ(UT_Timecode::getTimeInFrames(u"4294967295:0:0.0"_qs, fps), 0xFFFFFFFFu);
    EXPECT_EQ(UT_Timecode::getTimeInFrames(u"0.4294967295"_qs, fps), 0xFFFFFFFFu);
    EXPECT_EQ(UT_Timecode::getTimeInFrames(u"1:00.00"_qs, UT_FrameRate(-24.0)), 0u);
    EXPECT_EQ(UT_Timecode::getTimeInFrames(u"1:00.07"_qs, UT_FrameRate(std::nan(""))), 7u);
}

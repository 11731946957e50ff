#include <BrindleBaseCore/data/UT_FrameRate.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <tuple>

namespace {

// {stored rate, numerator, denominator, rounded rate}
std::tuple<double, int, int, int> parts(UT_FrameRate const& r)
{
    return {r.fps(), r.numerator(), r.denominator(), r.fpsRound()};
}

} // namespace

TEST(UT_FrameRate, SnappingRationalFormAndOrder)
{
    using R = UT_FrameRate;
    EXPECT_EQ(parts(R(23.976)), std::tuple(24000.0 / 1001, 24000, 1001, 24));
    EXPECT_EQ(R(23.976), R::predefinedFrameRate(R::Rate23_976));
    EXPECT_EQ(parts(R(23.97)), std::tuple(23.97, 23970, 1000, 24)); // 0.006 away: kept
    EXPECT_EQ(parts(R(29.97)), std::tuple(30000.0 / 1001, 30000, 1001, 30));
    EXPECT_EQ(R(29.9700999).fps(), 30000.0 / 1001);
    EXPECT_EQ(R(29.9702).fps(), 29.9702);
    EXPECT_EQ(parts(R(59.94)), std::tuple(59.94, 60000, 1001, 60)); // not predefined
    EXPECT_EQ(R(119.88).numerator(), 120000);
    EXPECT_EQ(parts(R(25.0)), std::tuple(25.0, 25000, 1000, 25));
    EXPECT_EQ(R(24.2).fpsRound(), 25); // rounded up
    EXPECT_EQ(R(1e300).numerator(), std::numeric_limits<int>::max());
    EXPECT_EQ(R(8.00005).fps(), 8.0);
    EXPECT_EQ(R::predefinedFrameRate(static_cast<R::PredefinedFrameRate>(8)).fps(), 30.0);

    EXPECT_EQ(R(24u), R::defaultFrameRate());
    EXPECT_EQ(R(), R::defaultFrameRate());
    EXPECT_EQ(R::nullFrameRate().fps(), 0.0);
    EXPECT_FALSE(R::nullFrameRate().isValid());
    EXPECT_FALSE(R(-24.0).isValid());
    EXPECT_TRUE(R(0.5).isValid());
    EXPECT_LT(R(23.976), R(24u));
}

TEST(UT_Timecode, FramesAndGarbageFields)
{
    auto frames = [](QString const& text, UT_FrameRate const& fps = UT_FrameRate(24u)) {
        return UT_Timecode::getTimeInFrames(text, fps);
    };
    EXPECT_EQ(frames(u"01:00:00.05"_qs), 86405u);
    EXPECT_EQ(frames(u"00:00:02.03"_qs, UT_FrameRate(25u)), 53u);
    EXPECT_EQ(frames(u"00:01:00.00"_qs, UT_FrameRate(29.97)), 1798u);
    EXPECT_EQ(frames(u"2.03"_qs, UT_FrameRate(25u)), 53u);
    EXPECT_EQ(frames(u"1:2.3"_qs, UT_FrameRate(10u)), 623u);
    EXPECT_EQ(frames(u"00:00:10"_qs), 10u); // a last field without '.' is all frames
    EXPECT_EQ(frames(u"9:1:00:00.01"_qs), 86401u);

    EXPECT_EQ(frames(QString()), 0u);
    EXPECT_EQ(frames(u"xx:01:00.zz"_qs), 1440u);
    EXPECT_EQ(frames(u"-1:00:01.-5"_qs), 24u);
    EXPECT_EQ(frames(u"1.2.3"_qs), 2u * 24 + 3);
    EXPECT_EQ(frames(u"00:00:01.99999999999"_qs), 24u);
    EXPECT_EQ(frames(u"4294967295:0:0.0"_qs), 0xFFFFFFFFu);
    EXPECT_EQ(frames(u"0.4294967295"_qs), 0xFFFFFFFFu);
    EXPECT_EQ(frames(u"1:00.00"_qs, UT_FrameRate(-24.0)), 0u);
    EXPECT_EQ(frames(u"1:00.07"_qs, UT_FrameRate(std::nan(""))), 7u);
}

// TUMaths: wrapping, saturation, interpolation and the generator sequence.
#include <BrindleBaseCore/math/TUMaths.h>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <string>

namespace {
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double qnan = std::numeric_limits<double>::quiet_NaN();
constexpr double pi = 3.141592653589793;
} // namespace

TEST(TUMaths, AngleClampingExcludesTheUpperBoundAndZeroesNonFinite)
{
    EXPECT_EQ(TUMaths::clampAngleFromMinusPiToPi(pi), -pi);
    EXPECT_EQ(TUMaths::clampAngleFromMinus180To180(180.0), -180.0);
    EXPECT_EQ(TUMaths::clampAngleFrom0To360(360.0), 0.0);
    EXPECT_EQ(TUMaths::clampAngleFrom0To360(-30.0), 330.0);
    EXPECT_EQ(TUMaths::clampAngleFrom0To360(725.0), 5.0);
    EXPECT_NEAR(TUMaths::clampAngleFrom0To2Pi(-pi / 2), 1.5 * pi, 1e-15);
    EXPECT_EQ(TUMaths::clampAngleFromMinus180To180(-190.0), 170.0);
    auto const clamps = {&TUMaths::clampAngleFrom0To2Pi, &TUMaths::clampAngleFrom0To360,
                         &TUMaths::clampAngleFromMinus180To180,
                         &TUMaths::clampAngleFromMinusPiToPi};
    for (auto const& clamp : clamps)
        for (double bad : {qnan, inf, -inf})
            EXPECT_EQ(clamp(bad), 0.0) << bad << " in clamp " << &clamp - clamps.begin();
}

TEST(TUMaths, AngleInterpolationTakesTheShortArcButKeepsEndValues)
{
    EXPECT_EQ(TUMaths::interpolateAngleDegree(0.5, 170.0, -170.0), -180.0);
    EXPECT_EQ(TUMaths::interpolateAngleDegree(0.25, 350.0, 10.0), -5.0);
    EXPECT_EQ(TUMaths::interpolateAngleDegree(0.0, 400.0, 10.0), 400.0);
    EXPECT_EQ(TUMaths::interpolateAngleDegree(1.0, 10.0, 400.0), 400.0);
    EXPECT_NEAR(TUMaths::interpolateAngleRadian(0.5, 3.0, -2.5), 3.0 + (2 * pi - 5.5) / 2 - 2 * pi,
                1e-12);
}

TEST(TUMaths, Interpolation)
{
    EXPECT_EQ(TUMaths::interpolate(1.0, 1e300, 0.1), 0.1); // exact at t = 1
    EXPECT_EQ(TUMaths::interpolateInverse(5, 5, 5), 0.0);
    EXPECT_EQ(TUMaths::interpolateInverse(9, 5, 7), 2.0);
    EXPECT_EQ(TUMaths::interpolateInverse(3, 5, 7), -1.0);
    EXPECT_EQ(TUMaths::clampedInterpolateInverse(9, 5, 7), 1.0);
    EXPECT_EQ(TUMaths::clampedInterpolateInverse(3, 5, 7), 0.0);
    EXPECT_EQ(TUMaths::clampedInterpolateInverse(qnan, 5, 7), 0.0);
    for (auto [value, expected] :
         {std::pair{350.0, 0.25}, {10.0, 0.75}, {-10.0, 0.25}, {20.0, 1.0}})
        EXPECT_EQ(TUMaths::circularInterpolateInverse(value, 340, 20, 360), expected) << value;
    EXPECT_EQ(TUMaths::circularInterpolateInverse(15, 10, 20, 360), 0.5);
}

TEST(TUMaths, RoundingSaturatesToInt32)
{
    EXPECT_EQ(TUMaths::iceiling(3e9), INT_MAX);
    EXPECT_EQ(TUMaths::ifloor(-3e9), INT_MIN);
    EXPECT_EQ(TUMaths::ifloor(qnan), INT_MIN);
    EXPECT_EQ(TUMaths::round(2.5), 3);
    EXPECT_EQ(TUMaths::round(-2.5), -2);
    EXPECT_EQ(TUMaths::round(2147483647.4), INT_MAX);
    EXPECT_EQ(TUMaths::round(1.2345, 2), 1.23);
    EXPECT_EQ(TUMaths::quantumRound(7.0, 5.0), 5.0);
    EXPECT_EQ(TUMaths::quantumCeiling(7.0, 5.0), 10.0);
    EXPECT_EQ(TUMaths::quantumFloor(-1.0, 5.0), -5.0);
}

TEST(TUMaths, IntegerFormsWrap)
{
    EXPECT_EQ(TUMaths::square(46341), -2147479015); // 46341² wraps in 32 bits
    EXPECT_EQ(TUMaths::abs(INT_MIN), INT_MIN);
    EXPECT_EQ(TUMaths::length(3, 4), 5);
    EXPECT_EQ(TUMaths::length(65536, 0), 0); // 2^32 wraps to 0
}

TEST(TUMaths, PowersOfTwo)
{
    for (auto f : {&TUMaths::nextPowerOfTwo, &TUMaths::nearestPowerOfTwo}) {
        EXPECT_EQ(f(0), 0u);
        EXPECT_EQ(f(1), 1u);
        EXPECT_EQ(f(5), 8u);
        EXPECT_EQ(f(8), 8u);
        EXPECT_EQ(f(0x80000000u), 0x80000000u);
        EXPECT_EQ(f(0x80000001u), 1u);
    }
    EXPECT_TRUE(TUMaths::isPowerOfTwo(0)); // intended
}

TEST(TUMaths, SignsBoundsAndNonFiniteValues)
{
    EXPECT_EQ(TUMaths::sign(qnan), 1);
    EXPECT_EQ(TUMaths::sign(-0.0), 0);
    EXPECT_EQ(TUMaths::dmax(qnan, 2.0), 2.0);
    EXPECT_EQ(TUMaths::dmin(qnan, 2.0), 2.0);
    // With lo > hi the two clamps disagree by which bound they test first.
    EXPECT_EQ(TUMaths::clamp(5, 10, 0), 10);
    EXPECT_EQ(TUMaths::clipToRange(5, 10, 0), 0);
    EXPECT_TRUE(TUMaths::between(1.0, 1.0, 2.0));
    EXPECT_EQ(TUMaths::removeNanOrInfinity(-inf), -1.7976931348623157e308);
    EXPECT_EQ(TUMaths::removeNanOrInfinity(qnan), 0.0);
    EXPECT_EQ(TUMaths::removeNanOrInfinity(std::numeric_limits<float>::infinity()), 3.4028235e38f);
    // Computed through the reciprocal of ln 2, bit for bit.
    EXPECT_EQ(TUMaths::log2(8.0), std::log(8.0) * (1.0 / std::log(2.0)));
}

TEST(TUMaths, IsDigitLooksAtOneCharacter)
{
    std::string yes[] = {"-5", "5abc", "7"};
    std::string no[] = {"-", "a5", "", "--5", "x"};
    for (auto const& s : yes)
        EXPECT_TRUE(TUMaths::isDigit(&s)) << s;
    for (auto const& s : no)
        EXPECT_FALSE(TUMaths::isDigit(&s)) << s;
    EXPECT_FALSE(TUMaths::isDigit(nullptr));
}

TEST(TUMaths, GeneratorReproducesItsSequence)
{
    // The first results of the 48-bit generator with multiplier
    // 0xFEDCBA95DEECE66D from its fixed start state.
    EXPECT_EQ(TUMaths::lrand48(), 1995239727);
    EXPECT_EQ(TUMaths::lrand48(), 527222820);
    EXPECT_EQ(TUMaths::lrand48(), 202153320);
}

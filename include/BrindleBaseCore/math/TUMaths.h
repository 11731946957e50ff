/// @file
/// Scalar helpers of the geometry kernel: clamping, rounding with int32
/// saturation, interpolation, angle wrapping, powers of two and a 48-bit
/// pseudo-random generator.
#pragma once

#include <BrindleBaseCore/Global.h>

#include <cctype>
#include <climits>
#include <cmath>
#include <string>

namespace Math::Internal {

/// Truncates towards zero to int32 the way the processor's conversion does:
/// NaN and values outside the int32 range give INT_MIN instead of being
/// undefined.
inline int truncateToInt32(double v)
{
    if (v > -2147483649.0 && v < 2147483648.0)
        return static_cast<int>(v);
    return INT_MIN;
}

/// Truncation to int32 with saturation: above the range gives INT_MAX, below
/// (and NaN) gives INT_MIN.
inline int saturateToInt32(double v)
{
    if (v > 2147483647.0)
        return INT_MAX;
    if (v < -2147483648.0)
        return INT_MIN;
    return truncateToInt32(v);
}

/// x modulo 2^32 as int32, for the results that are defined to wrap.
inline int wrapToInt32(unsigned x)
{
    return static_cast<int>(x);
}

} // namespace Math::Internal

/// Static scalar helpers: clamping, rounding, interpolation, angle wrapping,
/// powers of two and a pseudo-random generator. Comparisons are exact unless
/// epsilon() is named. Nothing throws: rounding to int saturates (NaN gives
/// INT_MIN), angle wrapping turns NaN and infinity into 0, and the int forms
/// of square() and length() wrap in 32 bits (intended).
class BRINDLE_EXPORT TUMaths
{
public:
    /// The tolerance of the few tests that name it: 1e-7.
    static double epsilon() { return _epsilon; }

    /// Absolute value; abs(INT_MIN) wraps to INT_MIN (intended).
    static int abs(int v) { return v < 0 ? Math::Internal::wrapToInt32(0u - unsigned(v)) : v; }
    /// Absolute value.
    static float abs(float v) { return std::fabs(v); }
    /// Absolute value.
    static double abs(double v) { return std::fabs(v); }

    /// -1, 0 or +1; a NaN gives +1.
    static int sign(int v) { return v < 0 ? -1 : (v == 0 ? 0 : 1); }
    /// See sign(int); a NaN gives +1.
    static int sign(float v) { return v < 0 ? -1 : (v == 0 ? 0 : 1); }
    /// See sign(int); a NaN gives +1.
    static int sign(double v) { return v < 0 ? -1 : (v == 0 ? 0 : 1); }

    /// The int form wraps on overflow (intended).
    static int square(int v) { return Math::Internal::wrapToInt32(unsigned(v) * unsigned(v)); }
    /// v·v.
    static double square(double v) { return v * v; }

    /// The smaller of a and b.
    static int imin(int a, int b) { return a < b ? a : b; }
    /// The larger of a and b.
    static int imax(int a, int b) { return a > b ? a : b; }
    /// A NaN first argument yields the second one.
    static double dmin(double a, double b) { return a < b ? a : b; }
    /// A NaN first argument yields the second one.
    static double dmax(double a, double b) { return a > b ? a : b; }

    /// clamp tests the lower bound first, clipToRange the upper bound first:
    /// they differ only when lo > hi.
    static int clamp(int v, int lo, int hi) { return v < lo ? lo : imin(v, hi); }
    /// See clamp(int, int, int).
    static double clamp(double v, double lo, double hi) { return v < lo ? lo : dmin(v, hi); }
    /// See clamp(int, int, int): the upper bound is tested first.
    static int clipToRange(int v, int lo, int hi) { return v > hi ? hi : imax(v, lo); }
    /// See clamp(int, int, int): the upper bound is tested first.
    static double clipToRange(double v, double lo, double hi) { return v > hi ? hi : dmax(v, lo); }
    /// Whether lo ≤ v ≤ hi.
    static bool between(double v, double lo, double hi) { return v >= lo && v <= hi; }

    /// Degrees to radians.
    static double convertDegreesToRadians(double d) { return d * 0.017453292519943295; }
    /// Radians to degrees.
    static double convertRadiansToDegrees(double r) { return r * 57.29577951308232; }

    /// Whether v is NaN.
    static bool isNan(double v) { return std::isnan(v); }
    /// Whether v is infinite.
    static bool isInfinity(double v) { return std::isinf(v); }
    /// Whether v is NaN or infinite.
    static bool isNanOrInfinity(double v) { return !std::isfinite(v); }
    /// +-inf become the largest finite values, NaN becomes 0.
    static double removeNanOrInfinity(double v)
    {
        if (std::isnan(v))
            return 0.0;
        if (std::isinf(v))
            return v > 0 ? 1.7976931348623157e308 : -1.7976931348623157e308;
        return v;
    }
    /// Float form: ±inf become the largest finite floats, NaN becomes 0.
    static float removeNanOrInfinity(float v)
    {
        if (std::isnan(v))
            return 0.0f;
        if (std::isinf(v))
            return v > 0 ? 3.4028235e38f : -3.4028235e38f;
        return v;
    }

    /// Rounded to int32 with saturation; NaN gives INT_MIN.
    static int iceiling(double v) { return Math::Internal::saturateToInt32(std::ceil(v)); }
    /// Floor to int32 with saturation; NaN gives INT_MIN.
    static int ifloor(double v) { return Math::Internal::saturateToInt32(std::floor(v)); }
    /// Nearest int32, halves up, with saturation; NaN gives INT_MIN.
    static int round(float v) { return round(double(v)); }
    /// Nearest int32, halves up, with saturation; NaN gives INT_MIN.
    static int round(double v) { return Math::Internal::saturateToInt32(std::floor(v + 0.5)); }
    /// Rounded to the given number of decimal digits, halves up.
    static double round(double v, int digits)
    {
        double p = std::pow(10.0, digits);
        return std::floor(p * v + 0.5) / p;
    }

    /// The largest multiple of q not above v.
    static double quantumFloor(double v, double q) { return std::floor(v / q) * q; }
    /// The smallest multiple of q not below v.
    static double quantumCeiling(double v, double q) { return std::ceil(v / q) * q; }
    /// The nearest multiple of q, halves up.
    static double quantumRound(double v, double q) { return std::floor(v / q + 0.5) * q; }

    /// The sum of squares wraps in 32 bits (intended); a negative sum gives
    /// INT_MIN.
    static int length(int x, int y)
    {
        int sum =
            Math::Internal::wrapToInt32(unsigned(x) * unsigned(x) + unsigned(y) * unsigned(y));
        return Math::Internal::truncateToInt32(std::sqrt(double(sum)));
    }
    /// Euclidean length of (x, y).
    static double length(double x, double y) { return std::sqrt(x * x + y * y); }

    /// Base-2 logarithm.
    static double log2(double v);

    /// True for 0 as well.
    static bool isPowerOfTwo(unsigned v) { return (v & (v - 1)) == 0; }
    /// The smallest power of two not below v; 0 gives 0 and anything above
    /// 2^31 gives 1 (the shift wraps, intended).
    static unsigned nextPowerOfTwo(unsigned v)
    {
        if (v == 0)
            return 0;
        unsigned h = 31u - unsigned(__builtin_clz(v));
        return v == (1u << h) ? v : 1u << ((h + 1) & 31u);
    }
    /// Intended: the same as nextPowerOfTwo, not the nearest power.
    static unsigned nearestPowerOfTwo(unsigned v) { return nextPowerOfTwo(v); }

    /// t == 1 gives b exactly.
    static double interpolate(double t, double a, double b) { return t == 1 ? b : a + (b - a) * t; }
    /// Where v lies from a (0) to b (1), unclamped; 0 when a == b or v == a.
    static double interpolateInverse(double v, double a, double b)
    {
        if (v == a || a == b)
            return 0.0;
        if (v == b)
            return 1.0;
        return (v - a) / (b - a);
    }
    /// Like interpolateInverse but in [0, 1]; NaN and infinity give 0.
    static double clampedInterpolateInverse(double v, double a, double b);
    /// Where v lies on the arc from a to b of a circle with the given period.
    static double circularInterpolateInverse(double v, double a, double b, double period);
    /// Along the shorter arc; the result is wrapped except at t == 0 and t == 1.
    static double interpolateAngleDegree(double t, double a, double b);
    /// See interpolateAngleDegree(), in radians.
    static double interpolateAngleRadian(double t, double a, double b);

    /// Wrap into a half-open interval; NaN and infinity give 0.
    static double clampAngleFrom0To2Pi(double a);
    /// Into [0, 360).
    static double clampAngleFrom0To360(double a);
    /// Into [−180, 180).
    static double clampAngleFromMinus180To180(double a);
    /// Into [−pi, pi).
    static double clampAngleFromMinusPiToPi(double a);

    /// Whether the first character (after a leading '-' when longer than one
    /// character) is a digit; the rest is not examined.
    static bool isDigit(std::string const* s)
    {
        if (s == nullptr || s->empty())
            return false;
        std::size_t i = (s->size() > 1 && (*s)[0] == '-') ? 1 : 0;
        return std::isdigit(static_cast<unsigned char>((*s)[i])) != 0;
    }

    /// 48-bit linear congruential generator with process-wide state and no
    /// seeding; not thread-safe. Results are in [0, 2^31).
    static long lrand48();

protected:
    /// The value epsilon() returns.
    static constexpr double _epsilon = 1e-7;
};

#include <BrindleBaseCore/math/TUMaths.h>

#include <cstdint>

namespace {

constexpr double twoPi = 6.283185307179586;
constexpr double pi = 3.141592653589793;

double wrapAngle(double x, double period, double lower, double upper)
{
    if (!std::isfinite(x))
        return 0.0;
    double r = std::fmod(x, period);
    while (r >= upper)
        r -= period;
    while (r < lower)
        r += period;
    return r;
}

double interpolateAngle(double t, double a, double b, double (*wrap)(double))
{
    if (t == 0)
        return a;
    if (t == 1)
        return b;
    return wrap(a + wrap(b - a) * t);
}

double wrapIntoPeriod(double v, double period)
{
    v = std::fmod(v, period);
    while (v < 0)
        v += period;
    return v;
}

// Generator state: the low, middle and high 16-bit words.
std::uint16_t randState[3] = {0x330E, 0x07AF, 0x0000};

} // namespace

double TUMaths::log2(double v)
{
    static const double factor = 1.0 / std::log(2.0);
    return std::log(v) * factor;
}

double TUMaths::clampedInterpolateInverse(double v, double a, double b)
{
    if (v == a || a == b)
        return 0.0;
    if (v != b && (v - a) / (b - a) <= 0)
        return 0.0;
    double r = v == b ? 1.0 : (v - a) / (b - a);
    if (!std::isfinite(r))
        return 0.0;
    return dmin(r, 1.0);
}

double TUMaths::circularInterpolateInverse(double v, double a, double b, double period)
{
    v = wrapIntoPeriod(v, period);
    a = wrapIntoPeriod(a, period);
    b = wrapIntoPeriod(b, period);
    if (v == a || a == b)
        return 0.0;
    if (v == b)
        return 1.0;
    if (b > a) {
        if (a > v)
            b -= period;
        else if (v > b)
            a += period;
    } else {
        if (b > v)
            a -= period;
        else if (v > a)
            b += period;
    }
    return clampedInterpolateInverse(v, a, b);
}

double TUMaths::interpolateAngleDegree(double t, double a, double b)
{
    return interpolateAngle(t, a, b, &clampAngleFromMinus180To180);
}

double TUMaths::interpolateAngleRadian(double t, double a, double b)
{
    return interpolateAngle(t, a, b, &clampAngleFromMinusPiToPi);
}

double TUMaths::clampAngleFrom0To2Pi(double a)
{
    return wrapAngle(a, twoPi, 0.0, twoPi);
}
double TUMaths::clampAngleFrom0To360(double a)
{
    return wrapAngle(a, 360.0, 0.0, 360.0);
}
double TUMaths::clampAngleFromMinus180To180(double a)
{
    return wrapAngle(a, 360.0, -180.0, 180.0);
}
double TUMaths::clampAngleFromMinusPiToPi(double a)
{
    return wrapAngle(a, twoPi, -pi, pi);
}

long TUMaths::lrand48()
{
    std::uint64_t x =
        (std::uint64_t(randState[2]) << 32) | (std::uint64_t(randState[1]) << 16) | randState[0];
    // Intended: this multiplier, not the usual 0x5DEECE66D; only its low 48
    // bits matter.
    x = (x * 0xFEDCBA95DEECE66DULL + 0xBULL) & 0xFFFFFFFFFFFFULL;
    randState[0] = std::uint16_t(x);
    randState[1] = std::uint16_t(x >> 16);
    randState[2] = std::uint16_t(x >> 32);
    return long(x >> 17);
}

// Plane vectors and points: Math::Vector2d (free vector), Math::Point2d
// (position) and Math::Point2di (integer position). Comparisons are exact.
#pragma once

#include <BrindleBaseCore/Global.h>
#include <BrindleBaseCore/math/Axis.h>
#include <BrindleBaseCore/math/TUMaths.h>

#include <cmath>
#include <cstdint>
#include <type_traits>

namespace Math {

namespace detail {

/// The two coordinates shared by Vector2d and Point2d: stored contiguously
/// (x, y), read and written in both generations' spellings. Not used on its own.
class Coordinates2d
{
public:
    double GetX() const { return _x; }
    double GetY() const { return _y; }
    double x() const { return _x; }
    double y() const { return _y; }
    double& x() { return _x; }
    double& y() { return _y; }
    void SetX(double v) { _x = v; }
    void SetY(double v) { _y = v; }
    void SetXY(double px, double py) { _x = px, _y = py; }
    void setX(double v) { _x = v; }
    void setY(double v) { _y = v; }
    void setXY(double px, double py) { _x = px, _y = py; }
    double operator()(Axis2d a) const { return (&_x)[int(a)]; }
    double& operator()(Axis2d a) { return (&_x)[int(a)]; }
    double const* asArray() const { return &_x; }
    double* asArray() { return &_x; }

protected:
    Coordinates2d() = default;
    Coordinates2d(double px, double py)
        : _x(px)
        , _y(py)
    {}

    double _x = 0.0;
    double _y = 0.0;
};

} // namespace detail

class Matrix2x3;
class Point2d;

/// An int32 point.
class BRINDLE_EXPORT Point2di
{
public:
    Point2di() = default;
    Point2di(std::int32_t px, std::int32_t py)
        : _x(px)
        , _y(py)
    {}

    std::int32_t x() const { return _x; }
    std::int32_t y() const { return _y; }
    std::int32_t& x() { return _x; }
    std::int32_t& y() { return _y; }
    bool operator==(Point2di const& p) const { return _x == p._x && _y == p._y; }
    bool operator!=(Point2di const& p) const { return !(*this == p); }

private:
    std::int32_t _x = 0;
    std::int32_t _y = 0;
};

/// A free vector of the plane. Every test below is exact (no tolerance); the
/// angle and normalising functions give fixed results for the zero vector.
class BRINDLE_EXPORT Vector2d : public detail::Coordinates2d
{
    friend class Point2d;

public:
    Vector2d() = default;
    Vector2d(double px, double py)
        : Coordinates2d(px, py)
    {}

    Vector2d operator+(Vector2d const& v) const { return {_x + v._x, _y + v._y}; }
    Vector2d operator-(Vector2d const& v) const { return {_x - v._x, _y - v._y}; }
    Vector2d operator-() const { return {-_x, -_y}; }
    Vector2d& operator+=(Vector2d const& v) { return _x += v._x, _y += v._y, *this; }
    Vector2d& operator-=(Vector2d const& v) { return _x -= v._x, _y -= v._y, *this; }
    Vector2d operator*(double f) const { return {_x * f, _y * f}; }
    Vector2d operator/(double f) const { return {_x / f, _y / f}; }
    Vector2d& operator*=(double f) { return _x *= f, _y *= f, *this; }
    Vector2d& operator/=(double f) { return _x /= f, _y /= f, *this; }
    /// Dot product.
    double operator*(Vector2d const& v) const { return _x * v._x + _y * v._y; }
    /// Transforms without translation (defined in Matrix2x3.h).
    Vector2d operator*(Matrix2x3 const& m) const;
    Vector2d& operator*=(Matrix2x3 const& m);

    bool operator==(Vector2d const& v) const { return _x == v._x && _y == v._y; }
    bool operator!=(Vector2d const& v) const { return !(*this == v); }
    /// Intended: y first, then x (points sort x first).
    bool operator<(Vector2d const& v) const { return VectorLessYX()(*this, v); }

    double GetLength() const { return std::sqrt(_x * _x + _y * _y); }
    double GetLengthSq() const { return _x * _x + _y * _y; }
    double length() const { return GetLength(); }
    double lengthSq() const { return GetLengthSq(); }
    /// Cross product of this and b.
    double GetDeterminant(Vector2d const& b) const { return _x * b._y - _y * b._x; }
    /// Signed cosine and sine of the angle to b, not clamped; 0 for a zero vector.
    double GetCos(Vector2d const& b) const;
    double GetSin(Vector2d const& b) const;
    /// No guard against a zero divisor.
    double GetTan(Vector2d const& b) const { return GetDeterminant(b) / (*this * b); }
    double GetCotan(Vector2d const& b) const { return (*this * b) / GetDeterminant(b); }
    /// cos² and sin² carrying the sign of the dot and cross products.
    double GetSignedCosSq(Vector2d const& b) const;
    double GetSignedSinSq(Vector2d const& b) const;
    double GetRadian() const { return (_x == 0 && _y == 0) ? 0.0 : std::atan2(_y, _x); }
    double GetDegree() const { return GetRadian() * 57.29577951308232; }
    void SetRadian(double r) { *this = fromRadiansAndLength(r, GetLength()); }
    void SetDegree(double d) { SetRadian(d * 0.017453292519943295); }
    /// The zero vector is left unchanged.
    void SetLength(double l);
    void Normalize();
    Vector2d GetNormalizedVector() const;
    double GetProjectedRatio(Vector2d const& b) const;
    void Project(Vector2d const& b) { *this = GetProjectedVector(b); }
    Vector2d GetProjectedVector(Vector2d const& b) const;
    void Rotate90() { *this = GetRotated90(); }
    Vector2d GetRotated90() const { return {-_y, _x}; }
    void Rotate270() { *this = GetRotated270(); }
    Vector2d GetRotated270() const { return {_y, -_x}; }
    /// Counter-clockwise.
    void RotateRadian(double r) { *this = GetRotatedVector(r); }
    void RotateDegree(double d) { RotateRadian(d * 0.017453292519943295); }
    Vector2d GetRotatedVector(double r) const;
    void Round(double q)
    {
        _x = TUMaths::quantumRound(_x, q);
        _y = TUMaths::quantumRound(_y, q);
    }
    void Negate() { _x = -_x, _y = -_y; }

    bool IsDegenerate() const { return _x == 0 && _y == 0; }
    bool IsParallel(Vector2d const& b) const { return GetDeterminant(b) == 0; }
    bool IsAligned(Vector2d const& b) const { return GetDeterminant(b) == 0 && *this * b >= 0; }
    bool IsAntiAligned(Vector2d const& b) const { return GetDeterminant(b) == 0 && *this * b <= 0; }
    bool IsLeftTurn(Vector2d const& b) const { return GetDeterminant(b) > 0; }
    bool IsLeftTurnOrParallel(Vector2d const& b) const { return GetDeterminant(b) >= 0; }
    bool IsRightTurn(Vector2d const& b) const { return GetDeterminant(b) < 0; }
    bool IsRightTurnOrParallel(Vector2d const& b) const { return GetDeterminant(b) <= 0; }
    bool hasNan() const { return std::isnan(_x) || std::isnan(_y); }
    bool hasInfinity() const { return std::isinf(_x) || std::isinf(_y); }
    bool hasNanOrInfinity() const { return !std::isfinite(_x) || !std::isfinite(_y); }

    Point2d GetPoint() const;

    static Vector2d fromRadiansAndLength(double r, double l)
    {
        return {l * std::cos(r), l * std::sin(r)};
    }
    static Vector2d fromDegreesAndLength(double d, double l)
    {
        return fromRadiansAndLength(d * 0.017453292519943295, l);
    }
    /// No special case for t == 1.
    static Vector2d interpolate(double t, Vector2d const& a, Vector2d const& b)
    {
        return {a._x + (b._x - a._x) * t, a._y + (b._y - a._y) * t};
    }

    struct VectorLessXY
    {
        bool operator()(Vector2d const& a, Vector2d const& b) const
        {
            return a._x < b._x || (a._x == b._x && a._y < b._y);
        }
    };
    struct VectorLessYX
    {
        bool operator()(Vector2d const& a, Vector2d const& b) const
        {
            return a._y < b._y || (a._y == b._y && a._x < b._x);
        }
    };
    /// By atan2 angle in (-pi, pi], lower half first.
    struct BRINDLE_EXPORT VectorLessSignedAngle
    {
        bool operator()(Vector2d const& a, Vector2d const& b) const;
    };
    /// Upper half first. Intended: a vector on the positive x axis is less than
    /// nothing, and nothing in the upper half is less than it.
    struct BRINDLE_EXPORT VectorLessUnsignedAngle
    {
        bool operator()(Vector2d const& a, Vector2d const& b) const;
    };
    /// Whether b lies within the counter-clockwise sweep from a to c.
    struct BRINDLE_EXPORT VectorInBetweenAngle
    {
        bool operator()(Vector2d const& a, Vector2d const& b, Vector2d const& c) const;
    };
};

inline Vector2d operator*(double f, Vector2d const& v)
{
    return v * f;
}

/// A position in the plane.
class BRINDLE_EXPORT Point2d : public detail::Coordinates2d
{
    friend class Vector2d;

public:
    Point2d() = default;
    Point2d(double px, double py)
        : Coordinates2d(px, py)
    {}
    explicit Point2d(Point2di const& p)
        : Coordinates2d(p.x(), p.y())
    {}

    Point2d operator+(Vector2d const& v) const { return {_x + v._x, _y + v._y}; }
    Point2d operator-(Vector2d const& v) const { return {_x - v._x, _y - v._y}; }
    Vector2d operator-(Point2d const& p) const { return {_x - p._x, _y - p._y}; }
    Point2d& operator+=(Vector2d const& v) { return _x += v._x, _y += v._y, *this; }
    Point2d& operator-=(Vector2d const& v) { return _x -= v._x, _y -= v._y, *this; }
    /// Transforms with translation (defined in Matrix2x3.h).
    Point2d operator*(Matrix2x3 const& m) const;
    Point2d& operator*=(Matrix2x3 const& m);

    bool operator==(Point2d const& p) const { return _x == p._x && _y == p._y; }
    bool operator!=(Point2d const& p) const { return !(*this == p); }
    /// Intended: x first, then y (vectors sort y first).
    bool operator<(Point2d const& p) const { return PointLessXY()(*this, p); }

    double GetDistance(Point2d const& p) const { return std::sqrt(GetDistanceSq(p)); }
    double GetDistanceSq(Point2d const& p) const
    {
        return (_x - p._x) * (_x - p._x) + (_y - p._y) * (_y - p._y);
    }
    double GetDistance() const { return std::sqrt(GetDistanceSq()); }
    double GetDistanceSq() const { return _x * _x + _y * _y; }
    Vector2d GetVector() const { return {_x, _y}; }
    void Round(double q)
    {
        _x = TUMaths::quantumRound(_x, q);
        _y = TUMaths::quantumRound(_y, q);
    }
    /// Rounds up the coordinates whose component of dir is positive, the
    /// others down.
    void Round(Vector2d const& dir, double q)
    {
        _x = dir._x > 0 ? TUMaths::quantumCeiling(_x, q) : TUMaths::quantumFloor(_x, q);
        _y = dir._y > 0 ? TUMaths::quantumCeiling(_y, q) : TUMaths::quantumFloor(_y, q);
    }
    bool hasNan() const { return std::isnan(_x) || std::isnan(_y); }
    bool hasInfinity() const { return std::isinf(_x) || std::isinf(_y); }
    bool hasNanOrInfinity() const { return !std::isfinite(_x) || !std::isfinite(_y); }
    /// Floors, then truncates without saturation (out of range gives INT_MIN).
    Point2di toPoint2di() const
    {
        return {Internal::truncateToInt32(std::floor(_x)),
                Internal::truncateToInt32(std::floor(_y))};
    }

    static double InterpolateX(double t, Point2d const& a, Point2d const& b)
    {
        return a._x + (b._x - a._x) * t;
    }
    static double InterpolateY(double t, Point2d const& a, Point2d const& b)
    {
        return a._y + (b._y - a._y) * t;
    }
    static Point2d Interpolate(double t, Point2d const& a, Point2d const& b)
    {
        return {InterpolateX(t, a, b), InterpolateY(t, a, b)};
    }
    /// Barycentric: s·a + t·b + (1 − s − t)·c.
    static Point2d Interpolate(Point2d const& a, double s, Point2d const& b, double t,
                               Point2d const& c)
    {
        double u = 1 - s - t;
        return {s * a._x + t * b._x + u * c._x, s * a._y + t * b._y + u * c._y};
    }

    struct PointLessX
    {
        bool operator()(Point2d const& a, Point2d const& b) const { return a._x < b._x; }
    };
    struct PointLessXY
    {
        bool operator()(Point2d const& a, Point2d const& b) const
        {
            return a._x < b._x || (a._x == b._x && a._y < b._y);
        }
    };
    struct PointLessYX
    {
        bool operator()(Point2d const& a, Point2d const& b) const
        {
            return a._y < b._y || (a._y == b._y && a._x < b._x);
        }
    };
};

inline Point2d Vector2d::GetPoint() const
{
    return {_x, _y};
}

static_assert(sizeof(Vector2d) == 2 * sizeof(double) && std::is_standard_layout_v<Vector2d>);
static_assert(sizeof(Point2d) == 2 * sizeof(double) && std::is_standard_layout_v<Point2d>);
static_assert(sizeof(Point2di) == 2 * sizeof(std::int32_t));
static_assert(std::is_trivially_copyable_v<Vector2d> && std::is_trivially_copyable_v<Point2d>);

} // namespace Math

// The transforms by a Matrix2x3 are defined with the matrix.
#include <BrindleBaseCore/math/Matrix2x3.h>

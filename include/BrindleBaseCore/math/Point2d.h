/// @file
/// Plane vectors and points: Math::Vector2d (free vector), Math::Point2d
/// (position) and Math::Point2di (integer position). Comparisons are exact.
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

/// An int32 point of the plane, compared exactly. Nothing fails: Point2d::toPoint2di()
/// gives INT_MIN for coordinates outside the int32 range.
class BRINDLE_EXPORT Point2di
{
public:
    Point2di() = default;
    /// The point (px, py).
    Point2di(std::int32_t px, std::int32_t py)
        : _x(px)
        , _y(py)
    {}

    /// @name Coordinates
    /**@{*/
    /// The x coordinate.
    std::int32_t x() const { return _x; }
    /// The y coordinate.
    std::int32_t y() const { return _y; }
    /// The x coordinate, writable.
    std::int32_t& x() { return _x; }
    /// The y coordinate, writable.
    std::int32_t& y() { return _y; }
    /**@}*/
    /// Exact comparison.
    bool operator==(Point2di const& p) const { return _x == p._x && _y == p._y; }
    /// Negation of operator==.
    bool operator!=(Point2di const& p) const { return !(*this == p); }

private:
    std::int32_t _x = 0;
    std::int32_t _y = 0;
};

/// A free vector of the plane. Every test below is exact (no tolerance).
/// Nothing fails: the angle, normalising and projecting functions give fixed
/// results for the zero vector (angle 0, the vector unchanged or zero), while
/// division and the tangents have no guard against 0. Two spellings of most
/// members (Get... and lower case) exist for both generations of callers.
class BRINDLE_EXPORT Vector2d : public detail::Coordinates2d
{
    friend class Point2d;

public:
    Vector2d() = default;
    /// The vector (px, py).
    Vector2d(double px, double py)
        : Coordinates2d(px, py)
    {}

    /// Sum.
    Vector2d operator+(Vector2d const& v) const { return {_x + v._x, _y + v._y}; }
    /// Difference.
    Vector2d operator-(Vector2d const& v) const { return {_x - v._x, _y - v._y}; }
    /// The opposite vector.
    Vector2d operator-() const { return {-_x, -_y}; }
    /// Adds v.
    Vector2d& operator+=(Vector2d const& v) { return _x += v._x, _y += v._y, *this; }
    /// Subtracts v.
    Vector2d& operator-=(Vector2d const& v) { return _x -= v._x, _y -= v._y, *this; }
    /// Scaled by f.
    Vector2d operator*(double f) const { return {_x * f, _y * f}; }
    /// Divided by f; no guard against 0.
    Vector2d operator/(double f) const { return {_x / f, _y / f}; }
    /// Scales by f.
    Vector2d& operator*=(double f) { return _x *= f, _y *= f, *this; }
    /// Divides by f; no guard against 0.
    Vector2d& operator/=(double f) { return _x /= f, _y /= f, *this; }
    /// Dot product.
    double operator*(Vector2d const& v) const { return _x * v._x + _y * v._y; }
    /// Transforms without translation (defined in Matrix2x3.h).
    Vector2d operator*(Matrix2x3 const& m) const;
    /// Transforms in place without translation.
    Vector2d& operator*=(Matrix2x3 const& m);

    /// Exact comparison.
    bool operator==(Vector2d const& v) const { return _x == v._x && _y == v._y; }
    /// Negation of operator==.
    bool operator!=(Vector2d const& v) const { return !(*this == v); }
    /// Intended: y first, then x (points sort x first).
    bool operator<(Vector2d const& v) const { return VectorLessYX()(*this, v); }

    /// Euclidean length.
    double GetLength() const { return std::sqrt(_x * _x + _y * _y); }
    /// Squared length.
    double GetLengthSq() const { return _x * _x + _y * _y; }
    /// The same as GetLength().
    double length() const { return GetLength(); }
    /// The same as GetLengthSq().
    double lengthSq() const { return GetLengthSq(); }
    /// Cross product of this and b.
    double GetDeterminant(Vector2d const& b) const { return _x * b._y - _y * b._x; }
    /// Signed cosine and sine of the angle to b, not clamped; 0 for a zero vector.
    double GetCos(Vector2d const& b) const;
    /// See GetCos(): the signed sine, 0 for a zero vector.
    double GetSin(Vector2d const& b) const;
    /// No guard against a zero divisor.
    double GetTan(Vector2d const& b) const { return GetDeterminant(b) / (*this * b); }
    /// Dot over cross product; no guard against a zero divisor.
    double GetCotan(Vector2d const& b) const { return (*this * b) / GetDeterminant(b); }
    /// cos² and sin² carrying the sign of the dot and cross products.
    double GetSignedCosSq(Vector2d const& b) const;
    /// See GetSignedCosSq().
    double GetSignedSinSq(Vector2d const& b) const;
    /// The atan2 angle in (−pi, pi]; 0 for the zero vector.
    double GetRadian() const { return (_x == 0 && _y == 0) ? 0.0 : std::atan2(_y, _x); }
    /// GetRadian() in degrees.
    double GetDegree() const { return GetRadian() * 57.29577951308232; }
    /// Keeps the length and sets the angle in radians.
    void SetRadian(double r) { *this = fromRadiansAndLength(r, GetLength()); }
    /// Keeps the length and sets the angle in degrees.
    void SetDegree(double d) { SetRadian(d * 0.017453292519943295); }
    /// The zero vector is left unchanged.
    void SetLength(double l);
    /// Scales to length 1; the zero vector is left unchanged.
    void Normalize();
    /// A normalised copy; the zero vector stays zero.
    Vector2d GetNormalizedVector() const;
    /// The ratio of the projection on b to b; 0 when b is zero.
    double GetProjectedRatio(Vector2d const& b) const;
    /// Replaces this by its projection on b.
    void Project(Vector2d const& b) { *this = GetProjectedVector(b); }
    /// The projection on b; zero when b is zero.
    Vector2d GetProjectedVector(Vector2d const& b) const;
    /// Rotates a quarter turn counter-clockwise.
    void Rotate90() { *this = GetRotated90(); }
    /// A copy rotated a quarter turn counter-clockwise.
    Vector2d GetRotated90() const { return {-_y, _x}; }
    /// Rotates a quarter turn clockwise.
    void Rotate270() { *this = GetRotated270(); }
    /// A copy rotated a quarter turn clockwise.
    Vector2d GetRotated270() const { return {_y, -_x}; }
    /// Counter-clockwise.
    void RotateRadian(double r) { *this = GetRotatedVector(r); }
    /// Counter-clockwise, in degrees.
    void RotateDegree(double d) { RotateRadian(d * 0.017453292519943295); }
    /// A copy rotated counter-clockwise by r radians.
    Vector2d GetRotatedVector(double r) const;
    /// Rounds each coordinate to the nearest multiple of q.
    void Round(double q)
    {
        _x = TUMaths::quantumRound(_x, q);
        _y = TUMaths::quantumRound(_y, q);
    }
    /// Negates both coordinates.
    void Negate() { _x = -_x, _y = -_y; }

    /// Whether both coordinates are exactly 0.
    bool IsDegenerate() const { return _x == 0 && _y == 0; }
    /// Whether the cross product with b is exactly 0.
    bool IsParallel(Vector2d const& b) const { return GetDeterminant(b) == 0; }
    /// Parallel and in the same direction (a zero vector counts).
    bool IsAligned(Vector2d const& b) const { return GetDeterminant(b) == 0 && *this * b >= 0; }
    /// Parallel and in opposite directions (a zero vector counts).
    bool IsAntiAligned(Vector2d const& b) const { return GetDeterminant(b) == 0 && *this * b <= 0; }
    /// Whether b turns counter-clockwise from this.
    bool IsLeftTurn(Vector2d const& b) const { return GetDeterminant(b) > 0; }
    /// IsLeftTurn() or parallel.
    bool IsLeftTurnOrParallel(Vector2d const& b) const { return GetDeterminant(b) >= 0; }
    /// Whether b turns clockwise from this.
    bool IsRightTurn(Vector2d const& b) const { return GetDeterminant(b) < 0; }
    /// IsRightTurn() or parallel.
    bool IsRightTurnOrParallel(Vector2d const& b) const { return GetDeterminant(b) <= 0; }
    /// Whether a coordinate is NaN.
    bool hasNan() const { return std::isnan(_x) || std::isnan(_y); }
    /// Whether a coordinate is infinite.
    bool hasInfinity() const { return std::isinf(_x) || std::isinf(_y); }
    /// Whether a coordinate is NaN or infinite.
    bool hasNanOrInfinity() const { return !std::isfinite(_x) || !std::isfinite(_y); }

    /// The point with the same coordinates.
    Point2d GetPoint() const;

    /// The vector of length l at angle r radians.
    static Vector2d fromRadiansAndLength(double r, double l)
    {
        return {l * std::cos(r), l * std::sin(r)};
    }
    /// The vector of length l at angle d degrees.
    static Vector2d fromDegreesAndLength(double d, double l)
    {
        return fromRadiansAndLength(d * 0.017453292519943295, l);
    }
    /// No special case for t == 1.
    static Vector2d interpolate(double t, Vector2d const& a, Vector2d const& b)
    {
        return {a._x + (b._x - a._x) * t, a._y + (b._y - a._y) * t};
    }

    /// Orders by x, then y.
    struct VectorLessXY
    {
        /// Whether a comes before b.
        bool operator()(Vector2d const& a, Vector2d const& b) const
        {
            return a._x < b._x || (a._x == b._x && a._y < b._y);
        }
    };
    /// Orders by y, then x (the order of operator<).
    struct VectorLessYX
    {
        /// Whether a comes before b.
        bool operator()(Vector2d const& a, Vector2d const& b) const
        {
            return a._y < b._y || (a._y == b._y && a._x < b._x);
        }
    };
    /// By atan2 angle in (-pi, pi], lower half first.
    struct BRINDLE_EXPORT VectorLessSignedAngle
    {
        /// Whether a comes before b.
        bool operator()(Vector2d const& a, Vector2d const& b) const;
    };
    /// Upper half first. Intended: a vector on the positive x axis is less than
    /// nothing, and nothing in the upper half is less than it.
    struct BRINDLE_EXPORT VectorLessUnsignedAngle
    {
        /// Whether a comes before b.
        bool operator()(Vector2d const& a, Vector2d const& b) const;
    };
    /// Whether b lies within the counter-clockwise sweep from a to c.
    struct BRINDLE_EXPORT VectorInBetweenAngle
    {
        /// Whether b lies in the sweep from a to c.
        bool operator()(Vector2d const& a, Vector2d const& b, Vector2d const& c) const;
    };
};

/// v scaled by f.
inline Vector2d operator*(double f, Vector2d const& v)
{
    return v * f;
}

/// A position in the plane. Points minus points give vectors, points plus
/// vectors give points. Comparisons are exact and operator< orders x first
/// (vectors order y first, intended). Nothing fails: NaN and infinity
/// propagate (hasNanOrInfinity() tells) and toPoint2di() gives INT_MIN out of range.
class BRINDLE_EXPORT Point2d : public detail::Coordinates2d
{
    friend class Vector2d;

public:
    Point2d() = default;
    /// The point (px, py).
    Point2d(double px, double py)
        : Coordinates2d(px, py)
    {}
    /// The integer point converted.
    explicit Point2d(Point2di const& p)
        : Coordinates2d(p.x(), p.y())
    {}

    /// Moved by v.
    Point2d operator+(Vector2d const& v) const { return {_x + v._x, _y + v._y}; }
    /// Moved by −v.
    Point2d operator-(Vector2d const& v) const { return {_x - v._x, _y - v._y}; }
    /// The vector from p to this.
    Vector2d operator-(Point2d const& p) const { return {_x - p._x, _y - p._y}; }
    /// Moves by v.
    Point2d& operator+=(Vector2d const& v) { return _x += v._x, _y += v._y, *this; }
    /// Moves by −v.
    Point2d& operator-=(Vector2d const& v) { return _x -= v._x, _y -= v._y, *this; }
    /// Transforms with translation (defined in Matrix2x3.h).
    Point2d operator*(Matrix2x3 const& m) const;
    /// Transforms in place with translation.
    Point2d& operator*=(Matrix2x3 const& m);

    /// Exact comparison.
    bool operator==(Point2d const& p) const { return _x == p._x && _y == p._y; }
    /// Negation of operator==.
    bool operator!=(Point2d const& p) const { return !(*this == p); }
    /// Intended: x first, then y (vectors sort y first).
    bool operator<(Point2d const& p) const { return PointLessXY()(*this, p); }

    /// Distance to p.
    double GetDistance(Point2d const& p) const { return std::sqrt(GetDistanceSq(p)); }
    /// Squared distance to p.
    double GetDistanceSq(Point2d const& p) const
    {
        return (_x - p._x) * (_x - p._x) + (_y - p._y) * (_y - p._y);
    }
    /// Distance to the origin.
    double GetDistance() const { return std::sqrt(GetDistanceSq()); }
    /// Squared distance to the origin.
    double GetDistanceSq() const { return _x * _x + _y * _y; }
    /// The vector from the origin.
    Vector2d GetVector() const { return {_x, _y}; }
    /// Rounds each coordinate to the nearest multiple of q.
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
    /// Whether a coordinate is NaN.
    bool hasNan() const { return std::isnan(_x) || std::isnan(_y); }
    /// Whether a coordinate is infinite.
    bool hasInfinity() const { return std::isinf(_x) || std::isinf(_y); }
    /// Whether a coordinate is NaN or infinite.
    bool hasNanOrInfinity() const { return !std::isfinite(_x) || !std::isfinite(_y); }
    /// Floors, then truncates without saturation (out of range gives INT_MIN).
    Point2di toPoint2di() const
    {
        return {Internal::truncateToInt32(std::floor(_x)),
                Internal::truncateToInt32(std::floor(_y))};
    }

    /// The x of Interpolate(t, a, b).
    static double InterpolateX(double t, Point2d const& a, Point2d const& b)
    {
        return a._x + (b._x - a._x) * t;
    }
    /// The y of Interpolate(t, a, b).
    static double InterpolateY(double t, Point2d const& a, Point2d const& b)
    {
        return a._y + (b._y - a._y) * t;
    }
    /// a + (b − a)·t; no special case for t == 1.
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

    /// Orders by x only.
    struct PointLessX
    {
        /// Whether a comes before b.
        bool operator()(Point2d const& a, Point2d const& b) const { return a._x < b._x; }
    };
    /// Orders by x, then y (the order of operator<).
    struct PointLessXY
    {
        /// Whether a comes before b.
        bool operator()(Point2d const& a, Point2d const& b) const
        {
            return a._x < b._x || (a._x == b._x && a._y < b._y);
        }
    };
    /// Orders by y, then x.
    struct PointLessYX
    {
        /// Whether a comes before b.
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

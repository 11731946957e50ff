/// @file
/// Space vectors and points: Math::Vector3d, Math::Point3d, the homogeneous
/// Math::Point4d and the Euler angles Math::Angle3d (degrees about X, Y, Z).
/// Comparisons are exact. Unlike the plane vector, the 3D normalising and
/// projecting functions divide without a guard and give NaN for zero input.
#pragma once

#include <BrindleBaseCore/Global.h>
#include <BrindleBaseCore/math/Axis.h>
#include <BrindleBaseCore/math/Point2d.h>
#include <BrindleBaseCore/math/TUMaths.h>

#include <cmath>
#include <type_traits>

namespace Math {

namespace detail {

/// The three coordinates shared by Vector3d, Point3d and Angle3d: stored
/// contiguously (x, y, z) and read or written by axis. Not used on its own.
class Coordinates3d
{
public:
    double x() const { return _x; }
    double y() const { return _y; }
    double z() const { return _z; }
    double& x() { return _x; }
    double& y() { return _y; }
    double& z() { return _z; }
    void setX(double v) { _x = v; }
    void setY(double v) { _y = v; }
    void setZ(double v) { _z = v; }
    void setXYZ(double px, double py, double pz) { _x = px, _y = py, _z = pz; }
    double operator()(Axis3d a) const { return (&_x)[int(a)]; }
    double& operator()(Axis3d a) { return (&_x)[int(a)]; }
    double const* asArray() const { return &_x; }
    double* asArray() { return &_x; }

protected:
    Coordinates3d() = default;
    Coordinates3d(double px, double py, double pz)
        : _x(px)
        , _y(py)
        , _z(pz)
    {}

    double _x = 0.0;
    double _y = 0.0;
    double _z = 0.0;
};

} // namespace detail

class Matrix4x4;
class Point3d;

/// A free vector of space.
/// Comparisons are exact. Nothing fails: intended, normalising or projecting onto a zero vector
/// divides without a guard and gives NaN (unlike Vector2d), while getCos() and getSin() give 0 for
/// a zero vector. Coordinates are read and written through x(), y(), z() and the axis operator.
class BRINDLE_EXPORT Vector3d : public detail::Coordinates3d
{
public:
    Vector3d() = default;
    /// The vector (px, py, pz).
    Vector3d(double px, double py, double pz)
        : Coordinates3d(px, py, pz)
    {}
    /// The plane vector with z = 0.
    explicit Vector3d(Vector2d const& v)
        : Coordinates3d(v.x(), v.y(), 0.0)
    {}
    /// The vector from the origin to p.
    explicit Vector3d(Point3d const& p);
    /// to − from.
    Vector3d(Point3d const& from, Point3d const& to);

    /// Sum.
    Vector3d operator+(Vector3d const& v) const { return {_x + v._x, _y + v._y, _z + v._z}; }
    /// Difference.
    Vector3d operator-(Vector3d const& v) const { return {_x - v._x, _y - v._y, _z - v._z}; }
    /// The opposite vector.
    Vector3d operator-() const { return {-_x, -_y, -_z}; }
    /// Adds v.
    Vector3d& operator+=(Vector3d const& v) { return *this = *this + v; }
    /// Subtracts v.
    Vector3d& operator-=(Vector3d const& v) { return *this = *this - v; }
    /// Scaled by f.
    Vector3d operator*(double f) const { return {_x * f, _y * f, _z * f}; }
    /// Divided by f; no guard against 0.
    Vector3d operator/(double f) const { return {_x / f, _y / f, _z / f}; }
    /// Scales by f.
    Vector3d& operator*=(double f) { return *this = *this * f; }
    /// Divides by f; no guard against 0.
    Vector3d& operator/=(double f) { return *this = *this / f; }
    /// Dot product.
    double operator*(Vector3d const& v) const { return _x * v._x + _y * v._y + _z * v._z; }
    /// Dot product.
    double getDotProduct(Vector3d const& v) const { return *this * v; }
    /// Cross product.
    Vector3d operator^(Vector3d const& b) const
    {
        return {_y * b._z - _z * b._y, _z * b._x - _x * b._z, _x * b._y - _y * b._x};
    }
    /// Cross product.
    Vector3d getCrossProduct(Vector3d const& b) const { return *this ^ b; }
    /// Exact comparison.
    bool operator==(Vector3d const& v) const { return _x == v._x && _y == v._y && _z == v._z; }
    /// Negation of operator==.
    bool operator!=(Vector3d const& v) const { return !(*this == v); }

    /// Euclidean length.
    double length() const { return std::sqrt(lengthSq()); }
    /// Squared length.
    double lengthSq() const { return _x * _x + _y * _y + _z * _z; }
    /// Whether the three coordinates are exactly 0.
    bool isZero() const { return _x == 0 && _y == 0 && _z == 0; }
    /// Whether a coordinate is NaN.
    bool hasNan() const { return std::isnan(_x) || std::isnan(_y) || std::isnan(_z); }
    /// Whether a coordinate is infinite.
    bool hasInfinity() const { return std::isinf(_x) || std::isinf(_y) || std::isinf(_z); }
    /// Whether a coordinate is NaN or infinite.
    bool hasNanOrInfinity() const { return hasNan() || hasInfinity(); }
    /// Negates the three coordinates.
    void negate() { *this = -*this; }
    /// Rounds each coordinate to the nearest multiple of q.
    void round(double q)
    {
        _x = TUMaths::quantumRound(_x, q);
        _y = TUMaths::quantumRound(_y, q);
        _z = TUMaths::quantumRound(_z, q);
    }
    /// x and y; z is dropped.
    Vector2d toVector2d() const { return {_x, _y}; }

    /// Intended: no guard, the zero vector becomes NaN.
    void normalize() { *this = getNormalized(); }
    /// A copy of length 1; NaN for the zero vector (intended).
    Vector3d getNormalized() const { return *this * (1.0 / length()); }
    /// In [−1, 1]; 0 when either vector is zero. The sine is never negative.
    double getCos(Vector3d const& b) const;
    /// See getCos(): never negative.
    double getSin(Vector3d const& b) const;
    /// No guard: b = 0 gives NaN.
    double getProjectionRatio(Vector3d const& b) const { return (*this * b) / (b * b); }
    /// Replaces this by its projection on b.
    void project(Vector3d const& b) { *this = getProjection(b); }
    /// The projection on b; NaN when b is zero.
    Vector3d getProjection(Vector3d const& b) const { return b * getProjectionRatio(b); }

    /// Writes "    label : (x, y, z)" to standard output.
    void debugPrint(char const* label) const;
};

/// v scaled by f.
inline Vector3d operator*(double f, Vector3d const& v)
{
    return v * f;
}

/// A position in space.
/// Comparisons are exact; nothing fails, and NaN or infinity propagate (hasNanOrInfinity() tells).
/// Coordinates are read and written through x(), y(), z() and the axis operator.
class BRINDLE_EXPORT Point3d : public detail::Coordinates3d
{
public:
    Point3d() = default;
    /// The point (px, py, pz).
    Point3d(double px, double py, double pz)
        : Coordinates3d(px, py, pz)
    {}
    /// The plane point p at height pz.
    Point3d(Point2d const& p, double pz)
        : Coordinates3d(p.x(), p.y(), pz)
    {}
    /// The point at v from the origin.
    explicit Point3d(Vector3d const& v)
        : Coordinates3d(v.x(), v.y(), v.z())
    {}

    /// Moved by v.
    Point3d operator+(Vector3d const& v) const { return {_x + v.x(), _y + v.y(), _z + v.z()}; }
    /// Moved by −v.
    Point3d operator-(Vector3d const& v) const { return {_x - v.x(), _y - v.y(), _z - v.z()}; }
    /// The vector from p to this.
    Vector3d operator-(Point3d const& p) const { return {_x - p._x, _y - p._y, _z - p._z}; }
    /// Moves by v.
    Point3d& operator+=(Vector3d const& v) { return *this = *this + v; }
    /// Moves by −v.
    Point3d& operator-=(Vector3d const& v) { return *this = *this - v; }
    /// Exact comparison.
    bool operator==(Point3d const& p) const { return _x == p._x && _y == p._y && _z == p._z; }
    /// Negation of operator==.
    bool operator!=(Point3d const& p) const { return !(*this == p); }

    /// Distance to p.
    double distance(Point3d const& p) const { return (*this - p).length(); }
    /// Squared distance to p.
    double distanceSq(Point3d const& p) const { return (*this - p).lengthSq(); }
    /// Whether the three coordinates are exactly 0.
    bool isOrigin() const { return _x == 0 && _y == 0 && _z == 0; }
    /// Rounds each coordinate to the nearest multiple of q.
    void round(double q)
    {
        _x = TUMaths::quantumRound(_x, q);
        _y = TUMaths::quantumRound(_y, q);
        _z = TUMaths::quantumRound(_z, q);
    }
    /// Whether a coordinate is NaN.
    bool hasNan() const { return toVector().hasNan(); }
    /// Whether a coordinate is infinite.
    bool hasInfinity() const { return toVector().hasInfinity(); }
    /// Whether a coordinate is NaN or infinite.
    bool hasNanOrInfinity() const { return toVector().hasNanOrInfinity(); }
    /// x and y; z is dropped.
    Point2d toPoint2d() const { return {_x, _y}; }
    /// The vector from the origin.
    Vector3d toVector() const { return {_x, _y, _z}; }

    /// a + (b − a)·t.
    static Point3d interpolate(double t, Point3d const& a, Point3d const& b)
    {
        return a + (b - a) * t;
    }
    /// Barycentric: s·a + t·b + (1 − s − t)·c.
    static Point3d interpolate(Point3d const& a, double s, Point3d const& b, double t,
                               Point3d const& c)
    {
        double u = 1 - s - t;
        return {s * a._x + t * b._x + u * c._x, s * a._y + t * b._y + u * c._y,
                s * a._z + t * b._z + u * c._z};
    }
};

inline Vector3d::Vector3d(Point3d const& p)
    : Coordinates3d(p.x(), p.y(), p.z())
{}
inline Vector3d::Vector3d(Point3d const& from, Point3d const& to)
    : Vector3d(to - from)
{}

/// A homogeneous point (x, y, z, w). The default is (0, 0, 0, 0): w is 0 as
/// well (intended). A w within TUMaths::epsilon() of 0 marks a direction: the
/// conversions to points then copy x, y, z instead of dividing, so nothing
/// fails. isOrigin() ignores w (intended).
class BRINDLE_EXPORT Point4d
{
public:
    Point4d() = default;
    /// The point (px, py, pz, pw).
    Point4d(double px, double py, double pz, double pw)
        : _x(px)
        , _y(py)
        , _z(pz)
        , _w(pw)
    {}
    /// (x, y, 0, 1).
    explicit Point4d(Point2d const& p)
        : _x(p.x())
        , _y(p.y())
        , _z(0.0)
        , _w(1.0)
    {}
    /// (x, y, z, 1).
    explicit Point4d(Point3d const& p)
        : _x(p.x())
        , _y(p.y())
        , _z(p.z())
        , _w(1.0)
    {}
    /// The direction (x, y, z, 0).
    explicit Point4d(Vector3d const& v)
        : _x(v.x())
        , _y(v.y())
        , _z(v.z())
        , _w(0.0)
    {}

    /// @name Coordinates
    /**@{*/
    /// The x coordinate.
    double x() const { return _x; }
    /// The y coordinate.
    double y() const { return _y; }
    /// The z coordinate.
    double z() const { return _z; }
    /// The homogeneous weight.
    double w() const { return _w; }
    /// The x coordinate, writable.
    double& x() { return _x; }
    /// The y coordinate, writable.
    double& y() { return _y; }
    /// The z coordinate, writable.
    double& z() { return _z; }
    /// The weight, writable.
    double& w() { return _w; }
    /// Sets x.
    void setX(double v) { _x = v; }
    /// Sets y.
    void setY(double v) { _y = v; }
    /// Sets z.
    void setZ(double v) { _z = v; }
    /// Sets w.
    void setW(double v) { _w = v; }
    /// Sets the four coordinates.
    void setXYZW(double px, double py, double pz, double pw) { *this = Point4d(px, py, pz, pw); }
    /// The coordinate on axis a.
    double operator()(Axis4d a) const { return (&_x)[int(a)]; }
    /// The coordinate on axis a, writable.
    double& operator()(Axis4d a) { return (&_x)[int(a)]; }
    /// The four coordinates, contiguous (x, y, z, w).
    double const* asArray() const { return &_x; }
    /// The four coordinates, contiguous and writable.
    double* asArray() { return &_x; }
    /**@}*/

    /// Exact comparison of the four coordinates.
    bool operator==(Point4d const& p) const
    {
        return _x == p._x && _y == p._y && _z == p._z && _w == p._w;
    }
    /// Negation of operator==.
    bool operator!=(Point4d const& p) const { return !(*this == p); }
    /// Whether a coordinate is NaN.
    bool hasNan() const { return toVector3d().hasNan() || std::isnan(_w); }
    /// Whether a coordinate is infinite.
    bool hasInfinity() const { return toVector3d().hasInfinity() || std::isinf(_w); }
    /// Whether a coordinate is NaN or infinite.
    bool hasNanOrInfinity() const { return hasNan() || hasInfinity(); }

    /// Intended: w is not looked at (the same test as Vector3d::isZero).
    bool isOrigin() const { return toVector3d().isZero(); }
    /// Whether |w| is below TUMaths::epsilon() (a direction, not a position).
    bool isVector() const { return std::fabs(_w) < TUMaths::epsilon(); }
    /// Divides by w unless w is (nearly) 0.
    void normalize()
    {
        if (!isVector())
            *this = Point4d(_x / _w, _y / _w, _z / _w, 1.0);
    }
    /// Whether the component lies outside [−w, w].
    bool isClipped(Axis3d a) const
    {
        double c = (*this)(Axis4d(int(a)));
        return c > _w || -c > _w;
    }
    /// Whether any of x, y, z lies outside [−w, w].
    bool isClipped() const
    {
        return isClipped(Axis3d::X) || isClipped(Axis3d::Y) || isClipped(Axis3d::Z);
    }
    /// Whether the point is not behind the eye: w ≥ −z.
    bool isInFront() const { return _w >= -_z; }

    /// Divide by w unless it is (nearly) 0.
    Point2d toPoint2d() const { return isVector() ? Point2d(_x, _y) : Point2d(_x / _w, _y / _w); }
    /// Divided by w unless it is (nearly) 0.
    Point3d toPoint3d() const
    {
        return isVector() ? Point3d(_x, _y, _z) : Point3d(_x / _w, _y / _w, _z / _w);
    }
    /// x and y, not divided by w.
    Vector2d toVector2d() const { return {_x, _y}; }
    /// Intended: copies x, y, z without dividing by w.
    Vector3d toVector3d() const { return {_x, _y, _z}; }

    /// The four coordinates interpolated linearly (a + (b − a)·t).
    static Point4d interpolate(double t, Point4d const& a, Point4d const& b)
    {
        return {a._x + (b._x - a._x) * t, a._y + (b._y - a._y) * t, a._z + (b._z - a._z) * t,
                a._w + (b._w - a._w) * t};
    }

private:
    double _x = 0.0;
    double _y = 0.0;
    double _z = 0.0;
    double _w = 0.0;
};

/// Rotation angles in degrees about the X, Y and Z axes. The arithmetic is
/// component by component and never wraps, so 360 and 0 compare different
/// (intended); nothing fails.
class BRINDLE_EXPORT Angle3d : public detail::Coordinates3d
{
public:
    Angle3d() = default;
    /// The angles (px, py, pz) in degrees.
    Angle3d(double px, double py, double pz)
        : Coordinates3d(px, py, pz)
    {}
    /// The heading (y, from +Z towards +X) and pitch (x, positive downwards)
    /// of a direction; no roll.
    explicit Angle3d(Vector3d const& direction);

    /// Component by component, no wrapping.
    Angle3d operator+(Angle3d const& a) const { return {_x + a._x, _y + a._y, _z + a._z}; }
    /// Component by component, no wrapping.
    Angle3d operator-(Angle3d const& a) const { return {_x - a._x, _y - a._y, _z - a._z}; }
    /// Adds a, no wrapping.
    Angle3d& operator+=(Angle3d const& a) { return *this = *this + a; }
    /// Subtracts a, no wrapping.
    Angle3d& operator-=(Angle3d const& a) { return *this = *this - a; }
    /// Exact comparison (360 and 0 differ).
    bool operator==(Angle3d const& a) const { return _x == a._x && _y == a._y && _z == a._z; }
    /// Negation of operator==.
    bool operator!=(Angle3d const& a) const { return !(*this == a); }
    /// Whether the three angles are exactly 0.
    bool isIdentity() const { return _x == 0 && _y == 0 && _z == 0; }

    /// No wrapping of the angles.
    static Angle3d interpolate(double t, Angle3d const& a, Angle3d const& b)
    {
        return {a._x + (b._x - a._x) * t, a._y + (b._y - a._y) * t, a._z + (b._z - a._z) * t};
    }
    /// Intended: copies the three numbers, it does not make a direction.
    Vector3d toVector3d() const { return {_x, _y, _z}; }
    /// Identity rotated by z about Z, then by y about Y, then by x about X.
    Matrix4x4 toRotationMatrix() const;
    /// toRotationMatrix() applied to (0, 0, 1).
    Vector3d toNormal() const;
};

static_assert(sizeof(Vector3d) == 3 * sizeof(double) && std::is_standard_layout_v<Vector3d>);
static_assert(sizeof(Point3d) == 3 * sizeof(double) && std::is_standard_layout_v<Point3d>);
static_assert(sizeof(Point4d) == 4 * sizeof(double) && std::is_standard_layout_v<Point4d>);
static_assert(sizeof(Angle3d) == 3 * sizeof(double) && std::is_standard_layout_v<Angle3d>);

} // namespace Math

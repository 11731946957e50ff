/// @file
/// Math::Matrix2x3: the affine transform of the plane, a 2x2 linear part
/// (m0..m3, column by column) and a translation (m4, m5). A point (x, y) maps
/// to (m0·x + m2·y + m4, m1·x + m3·y + m5). Products compose left to right:
/// a * b applies a first, then b.
#pragma once

#include <BrindleBaseCore/Global.h>
#include <BrindleBaseCore/math/Axis.h>
#include <BrindleBaseCore/math/Point2d.h>

#include <type_traits>

namespace Math {

class Box2d;
class Box2di;

/// The affine transform of the plane: a 2x2 linear part (m0..m3, column by column) and a
/// translation (m4, m5). A point (x, y) maps to (m0·x + m2·y + m4, m1·x + m3·y + m5); products
/// compose left to right, so a * b applies a first, then b. Nothing throws: MatrixInverse() of a
/// singular matrix returns false and leaves this unchanged, and NaN or infinity propagate
/// (hasNanOrInfinity() tells). The capitalised and lower-case member names both exist for the two
/// generations of callers (intended).
class BRINDLE_EXPORT Matrix2x3
{
public:
    Matrix2x3() = default;
    /// Linear part with columns a and b, no translation.
    Matrix2x3(Vector2d const& a, Vector2d const& b)
        : _m{a.x(), a.y(), b.x(), b.y(), 0.0, 0.0}
    {}
    /// Linear part with columns a and b, translation o.
    Matrix2x3(Vector2d const& a, Vector2d const& b, Point2d const& o)
        : _m{a.x(), a.y(), b.x(), b.y(), o.x(), o.y()}
    {}

    /// Element (row, column) without range check.
    double& operator()(unsigned row, unsigned column) { return _m[row + 2 * column]; }
    /// Element at row (0 or 1) and column (0 to 2); no range check.
    double operator()(unsigned row, unsigned column) const { return _m[row + 2 * column]; }
    /// The six values in storage order.
    double const* asArray() const { return _m; }

    /// Byte-wise: −0 differs from +0.
    bool operator==(Matrix2x3 const& b) const;
    /// Negation of operator==.
    bool operator!=(Matrix2x3 const& b) const { return !(*this == b); }
    /// Intended: compares the stored bytes as an unsigned byte string, not the
    /// numbers; the order that containers keyed by transforms rely on.
    bool operator<(Matrix2x3 const& b) const;

    /// This first, then b.
    Matrix2x3 operator*(Matrix2x3 const& b) const
    {
        Matrix2x3 r;
        compose(*this, b, r);
        return r;
    }
    /// this = this * b (this applied first).
    Matrix2x3& operator*=(Matrix2x3 const& b)
    {
        compose(*this, b, *this);
        return *this;
    }
    /// Sets this to a first, then b.
    void Multiply(Matrix2x3 const& a, Matrix2x3 const& b) { compose(a, b, *this); }

    /// Counter-clockwise, in radians.
    static Matrix2x3 CreateRotate(double angle);
    /// A scaling by s.x() and s.y().
    static Matrix2x3 CreateScale(Vector2d const& s) { return {s.x(), 0, 0, s.y(), 0, 0}; }
    /// x' = x + k·y.
    static Matrix2x3 CreateShearX(double k) { return {1, 0, k, 1, 0, 0}; }
    /// y' = k·x + y.
    static Matrix2x3 CreateShearY(double k) { return {1, k, 0, 1, 0, 0}; }
    /// A translation by t.
    static Matrix2x3 CreateTranslate(Vector2d const& t) { return {1, 0, 0, 1, t.x(), t.y()}; }
    /// Each applies the matching Create matrix after this one.
    void Rotate(double angle);
    /// Composes with a scaling by s.
    void Scale(Vector2d const& s);
    /// Composes with a shear along x by k.
    void ShearX(double k);
    /// Composes with a shear along y by k.
    void ShearY(double k);
    /// Composes with a translation by t.
    void Translate(Vector2d const& t)
    {
        _m[4] += t.x();
        _m[5] += t.y();
    }

    /// Determinant of the linear part.
    double Determinant() const { return _m[3] * _m[0] - _m[2] * _m[1]; }
    /// Whether the determinant is exactly 0.
    bool isSingular() const { return Determinant() == 0; }
    /// Byte-wise equal to the identity: a −0 entry makes it false.
    bool IsIdentity() const { return *this == Matrix2x3(); }
    /// Sets this to the inverse of m; false (this unchanged) when singular.
    bool MatrixInverse(Matrix2x3 const& m);
    /// Makes this the identity.
    void resetToIdentity() { *this = Matrix2x3(); }

    /// p transformed, translation included.
    Point2d Transform(Point2d const& p) const
    {
        return {_m[0] * p.x() + _m[2] * p.y() + _m[4], _m[1] * p.x() + _m[3] * p.y() + _m[5]};
    }
    /// v transformed by the linear part only.
    Vector2d Transform(Vector2d const& v) const
    {
        return {_m[0] * v.x() + _m[2] * v.y(), _m[1] * v.x() + _m[3] * v.y()};
    }
    /// The box of the four mapped corners; an empty source box is mapped from
    /// its stored corners all the same.
    Box2d Transform(Box2d const& box) const;
    /// The smallest integer box holding the mapped corners, never of zero extent.
    Box2di Transform(Box2di const& box) const;
    /// Computed in double, each result narrowed to float.
    void TransformPoint(double x, double y, float& outX, float& outY) const
    {
        Point2d p = Transform(Point2d(x, y));
        outX = float(p.x());
        outY = float(p.y());
    }
    /// (x, y) transformed in float, for vertex buffers.
    void TransformPoint(float x, float y, float& outX, float& outY) const
    {
        TransformPoint(double(x), double(y), outX, outY);
    }

    /// Column a of the linear part.
    Vector2d axis(Axis2d a) const { return {_m[2 * int(a)], _m[2 * int(a) + 1]}; }
    /// The translation, as the image of the origin.
    Point2d origin() const { return {_m[4], _m[5]}; }
    /// Shear counts as rotation.
    bool hasRotation() const { return _m[1] != 0 || _m[2] != 0; }
    /// Whether an element is NaN.
    bool hasNan() const;
    /// Whether an element is infinite.
    bool hasInfinity() const;
    /// Whether an element is NaN or infinite.
    bool hasNanOrInfinity() const { return hasNan() || hasInfinity(); }

    /// Writes the label ("Matrix" when null or empty) and the two rows.
    void print(char const* label) const;

private:
    Matrix2x3(double m0, double m1, double m2, double m3, double m4, double m5)
        : _m{m0, m1, m2, m3, m4, m5}
    {}
    /// r = b after a; r may be a.
    static void compose(Matrix2x3 const& a, Matrix2x3 const& b, Matrix2x3& r)
    {
        double const *x = a._m, *y = b._m;
        double r0 = x[0] * y[0] + x[1] * y[2], r1 = x[0] * y[1] + x[1] * y[3];
        double r2 = x[2] * y[0] + x[3] * y[2], r3 = x[2] * y[1] + x[3] * y[3];
        double r4 = x[4] * y[0] + x[5] * y[2] + y[4], r5 = x[4] * y[1] + x[5] * y[3] + y[5];
        r._m[0] = r0, r._m[1] = r1, r._m[2] = r2, r._m[3] = r3, r._m[4] = r4, r._m[5] = r5;
    }

    double _m[6] = {1.0, 0.0, 0.0, 1.0, 0.0, 0.0};
};

static_assert(sizeof(Matrix2x3) == 6 * sizeof(double) && std::is_standard_layout_v<Matrix2x3>);

inline Vector2d Vector2d::operator*(Matrix2x3 const& m) const
{
    return m.Transform(*this);
}
inline Vector2d& Vector2d::operator*=(Matrix2x3 const& m)
{
    return *this = m.Transform(*this);
}
inline Point2d Point2d::operator*(Matrix2x3 const& m) const
{
    return m.Transform(*this);
}
inline Point2d& Point2d::operator*=(Matrix2x3 const& m)
{
    return *this = m.Transform(*this);
}

} // namespace Math

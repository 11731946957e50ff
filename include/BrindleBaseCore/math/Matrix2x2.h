/// @file
/// Math::Matrix2x2: a 2x2 linear map of the plane that remembers whether it is
/// the identity. Element (r, c) is stored at m[r + 2c]. Several operations take
/// a different path when the identity flag is set; those differences are
/// intended and documented on each operation.
#pragma once

#include <BrindleBaseCore/Global.h>
#include <BrindleBaseCore/math/Axis.h>
#include <BrindleBaseCore/math/Point2d.h>

#include <cmath>
#include <type_traits>

namespace Math {

/// A 2x2 linear map of the plane that remembers whether it is the identity.
/// Element (r, c) is stored at m[r + 2c]. Nothing throws: inverse() of a singular matrix gives the
/// flagged identity and false, and NaN or infinity simply propagate (hasNan(), hasInfinity() tell).
/// Several operations take a shortcut when the identity flag is set; the flag is only a hint, and
/// writing through the mutable element accessor clears it even when the value is unchanged
/// (intended).
class BRINDLE_EXPORT Matrix2x2
{
public:
    /// The identity, flagged.
    Matrix2x2() = default;
    /// Columns a and b; flagged exactly when they make (1, 0, 0, 1).
    Matrix2x2(Vector2d const& a, Vector2d const& b);
    /// Four values in storage order (null gives the flagged identity).
    explicit Matrix2x2(double const* values);
    /// Four floats in storage order (null gives the flagged identity).
    explicit Matrix2x2(float const* values);

    /// Writing through the mutable form clears the identity flag, even when the
    /// value written is the same.
    double& operator()(Row r, Column c)
    {
        _identity = false;
        return _m[r + 2 * c];
    }
    /// Element at row r, column c.
    double operator()(Row r, Column c) const { return _m[r + 2 * c]; }
    /// The four values in storage order.
    double const* asArray() const { return _m; }
    /// The identity flag as stored (may be false for identity values).
    bool isIdentityFlag() const { return _identity; }

    /// Two flagged matrices are equal; otherwise the stored bytes are compared
    /// (−0 differs from +0, identical NaNs are equal).
    bool operator==(Matrix2x2 const& b) const;
    /// Negation of operator==.
    bool operator!=(Matrix2x2 const& b) const { return !(*this == b); }
    /// −1, 0 or +1 by the first differing value; flags are not looked at.
    int compare(Matrix2x2 const& b) const;

    /// The column-vector product this·b (b acts first).
    Matrix2x2 operator*(Matrix2x2 const& b) const;
    /// this = this × b.
    Matrix2x2& operator*=(Matrix2x2 const& b)
    {
        multiply(b);
        return *this;
    }
    /// this = this × b (the same as operator*=).
    void multiply(Matrix2x2 const& b);
    /// The matrix applied to v.
    Vector2d operator*(Vector2d const& v) const
    {
        if (_identity)
            return v;
        return {_m[0] * v.x() + _m[2] * v.y(), _m[1] * v.x() + _m[3] * v.y()};
    }

    /// Column a (the image of the unit vector on axis a).
    Vector2d axis(Axis2d a) const { return {_m[2 * int(a)], _m[2 * int(a) + 1]}; }
    /// Back to the flagged identity.
    void clear();
    /// Determinant; 1 without computing when flagged.
    double determinant() const { return _identity ? 1.0 : _m[3] * _m[0] - _m[2] * _m[1]; }
    /// Whether the determinant is exactly 0 (never for a flagged matrix).
    bool isSingular() const { return !_identity && determinant() == 0; }
    /// Whether the flag is set or the values are exactly the identity's.
    bool isIdentity() const
    {
        return _identity || (_m[0] == 1 && _m[1] == 0 && _m[2] == 0 && _m[3] == 1);
    }

    /// Intended: the off-diagonal entries of the result are crossed, so this is
    /// the transpose of the mathematical inverse (the inverse for a symmetric
    /// matrix). A singular matrix becomes the flagged identity and false is
    /// returned.
    bool inverse();
    /// A copy inverted as inverse() does (transposed off-diagonal, intended).
    Matrix2x2 getInverse() const;
    /// Swaps the off-diagonal elements.
    void transpose();
    /// The transposed copy.
    Matrix2x2 getTranspose() const;

    /// Intended: on a flagged identity the result is (cos, −sin, sin, cos),
    /// while the same unflagged values give (cos, sin, −sin, cos).
    void rotateRadians(double angle);
    /// Counter-clockwise rotation by an angle in degrees (see rotateRadians()).
    void rotateDegrees(double angle) { rotateRadians(angle * 0.017453292519943295); }
    /// Intended: on a flagged identity, scale(sx, sy) writes sy into m1 and
    /// leaves m2, m3 as they were: scale(2, 3) gives (2, 3, 0, 1).
    void scale(double sx, double sy);

    /// Whether an element is NaN.
    bool hasNan() const;
    /// Whether an element is infinite.
    bool hasInfinity() const;

private:
    void setValues(double m0, double m1, double m2, double m3);

    double _m[4] = {1.0, 0.0, 0.0, 1.0};
    bool _identity = true;
};

static_assert(sizeof(Matrix2x2) == 5 * sizeof(double) && std::is_standard_layout_v<Matrix2x2>);

} // namespace Math

#include <BrindleBaseCore/math/Matrix2x2.h>

#include "MatrixValues.h"

#include <cstring>

namespace Math {

Matrix2x2::Matrix2x2(Vector2d const& a, Vector2d const& b)
{
    setValues(a.x(), a.y(), b.x(), b.y());
}

Matrix2x2::Matrix2x2(double const* values)
{
    if (values != nullptr)
        setValues(values[0], values[1], values[2], values[3]);
}

Matrix2x2::Matrix2x2(float const* values)
{
    if (values != nullptr)
        setValues(values[0], values[1], values[2], values[3]);
}

void Matrix2x2::setValues(double m0, double m1, double m2, double m3)
{
    _m[0] = m0, _m[1] = m1, _m[2] = m2, _m[3] = m3;
    _identity = m0 == 1 && m1 == 0 && m2 == 0 && m3 == 1;
}

bool Matrix2x2::operator==(Matrix2x2 const& b) const
{
    return (_identity && b._identity) || std::memcmp(_m, b._m, sizeof _m) == 0;
}

int Matrix2x2::compare(Matrix2x2 const& b) const
{
    return Internal::compareValues<4>(_m, b._m);
}

Matrix2x2 Matrix2x2::operator*(Matrix2x2 const& b) const
{
    Matrix2x2 r = *this;
    r.multiply(b);
    return r;
}

void Matrix2x2::multiply(Matrix2x2 const& b)
{
    if (b._identity)
        return;
    if (_identity) {
        *this = b;
        return;
    }
    double const* a = _m;
    double r0 = a[0] * b._m[0] + a[2] * b._m[1];
    double r1 = a[1] * b._m[0] + a[3] * b._m[1];
    double r2 = a[0] * b._m[2] + a[2] * b._m[3];
    double r3 = a[1] * b._m[2] + a[3] * b._m[3];
    _m[0] = r0, _m[1] = r1, _m[2] = r2, _m[3] = r3;
}

void Matrix2x2::clear()
{
    if (!_identity)
        *this = Matrix2x2();
}

bool Matrix2x2::inverse()
{
    if (_identity)
        return true;
    double det = _m[0] * _m[3] - _m[1] * _m[2];
    if (det == 0) {
        *this = Matrix2x2();
        return false;
    }
    // Intended: m1 comes from m2 and m2 from m1 (crossed).
    double m0 = _m[3] / det, m1 = -_m[2] / det, m2 = -_m[1] / det, m3 = _m[0] / det;
    _m[0] = m0, _m[1] = m1, _m[2] = m2, _m[3] = m3;
    return true;
}

Matrix2x2 Matrix2x2::getInverse() const
{
    Matrix2x2 r = *this;
    r.inverse();
    return r;
}

void Matrix2x2::transpose()
{
    if (!_identity)
        std::swap(_m[1], _m[2]);
}

Matrix2x2 Matrix2x2::getTranspose() const
{
    Matrix2x2 r = *this;
    r.transpose();
    return r;
}

void Matrix2x2::rotateRadians(double angle)
{
    if (angle == 0)
        return;
    double c = std::cos(angle), s = std::sin(angle);
    if (_identity) {
        // Intended: (cos, −sin, sin, cos), unlike the general path below.
        _m[0] = c, _m[1] = -s, _m[2] = s, _m[3] = c;
        _identity = false;
        return;
    }
    double m0 = _m[0], m1 = _m[1], m2 = _m[2], m3 = _m[3];
    _m[0] = c * m0 + s * m2;
    _m[1] = c * m1 + s * m3;
    _m[2] = c * m2 - s * m0;
    _m[3] = c * m3 - s * m1;
}

void Matrix2x2::scale(double sx, double sy)
{
    if (_identity) {
        if (sx == 1 && sy == 1)
            return;
        // Intended: sy goes into m1, m2 and m3 stay as they were.
        _m[0] = sx, _m[1] = sy;
        _identity = false;
        return;
    }
    if (sx != 1)
        _m[0] *= sx, _m[1] *= sx;
    if (sy != 1)
        _m[2] *= sy, _m[3] *= sy;
}

bool Matrix2x2::hasNan() const
{
    return Internal::anyNan<4>(_m);
}
bool Matrix2x2::hasInfinity() const
{
    return Internal::anyInfinity<4>(_m);
}

} // namespace Math

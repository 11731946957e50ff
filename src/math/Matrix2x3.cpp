#include <BrindleBaseCore/math/Box2d.h>
#include <BrindleBaseCore/math/Matrix2x3.h>

#include "MatrixValues.h"

#include <cstdio>
#include <cstring>

namespace Math {

bool Matrix2x3::operator==(Matrix2x3 const& b) const
{
    return std::memcmp(_m, b._m, sizeof _m) == 0;
}

bool Matrix2x3::operator<(Matrix2x3 const& b) const
{
    // Intended: byte order of the stored doubles, not numeric order.
    return std::memcmp(_m, b._m, sizeof _m) < 0;
}

Matrix2x3 Matrix2x3::CreateRotate(double angle)
{
    double c = std::cos(angle), s = std::sin(angle);
    return {c, s, -s, c, 0, 0};
}

void Matrix2x3::Rotate(double angle)
{
    double c = std::cos(angle), s = std::sin(angle);
    for (int i = 0; i < 6; i += 2) {
        double u = _m[i], v = _m[i + 1];
        _m[i] = c * u - s * v;
        _m[i + 1] = s * u + c * v;
    }
}

void Matrix2x3::Scale(Vector2d const& s)
{
    for (int i = 0; i < 6; i += 2) {
        _m[i] *= s.x();
        _m[i + 1] *= s.y();
    }
}

void Matrix2x3::ShearX(double k)
{
    for (int i = 0; i < 6; i += 2)
        _m[i] += k * _m[i + 1];
}

void Matrix2x3::ShearY(double k)
{
    for (int i = 0; i < 6; i += 2)
        _m[i + 1] += k * _m[i];
}

bool Matrix2x3::MatrixInverse(Matrix2x3 const& m)
{
    double const* a = m._m;
    double det = a[3] * a[0] - a[1] * a[2];
    if (det == 0)
        return false;
    *this = Matrix2x3(a[3] / det, -a[1] / det, -a[2] / det, a[0] / det,
                      (a[5] * a[2] - a[4] * a[3]) / det, (a[4] * a[1] - a[5] * a[0]) / det);
    return true;
}

Box2d Matrix2x3::Transform(Box2d const& box) const
{
    Point2d lo = box.min(), hi = box.max();
    Box2d r;
    r.add(Transform(lo));
    r.add(Transform(hi));
    r.add(Transform(Point2d(lo.x(), hi.y())));
    r.add(Transform(Point2d(hi.x(), lo.y())));
    return r;
}

Box2di Matrix2x3::Transform(Box2di const& box) const
{
    // Corner sums wrap in 32 bits.
    int x1 = Internal::wrapToInt32(unsigned(box.x()) + unsigned(box.width()));
    int y1 = Internal::wrapToInt32(unsigned(box.y()) + unsigned(box.height()));
    Point2d corners[4] = {Transform(Point2d(box.x(), box.y())), Transform(Point2d(x1, box.y())),
                          Transform(Point2d(box.x(), y1)), Transform(Point2d(x1, y1))};
    double minX = corners[0].x(), minY = corners[0].y(), maxX = minX, maxY = minY;
    for (Point2d const& p : corners) {
        minX = TUMaths::dmin(minX, p.x());
        minY = TUMaths::dmin(minY, p.y());
        maxX = TUMaths::dmax(maxX, p.x());
        maxY = TUMaths::dmax(maxY, p.y());
    }
    int left = Internal::truncateToInt32(std::floor(minX));
    int top = Internal::truncateToInt32(std::floor(minY));
    int right = Internal::truncateToInt32(std::ceil(maxX));
    int bottom = Internal::truncateToInt32(std::ceil(maxY));
    if (right == left)
        right = Internal::wrapToInt32(unsigned(left) + 1u);
    if (bottom == top)
        bottom = Internal::wrapToInt32(unsigned(top) + 1u);
    return Box2di(left, top, Internal::wrapToInt32(unsigned(right) - unsigned(left)),
                  Internal::wrapToInt32(unsigned(bottom) - unsigned(top)));
}

bool Matrix2x3::hasNan() const
{
    return Internal::anyNan<6>(_m);
}
bool Matrix2x3::hasInfinity() const
{
    return Internal::anyInfinity<6>(_m);
}

void Matrix2x3::print(char const* label) const
{
    std::printf("%s:\n%12.5f %12.5f %12.5f\n%12.5f %12.5f %12.5f\n", Internal::printLabel(label),
                _m[0], _m[2], _m[4], _m[1], _m[3], _m[5]);
}

} // namespace Math

#include <BrindleBaseCore/math/Point2d.h>

namespace Math {

namespace {
// The product of the squared lengths, shared by the angle functions.
double lengthProduct(Vector2d const& a, Vector2d const& b)
{
    return b.GetLengthSq() * a.GetLengthSq();
}

double copySign(double value, double signOf)
{
    return signOf < 0 ? -value : value;
}
} // namespace

double Vector2d::GetCos(Vector2d const& b) const
{
    double d = lengthProduct(*this, b);
    return d == 0 ? 0.0 : (*this * b) / std::sqrt(d);
}

double Vector2d::GetSin(Vector2d const& b) const
{
    double d = lengthProduct(*this, b);
    return d == 0 ? 0.0 : GetDeterminant(b) / std::sqrt(d);
}

double Vector2d::GetSignedCosSq(Vector2d const& b) const
{
    double d = lengthProduct(*this, b);
    double dot = *this * b;
    return d == 0 ? 0.0 : copySign(dot * dot / d, dot);
}

double Vector2d::GetSignedSinSq(Vector2d const& b) const
{
    double d = lengthProduct(*this, b);
    double cross = GetDeterminant(b);
    return d == 0 ? 0.0 : copySign(cross * cross / d, cross);
}

void Vector2d::SetLength(double l)
{
    double len = GetLength();
    if (len != 0)
        *this *= l / len;
}

void Vector2d::Normalize()
{
    double len = GetLength();
    if (len != 0)
        *this /= len;
}

Vector2d Vector2d::GetNormalizedVector() const
{
    double len = GetLength();
    return len == 0 ? Vector2d() : *this / len;
}

double Vector2d::GetProjectedRatio(Vector2d const& b) const
{
    double bb = b * b;
    return bb == 0 ? 0.0 : (*this * b) / bb;
}

Vector2d Vector2d::GetProjectedVector(Vector2d const& b) const
{
    double bb = b * b;
    return bb == 0 ? Vector2d() : b * ((*this * b) / bb);
}

Vector2d Vector2d::GetRotatedVector(double r) const
{
    double c = std::cos(r), s = std::sin(r);
    return {_x * c - _y * s, _y * c + _x * s};
}

bool Vector2d::VectorLessSignedAngle::operator()(Vector2d const& a, Vector2d const& b) const
{
    double cross = a.GetDeterminant(b);
    if (a._y < 0)
        return b._y < 0 ? cross > 0 : true;
    if (a._y > 0)
        return b._y >= 0 ? cross > 0 : false;
    if (b._y < 0)
        return false;
    if (b._y > 0)
        return a._x > 0;
    return a._x > 0 && b._x < 0;
}

bool Vector2d::VectorLessUnsignedAngle::operator()(Vector2d const& a, Vector2d const& b) const
{
    double cross = a.GetDeterminant(b);
    if (a._y < 0)
        return b._y < 0 ? cross > 0 : false;
    if (a._y > 0)
        return b._y < 0 ? true : cross > 0;
    if (b._y > 0)
        return false;
    if (b._y < 0)
        return a._x < 0;
    return a._x < 0 && b._x > 0;
}

bool Vector2d::VectorInBetweenAngle::operator()(Vector2d const& a, Vector2d const& b,
                                                Vector2d const& c) const
{
    if (b.IsDegenerate())
        return false;
    if (a.IsDegenerate() || c.IsDegenerate())
        return true;
    double d1 = a.GetDeterminant(b);
    double d2 = a.GetDeterminant(c);
    if (d1 < 0 && d2 >= 0)
        return false;
    if (d1 == 0 && d2 < 0)
        return true;
    if (d1 == 0 && d2 == 0)
        return a * c > 0 ? false : a * b > 0;
    if (d1 > 0 && d2 < 0)
        return true;
    return b.GetDeterminant(c) > 0;
}

} // namespace Math

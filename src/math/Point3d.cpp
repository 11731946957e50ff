#include <BrindleBaseCore/math/Matrix4x4.h>
#include <BrindleBaseCore/math/Point3d.h>

#include <cstdio>

namespace Math {

double Vector3d::getCos(Vector3d const& b) const
{
    double d = b.lengthSq() * lengthSq();
    if (d == 0)
        return 0.0;
    return TUMaths::clamp((*this * b) / std::sqrt(d), -1.0, 1.0);
}

double Vector3d::getSin(Vector3d const& b) const
{
    double d = b.lengthSq() * lengthSq();
    if (d == 0)
        return 0.0;
    return TUMaths::clamp(std::sqrt((*this ^ b).lengthSq() / d), -1.0, 1.0);
}

void Vector3d::debugPrint(char const* label) const
{
    std::printf("    %s : (%f, %f, %f)\n", label ? label : "", _x, _y, _z);
}

Angle3d::Angle3d(Vector3d const& v)
{
    double h = std::sqrt(v.x() * v.x() + v.z() * v.z());
    if (h > 1e-5) {
        _y = TUMaths::convertRadiansToDegrees(std::atan2(v.x(), v.z()));
        _x = TUMaths::convertRadiansToDegrees(std::atan2(-v.y(), h));
    } else {
        _y = 0.0;
        _x = std::fabs(v.y()) > 1e-5 ? TUMaths::convertRadiansToDegrees(std::atan2(-v.y(), 0.0))
                                     : 0.0;
    }
    _z = 0.0;
}

} // namespace Math

namespace Math {

Matrix4x4 Angle3d::toRotationMatrix() const
{
    Matrix4x4 m;
    m.rotateDegrees(_z, Vector3d(0, 0, 1));
    m.rotateDegrees(_y, Vector3d(0, 1, 0));
    m.rotateDegrees(_x, Vector3d(1, 0, 0));
    return m;
}

Vector3d Angle3d::toNormal() const
{
    return toRotationMatrix() * Vector3d(0, 0, 1);
}

} // namespace Math

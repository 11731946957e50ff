#include <BrindleBaseCore/math/Matrix4x4.h>

#include "Matrix4x4Kernels.h"
#include "MatrixValues.h"

#include <cfloat>
#include <cstdio>
#include <cstring>

namespace Math {

namespace {

constexpr double identityValues[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

// A 4x4 system for the LU decomposition. Rows are exchanged by exchanging
// the pointers in row (logical row i is row[i]); the object is not copyable.
struct LuSystem
{
    explicit LuSystem(double const* m)
    {
        for (int r = 0; r < 4; ++r) {
            row[r] = values[r];
            for (int c = 0; c < 4; ++c)
                values[r][c] = m[4 * c + r];
        }
    }
    LuSystem(LuSystem const&) = delete;
    LuSystem& operator=(LuSystem const&) = delete;

    double values[4][4];
    double* row[4];
    int index[4];
    int exchanges = 0; // the parity of the permutation is (−1)^exchanges
};

// Crout's method with partial pivoting and implicit row scaling, in place.
// Fails on a row without a non-zero value or a pivot below the double
// epsilon. The pivot search and the row exchange are written without
// branches; they pick the same rows as the textbook loop (the last row of
// greatest merit).
bool decompose(LuSystem& s)
{
    double scale[4];
    for (int i = 0; i < 4; ++i) {
        double big = 0.0;
        for (int j = 0; j < 4; ++j) {
            double t = std::fabs(s.row[i][j]);
            big = t > big ? t : big;
        }
        if (big == 0.0)
            return false;
        scale[i] = 1.0 / big;
    }
#pragma GCC unroll 4
    for (int j = 0; j < 4; ++j) {
        for (int i = 0; i < j; ++i) {
            double* r = s.row[i];
            double sum = r[j];
            for (int k = 0; k < i; ++k)
                sum -= r[k] * s.row[k][j];
            r[j] = sum;
        }
        double big = 0.0;
        int pivotRow = j;
        for (int i = j; i < 4; ++i) {
            double* r = s.row[i];
            double sum = r[j];
            for (int k = 0; k < j; ++k)
                sum -= r[k] * s.row[k][j];
            r[j] = sum;
            double merit = scale[i] * std::fabs(sum);
            int take = -int(merit >= big);
            pivotRow = (i & take) | (pivotRow & ~take);
            big = merit > big ? merit : big;
        }
        double* pivot = s.row[pivotRow];
        s.row[pivotRow] = s.row[j];
        s.row[j] = pivot;
        scale[pivotRow] = scale[j];
        s.exchanges += int(pivotRow != j);
        s.index[j] = pivotRow;
        if (std::fabs(pivot[j]) < DBL_EPSILON)
            return false;
        if (j != 3) {
            double inv = 1.0 / pivot[j];
            for (int i = j + 1; i < 4; ++i)
                s.row[i][j] *= inv;
        }
    }
    return true;
}

// Solves the decomposed system for b in place: forward substitution from the
// first non-zero entry, then back substitution.
void solve(LuSystem const& s, double b[4])
{
    int first = -1;
    for (int i = 0; i < 4; ++i) {
        int p = s.index[i];
        double sum = b[p];
        b[p] = b[i];
        if (first >= 0) {
            for (int j = first; j < i; ++j)
                sum -= s.row[i][j] * b[j];
        } else if (sum != 0.0) {
            first = i;
        }
        b[i] = sum;
    }
    for (int i = 3; i >= 0; --i) {
        double sum = b[i];
        for (int j = i + 1; j < 4; ++j)
            sum -= s.row[i][j] * b[j];
        b[i] = sum / s.row[i][i];
    }
}

// The inverse, column by column into out (storage order). The four unit
// vectors are solved side by side, which gives the same numbers as solve():
// with finite multipliers the terms that solve() skips subtract an exact +0
// from +0 or 1. Non-finite multipliers take the one-column path.
void solveIdentity(LuSystem const& s, double* out)
{
    bool finite = true;
    for (int i = 1; i < 4; ++i) {
        for (int j = 0; j < i; ++j)
            finite = finite && std::isfinite(s.row[i][j]);
    }
    if (!finite) {
        for (int c = 0; c < 4; ++c) {
            double b[4] = {0, 0, 0, 0};
            b[c] = 1.0;
            solve(s, b);
            for (int i = 0; i < 4; ++i)
                out[4 * c + i] = b[i];
        }
        return;
    }
    // Row i of x holds entry i of the four solutions; it starts as the row
    // of the identity that the exchanges bring to place i.
    int order[4] = {0, 1, 2, 3};
    for (int i = 0; i < 4; ++i) {
        int p = s.index[i];
        int t = order[p];
        order[p] = order[i];
        order[i] = t;
    }
    double x[4][4];
    for (int i = 0; i < 4; ++i) {
        for (int c = 0; c < 4; ++c)
            x[i][c] = identityValues[4 * order[i] + c];
    }
    for (int i = 1; i < 4; ++i) {
        for (int j = 0; j < i; ++j) {
            double l = s.row[i][j];
            for (int c = 0; c < 4; ++c)
                x[i][c] -= l * x[j][c];
        }
    }
    for (int i = 3; i >= 0; --i) {
        for (int j = i + 1; j < 4; ++j) {
            double u = s.row[i][j];
            for (int c = 0; c < 4; ++c)
                x[i][c] -= u * x[j][c];
        }
        double d = s.row[i][i];
        for (int c = 0; c < 4; ++c)
            x[i][c] /= d;
    }
    for (int c = 0; c < 4; ++c) {
        for (int i = 0; i < 4; ++i)
            out[4 * c + i] = x[i][c];
    }
}

// The inverse by the portable code; false when the decomposition fails. Out
// of line, so that the vector path keeps a small frame.
[[gnu::noinline]] bool invertPortable(double const* m, double* out)
{
    LuSystem s(m);
    if (!decompose(s))
        return false;
    solveIdentity(s, out);
    return true;
}

double det3(double a, double b, double c, double d, double e, double f, double g, double h,
            double i)
{
    return a * (e * i - f * h) - b * (d * i - f * g) + c * (d * h - e * g);
}

Vector3d normalizedOrZero(Vector3d const& v)
{
    double l = v.length();
    return l == 0 ? v : v / l;
}

} // namespace

char const* Matrix4x4::Singularity::what() const noexcept
{
    return "singular matrix";
}

constinit const Matrix4x4 Matrix4x4::Identity;
double const* const Matrix4x4::_identityPattern = identityValues;

Matrix4x4::Matrix4x4(Matrix2x3 const& m)
    : Matrix4x4(m(0, 0), m(1, 0), 0, 0, m(0, 1), m(1, 1), 0, 0, 0, 0, 1, 0, m(0, 2), m(1, 2), 0, 1)
{}

Matrix4x4::Matrix4x4(Vector3d const& xAxis, Vector3d const& yAxis, Vector3d const& zAxis,
                     Point3d const& o)
    : Matrix4x4(xAxis.x(), xAxis.y(), xAxis.z(), 0, yAxis.x(), yAxis.y(), yAxis.z(), 0, zAxis.x(),
                zAxis.y(), zAxis.z(), 0, o.x(), o.y(), o.z(), 1)
{}

Matrix4x4::Matrix4x4(double m0, double m1, double m2, double m3, double m4, double m5, double m6,
                     double m7, double m8, double m9, double m10, double m11, double m12,
                     double m13, double m14, double m15)
{
    double values[16] = {m0, m1, m2, m3, m4, m5, m6, m7, m8, m9, m10, m11, m12, m13, m14, m15};
    setValues(values);
}

Matrix4x4::Matrix4x4(double const* values)
    : Matrix4x4()
{
    if (values != nullptr)
        setValues(values);
}

Matrix4x4::Matrix4x4(float const* values)
    : Matrix4x4()
{
    if (values == nullptr)
        return;
    double widened[16];
    for (int i = 0; i < 16; ++i)
        widened[i] = values[i];
    setValues(widened);
}

void Matrix4x4::setValues(double const* values)
{
    std::memcpy(_m, values, sizeof _m);
    _identity = std::memcmp(_m, identityValues, sizeof _m) == 0;
}

void Matrix4x4::getValues(double* out) const
{
    std::memcpy(out, _m, sizeof _m);
}

void Matrix4x4::getValues(float* out) const
{
    for (int i = 0; i < 16; ++i)
        out[i] = float(_m[i]);
}

void Matrix4x4::rotateRadians(double angle, Vector3d const& axis)
{
    if (angle == 0)
        return;
    double c = std::cos(angle), s = std::sin(angle);
    if (axis.x() == 0 && axis.y() == 0 && axis.z() == 1) {
        if (_identity) {
            _m[0] = c, _m[1] = s, _m[4] = -s, _m[5] = c;
            _identity = false;
            return;
        }
        for (int i = 0; i < 4; ++i) {
            double u = _m[i], v = _m[4 + i];
            _m[i] = c * u + s * v;
            _m[4 + i] = c * v - s * u;
        }
        return;
    }
    double x = axis.x(), y = axis.y(), z = axis.z(), t = 1 - c;
    *this *= Matrix4x4(x * x * t + c, x * y * t + z * s, x * z * t - y * s, 0, //
                       x * y * t - z * s, y * y * t + c, y * z * t + x * s, 0, //
                       x * z * t + y * s, y * z * t - x * s, z * z * t + c, 0, //
                       0, 0, 0, 1);
}

void Matrix4x4::rotateDegrees(double angle, Vector3d const& axis)
{
    rotateRadians(angle * (3.141592653589793 / 180.0), axis);
}

void Matrix4x4::scale(double sx, double sy, double sz)
{
    if (_identity) {
        if (sx == 1 && sy == 1 && sz == 1)
            return;
        _m[0] = sx, _m[5] = sy, _m[10] = sz;
        _identity = false;
        return;
    }
    double const factors[3] = {sx, sy, sz};
    for (int c = 0; c < 3; ++c) {
        if (factors[c] != 1) {
            for (int i = 0; i < 4; ++i)
                _m[4 * c + i] *= factors[c];
        }
    }
}

void Matrix4x4::translate(double x, double y, double z)
{
    if (_identity) {
        if (x == 0 && y == 0 && z == 0)
            return;
        _m[12] = x, _m[13] = y, _m[14] = z;
        _identity = false;
        return;
    }
    double const offsets[3] = {x, y, z};
    for (int c = 0; c < 3; ++c) {
        if (offsets[c] != 0) {
            for (int i = 0; i < 4; ++i)
                _m[12 + i] += offsets[c] * _m[4 * c + i];
        }
    }
}

void Matrix4x4::skew(double kx, double ky)
{
    *this *= Matrix4x4(1, ky, 0, 0, kx, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);
}

Point4d Matrix4x4::operator*(Point4d const& p) const
{
    if (_identity)
        return p;
    double v[4];
    for (int i = 0; i < 4; ++i)
        v[i] = p.x() * _m[i] + p.y() * _m[4 + i] + p.z() * _m[8 + i] + p.w() * _m[12 + i];
    return {v[0], v[1], v[2], v[3]};
}

Matrix4x4 Matrix4x4::getInverse() const
{
    // One named result on every path, so that it is built in place.
    Matrix4x4 r(NoInit{});
    if (_identity) {
        r = Matrix4x4();
        return r;
    }
    Internal::InverseResult result = Internal::invertFast(_m, r._m);
    if (result != Internal::InverseResult::Inverted) [[unlikely]] {
        if (!invertPortable(_m, r._m))
            throw Singularity();
    }
    return r;
}

bool Matrix4x4::isSingular() const
{
    if (_identity)
        return false;
    LuSystem s(_m);
    return !decompose(s);
}

double Matrix4x4::determinant() const
{
    if (_identity)
        return 1.0;
    double const* m = _m;
    // Expansion along the bottom row (m[3], m[7], m[11], m[15]).
    return -m[3] * det3(m[4], m[8], m[12], m[5], m[9], m[13], m[6], m[10], m[14]) +
           m[7] * det3(m[0], m[8], m[12], m[1], m[9], m[13], m[2], m[10], m[14]) -
           m[11] * det3(m[0], m[4], m[12], m[1], m[5], m[13], m[2], m[6], m[14]) +
           m[15] * det3(m[0], m[4], m[8], m[1], m[5], m[9], m[2], m[6], m[10]);
}

void Matrix4x4::transpose()
{
    if (_identity)
        return;
    for (int r = 0; r < 4; ++r) {
        for (int c = r + 1; c < 4; ++c)
            std::swap(_m[4 * c + r], _m[4 * r + c]);
    }
}

Matrix4x4 Matrix4x4::getTranspose() const
{
    Matrix4x4 r = *this;
    r.transpose();
    return r;
}

void Matrix4x4::normalize()
{
    double w = _m[15];
    if (_identity || std::fabs(w) < TUMaths::epsilon() || w == 1)
        return;
    for (double& v : _m)
        v /= w;
}

bool Matrix4x4::isEmpty() const
{
    return _identity || std::memcmp(_m, identityValues, sizeof _m) == 0;
}

bool Matrix4x4::isIdentity() const
{
    if (_identity)
        return true;
    for (int i = 0; i < 16; ++i) {
        if (_m[i] != identityValues[i])
            return false;
    }
    return true;
}

bool Matrix4x4::operator==(Matrix4x4 const& b) const
{
    return (_identity && b._identity) || std::memcmp(_m, b._m, sizeof _m) == 0;
}

int Matrix4x4::compare(Matrix4x4 const& b) const
{
    return Internal::compareValues<16>(_m, b._m);
}

bool Matrix4x4::operator<(Matrix4x4 const& b) const
{
    if (_identity && b._identity)
        return false;
    for (int i = 0; i < 16; ++i) {
        if (!(_m[i] == b._m[i]))
            return b._m[i] > _m[i];
    }
    return false;
}

bool Matrix4x4::isTransform2d() const
{
    double w = std::fabs(_m[15]);
    if (w <= 1e-5)
        return false;
    return (std::fabs(_m[2]) + std::fabs(_m[3]) + std::fabs(_m[6]) + std::fabs(_m[7])) / w < 1e-5;
}

Matrix2x3 Matrix4x4::getTransform2d() const
{
    return Matrix2x3(Vector2d(_m[0], _m[1]), Vector2d(_m[4], _m[5]), Point2d(_m[12], _m[13]));
}

bool Matrix4x4::hasRotation() const
{
    return _m[1] != 0 || _m[2] != 0 || _m[4] != 0 || _m[6] != 0 || _m[8] != 0 || _m[9] != 0;
}

bool Matrix4x4::hasNan() const
{
    return Internal::anyNan<16>(_m);
}
bool Matrix4x4::hasInfinity() const
{
    return Internal::anyInfinity<16>(_m);
}

Matrix4x4 Matrix4x4::rotation() const
{
    return Matrix4x4(axis(Axis3d::X), axis(Axis3d::Y), axis(Axis3d::Z), Point3d());
}

Matrix4x4 Matrix4x4::rotationNormalized() const
{
    return Matrix4x4(normalizedOrZero(axis(Axis3d::X)), normalizedOrZero(axis(Axis3d::Y)),
                     normalizedOrZero(axis(Axis3d::Z)), Point3d());
}

double Matrix4x4::scaleFactor() const
{
    return std::sqrt(std::fabs(_m[0] * _m[5] - _m[4] * _m[1]));
}

void Matrix4x4::lookAt(Point3d const& eye, Point3d const& center, Vector3d const& up)
{
    Vector3d f = (center - eye).getNormalized();
    Vector3d s = (f ^ up).getNormalized();
    Vector3d u = s ^ f;
    Vector3d e = eye.toVector();
    *this *= Matrix4x4(s.x(), u.x(), -f.x(), 0, s.y(), u.y(), -f.y(), 0, s.z(), u.z(), -f.z(), 0,
                       -(s * e), -(u * e), f * e, 1);
}

void Matrix4x4::perspectiveProject(double fovyDegrees, double aspect, double zNear, double zFar)
{
    double top = zNear * std::tan(TUMaths::convertDegreesToRadians(fovyDegrees) / 2);
    double right = top * aspect;
    perspectiveProject(-right, right, -top, top, zNear, zFar);
}

void Matrix4x4::perspectiveProject(double left, double right, double bottom, double top,
                                   double zNear, double zFar)
{
    double w = right - left, h = top - bottom, d = zFar - zNear;
    *this *= Matrix4x4(2 * zNear / w, 0, 0, 0, 0, 2 * zNear / h, 0, 0, (right + left) / w,
                       (top + bottom) / h, -(zFar + zNear) / d, -1, 0, 0, -2 * zFar * zNear / d, 0);
}

void Matrix4x4::orthogonalProject(double left, double right, double bottom, double top,
                                  double zNear, double zFar)
{
    double w = right - left, h = top - bottom, d = zFar - zNear;
    *this *= Matrix4x4(2 / w, 0, 0, 0, 0, 2 / h, 0, 0, 0, 0, -2 / d, 0, -(right + left) / w,
                       -(top + bottom) / h, -(zFar + zNear) / d, 1);
}

bool Matrix4x4::extractParameters(Vector3d& translation, Angle3d& angles, Vector3d& scale) const
{
    Vector3d cx = axis(Axis3d::X), cy = axis(Axis3d::Y), cz = axis(Axis3d::Z);
    double sx = cx.length(), sy = cy.length(), sz = cz.length();
    if (sx == 0 || sy == 0 || sz == 0)
        return false;
    if ((cx ^ cy) * cz < 0)
        sx = -sx;
    cx /= sx, cy /= sy, cz /= sz;
    // The rotation is Rz(z)·Ry(y)·Rx(x); its element (r, c) is axis c, row r.
    double pitch = std::atan2(-cx.z(), std::sqrt(cx.x() * cx.x() + cx.y() * cx.y()));
    double roll, heading;
    if (std::sqrt(cx.x() * cx.x() + cx.y() * cx.y()) < 1e-9) {
        heading = 0.0;
        roll = std::atan2(-cz.y(), cy.y());
    } else {
        heading = std::atan2(cx.y(), cx.x());
        roll = std::atan2(cy.z(), cz.z());
    }
    translation = Vector3d(_m[12], _m[13], _m[14]);
    angles =
        Angle3d(TUMaths::convertRadiansToDegrees(roll), TUMaths::convertRadiansToDegrees(pitch),
                TUMaths::convertRadiansToDegrees(heading));
    scale = Vector3d(sx, sy, sz);
    return true;
}

bool Matrix4x4::extractParameters(Vector2d& translation, double& angleDegrees,
                                  Vector2d& scale) const
{
    double sx = std::sqrt(_m[0] * _m[0] + _m[1] * _m[1]);
    if (sx == 0)
        return false;
    translation = Vector2d(_m[12], _m[13]);
    angleDegrees = TUMaths::convertRadiansToDegrees(std::atan2(_m[1], _m[0]));
    scale = Vector2d(sx, (_m[0] * _m[5] - _m[4] * _m[1]) / sx);
    return true;
}

void Matrix4x4::print(char const* label) const
{
    double const* m = _m;
    std::printf("%s:\n%12.5f %12.5f %12.5f %12.5f\n%12.5f %12.5f %12.5f %12.5f\n"
                "%12.5f %12.5f %12.5f %12.5f\n%12.5f %12.5f %12.5f %12.5f\n",
                Internal::printLabel(label), m[0], m[4], m[8], m[12], m[1], m[5], m[9], m[13], m[2],
                m[6], m[10], m[14], m[3], m[7], m[11], m[15]);
}

void Matrix4x4::debugPrint(char const* label) const
{
    std::printf("    %s:\n", label ? label : "");
    for (int r = 0; r < 4; ++r) {
        std::printf("                  [%.2f %.2f %.2f %.2f]\n", _m[r], _m[r + 4], _m[r + 8],
                    _m[r + 12]);
    }
}

} // namespace Math

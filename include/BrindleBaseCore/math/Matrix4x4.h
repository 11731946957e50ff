/// @file
/// Math::Matrix4x4: the homogeneous 3D transform. Sixteen doubles stored column
/// by column (element (r, c) at m[4c + r]); points are column vectors and the
/// translation lives in m[12..14]. An identity flag lets the very common
/// identity transform be applied and composed for the cost of a test; every
/// operation checks it first and clears it when it changes the values.
/// Transforming operations (rotate, scale, translate, projections, lookAt)
/// multiply on the right: this = this × T, so T acts on a point first.
#pragma once

#include <BrindleBaseCore/Global.h>
#include <BrindleBaseCore/math/Axis.h>
#include <BrindleBaseCore/math/Matrix2x3.h>
#include <BrindleBaseCore/math/Point2d.h>
#include <BrindleBaseCore/math/Point3d.h>

#include <cstdint>
#include <cstring>
#include <exception>
#include <type_traits>

namespace Math {

namespace Internal {
/// The 4x4 product behind Matrix4x4, in the fastest form the processor offers
/// (the same bits in every form).
BRINDLE_EXPORT void multiply4x4(double const* a, double const* b, double* r);

/// True when the processor and the system offer 256-bit AVX stores and
/// BRINDLE_MATH_KERNEL does not cap the kernels at "portable". Set while the
/// library loads; copies made before then take the narrow path.
BRINDLE_EXPORT extern bool const wideCopies;

/// Copies the sixteen values of a Matrix4x4 (128 bytes) and nothing after
/// them: the tail padding may hold a derived object's members. The store
/// unit bounds a copy: it retires about one store a cycle, 16 or 32 bytes
/// wide alike. So with AVX the copy makes 32-byte stores aligned on the
/// destination (with a 16-byte head and tail when it starts half-way; a
/// 32-byte store across a 32-byte boundary would cost two) instead of eight
/// 16-byte ones. The instructions are spelled out so that applications built
/// for the baseline instruction set use them too; vzeroupper then spares the
/// SSE code around them any transition cost.
inline void copyValues(double* dst, double const* src) noexcept
{
#if defined(__x86_64__) && defined(__GNUC__)
    // clang-format off
    // A load into reg, or a store from it, in either assembler dialect the
    // application may have chosen. All loads go first: a load placed after
    // a store may wait for it until the two addresses are told apart.
#  define BRINDLE_LOAD(reg, offset)                                          \
      "vmovupd {" #offset "(%[s]), %%" #reg "|" #reg ", [%[s]+" #offset "]}\n\t"
#  define BRINDLE_STORE(reg, offset)                                         \
      "vmovupd {%%" #reg ", " #offset "(%[d])|[%[d]+" #offset "], " #reg "}\n\t"
#  if defined(__AVX__)
#    define BRINDLE_WIDE true
#    define BRINDLE_LEAVE_AVX ""
#  else
#    define BRINDLE_WIDE wideCopies
#    define BRINDLE_LEAVE_AVX "vzeroupper"
#  endif
#  define BRINDLE_OPERANDS                                                   \
      : "=m"(*reinterpret_cast<double(*)[16]>(dst))                          \
      : [d] "r"(dst), [s] "r"(src),                                          \
        "m"(*reinterpret_cast<double const(*)[16]>(src))                     \
      : "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5", "xmm6", "xmm7",      \
        "xmm8", "xmm9", "xmm10", "xmm11", "xmm12", "xmm13", "xmm14", "xmm15"
    if (BRINDLE_WIDE) {
        if (reinterpret_cast<std::uintptr_t>(dst) & 16)
            asm(BRINDLE_LOAD(xmm0, 0) BRINDLE_LOAD(ymm1, 16) BRINDLE_LOAD(ymm2, 48)
                BRINDLE_LOAD(ymm3, 80) BRINDLE_LOAD(xmm4, 112)
                BRINDLE_STORE(xmm0, 0) BRINDLE_STORE(ymm1, 16) BRINDLE_STORE(ymm2, 48)
                BRINDLE_STORE(ymm3, 80) BRINDLE_STORE(xmm4, 112)
                BRINDLE_LEAVE_AVX BRINDLE_OPERANDS);
        else
            asm(BRINDLE_LOAD(ymm0, 0) BRINDLE_LOAD(ymm1, 32) BRINDLE_LOAD(ymm2, 64)
                BRINDLE_LOAD(ymm3, 96)
                BRINDLE_STORE(ymm0, 0) BRINDLE_STORE(ymm1, 32) BRINDLE_STORE(ymm2, 64)
                BRINDLE_STORE(ymm3, 96)
                BRINDLE_LEAVE_AVX BRINDLE_OPERANDS);
        return;
    }
#  undef BRINDLE_OPERANDS
#  undef BRINDLE_LEAVE_AVX
#  undef BRINDLE_WIDE
#  undef BRINDLE_STORE
#  undef BRINDLE_LOAD
    // clang-format on
#endif
    std::memcpy(dst, src, 16 * sizeof(double));
}
} // namespace Internal

/// The homogeneous 3D transform: sixteen doubles stored column by column (element (r, c) at m[4c +
/// r]), points as column vectors, translation in m[12..14]. Transforming members (rotate, scale,
/// translate, projections, lookAt) multiply on the right, so the new transform acts on a point
/// first. An identity flag makes applying and composing the identity cost one test; every operation
/// checks it first and clears it when values change. Inverting a singular matrix is the one
/// failure: getInverse() and inverse() throw Singularity. NaN and infinity otherwise propagate
/// (hasNanOrInfinity() tells).
class BRINDLE_EXPORT Matrix4x4
{
public:
    /// Thrown by getInverse() and inverse() when the LU decomposition fails: a
    /// row is entirely zero or a pivot is below the double epsilon.
    class BRINDLE_EXPORT Singularity : public std::exception
    {
    public:
        /// A fixed message naming the singular matrix.
        char const* what() const noexcept override;
    };

    /// The identity matrix, flagged.
    static const Matrix4x4 Identity;
    /// The sixteen identity values, for comparisons.
    static double const* const _identityPattern;

    /// The identity, flagged.
    constexpr Matrix4x4()
        : _m{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}
        , _identity(true)
    {}
    /// The 2D affine transform acting on x and y (z and w pass through).
    explicit Matrix4x4(Matrix2x3 const& m);
    /// Columns xAxis, yAxis, zAxis (w = 0) and origin (w = 1).
    Matrix4x4(Vector3d const& xAxis, Vector3d const& yAxis, Vector3d const& zAxis,
              Point3d const& origin);
    /// Sixteen values in storage order (column by column). The value
    /// constructors set the flag exactly when the values are the identity's.
    Matrix4x4(double m0, double m1, double m2, double m3, double m4, double m5, double m6,
              double m7, double m8, double m9, double m10, double m11, double m12, double m13,
              double m14, double m15);
    /// Sixteen values in storage order; a null pointer gives the identity.
    explicit Matrix4x4(double const* values);
    /// Sixteen floats in storage order; a null pointer gives the identity.
    explicit Matrix4x4(float const* values);

    /// Writing through the mutable form clears the identity flag.
    double& operator()(Row r, Column c)
    {
        _identity = false;
        return _m[4 * c + r];
    }
    /// Element at row r, column c.
    double operator()(Row r, Column c) const { return _m[4 * c + r]; }
    /// The sixteen values in storage order.
    double const* asArray() const { return _m; }
    /// Copies the sixteen values, in storage order, to out.
    void getValues(double* out) const;
    /// Copies the sixteen values, in storage order and narrowed to float, to out.
    void getValues(float* out) const;
    /// The identity flag as stored (may be false for identity values).
    bool isIdentityFlag() const { return _identity; }

    /// @name Named elements
    /// A, B, C, D the 2D linear part, E, F the 2D translation, G, H the
    /// perspective terms of x and y, Z the depth translation and W the
    /// homogeneous scale. The setters clear the identity flag.
    /**@{*/
    /// Element A (m0).
    double getA() const { return _m[0]; }
    /// Element B (m4).
    double getB() const { return _m[4]; }
    /// Element C (m1).
    double getC() const { return _m[1]; }
    /// Element D (m5).
    double getD() const { return _m[5]; }
    /// Element E (m12).
    double getE() const { return _m[12]; }
    /// Element F (m13).
    double getF() const { return _m[13]; }
    /// Element G (m3).
    double getG() const { return _m[3]; }
    /// Element H (m7).
    double getH() const { return _m[7]; }
    /// Element Z (m14).
    double getZ() const { return _m[14]; }
    /// Element W (m15).
    double getW() const { return _m[15]; }
    /// Sets element A (m0).
    void setA(double v) { set(0, v); }
    /// Sets element B (m4).
    void setB(double v) { set(4, v); }
    /// Sets element C (m1).
    void setC(double v) { set(1, v); }
    /// Sets element D (m5).
    void setD(double v) { set(5, v); }
    /// Sets element E (m12).
    void setE(double v) { set(12, v); }
    /// Sets element F (m13).
    void setF(double v) { set(13, v); }
    /// Sets element G (m3).
    void setG(double v) { set(3, v); }
    /// Sets element H (m7).
    void setH(double v) { set(7, v); }
    /// Sets element Z (m14).
    void setZ(double v) { set(14, v); }
    /// Sets element W (m15).
    void setW(double v) { set(15, v); }
    /**@}*/

    /// this = this × b.
    Matrix4x4& operator*=(Matrix4x4 const& b)
    {
        if (_identity | b._identity) [[unlikely]] {
            if (!b._identity) {
                Internal::copyValues(_m, b._m);
                _identity = false;
            }
            return *this;
        }
        double r[16];
        product(_m, b._m, r);
        for (int i = 0; i < 16; ++i)
            _m[i] = r[i];
        return *this;
    }
    /// this = this × b (the same as operator*=).
    void multiply(Matrix4x4 const& b) { *this *= b; }
    /// this × b; with a flagged identity on either side, a copy of the other
    /// (flagged only when both are).
    Matrix4x4 operator*(Matrix4x4 const& b) const
    {
        // One named result on every path, so that it is built in place; with
        // a flagged identity it is a copy of the other operand's values.
        Matrix4x4 r(NoInit{}, _identity & b._identity);
        if (_identity | b._identity) [[unlikely]]
            Internal::copyValues(r._m, b._identity ? _m : b._m);
        else
            product(_m, b._m, r._m);
        return r;
    }

    /// The axis is used as passed, not normalised. Rotations about exactly
    /// (0, 0, 1) update two columns in place.
    void rotateRadians(double angle, Vector3d const& axis);
    /// Rotation by an angle in degrees about axis (see rotateRadians()).
    void rotateDegrees(double angle, Vector3d const& axis);
    /// Composes with a scaling by (sx, sy, sz).
    void scale(double sx, double sy, double sz);
    /// Composes with a translation by (x, y, z).
    void translate(double x, double y, double z);
    /// Composes with a translation by v.
    void translate(Vector3d const& v) { translate(v.x(), v.y(), v.z()); }
    /// this ×= the shear x' = x + kx·y, y' = y + ky·x.
    void skew(double kx, double ky);

    /// Projective transform of a point; a w of 0 is not guarded.
    Point3d operator*(Point3d const& p) const
    {
        if (_identity)
            return p;
        double x = p.x(), y = p.y(), z = p.z();
        double w = x * _m[3] + y * _m[7] + z * _m[11] + _m[15];
        return {(x * _m[0] + y * _m[4] + z * _m[8] + _m[12]) / w,
                (x * _m[1] + y * _m[5] + z * _m[9] + _m[13]) / w,
                (x * _m[2] + y * _m[6] + z * _m[10] + _m[14]) / w};
    }
    /// The upper-left 3x3 part: no translation, no division.
    Vector3d operator*(Vector3d const& v) const
    {
        if (_identity)
            return v;
        double x = v.x(), y = v.y(), z = v.z();
        return {x * _m[0] + y * _m[4] + z * _m[8], x * _m[1] + y * _m[5] + z * _m[9],
                x * _m[2] + y * _m[6] + z * _m[10]};
    }
    /// The point (x, y, 0) transformed projectively, keeping x and y.
    Point2d operator*(Point2d const& p) const { return (*this * Point3d(p, 0.0)).toPoint2d(); }
    /// The full homogeneous product, no division.
    Point4d operator*(Point4d const& p) const;
    /// The same as this * p.
    Point3d multiplyPoint(Point3d const& p) const { return *this * p; }
    /// The same as this * v.
    Vector3d multiplyVector(Vector3d const& v) const { return *this * v; }
    /// The point with w = 1, transformed without division.
    Point4d homogeneousTransform(Point3d const& p) const { return *this * Point4d(p); }

    /// By LU decomposition (Crout, partial pivoting, implicit scaling); throws
    /// Singularity. inverse() leaves the matrix unchanged when it throws.
    Matrix4x4 getInverse() const;
    /// Replaces this by its inverse; throws Singularity and leaves this unchanged when singular.
    void inverse() { *this = getInverse(); }
    /// Whether the LU decomposition fails; the identity never does.
    bool isSingular() const;
    /// Determinant; 1 without computing when flagged.
    double determinant() const;
    /// Transposes in place.
    void transpose();
    /// The transposed copy.
    Matrix4x4 getTranspose() const;
    /// Divides every value by m[15] unless it is within epsilon of 0.
    void normalize();
    /// Back to the flagged identity.
    void clear() { *this = Matrix4x4(); }

    /// Flagged, or bitwise equal to the identity values.
    bool isEmpty() const;
    /// Flagged, or numerically equal to the identity values (−0 counts as 0).
    bool isIdentity() const;
    /// Two flagged matrices are equal; otherwise the values are compared
    /// bitwise, as isEmpty() does.
    bool operator==(Matrix4x4 const& b) const;
    /// Negation of operator==.
    bool operator!=(Matrix4x4 const& b) const { return !(*this == b); }
    /// −1, 0 or +1 by the first value that is less or greater in storage order
    /// (NaNs are passed over); the flags are not consulted.
    int compare(Matrix4x4 const& b) const;
    /// Both flagged: false. Otherwise decided by the first unequal value (a NaN
    /// is unequal): whether b's value is greater.
    bool operator<(Matrix4x4 const& b) const;

    /// Whether x and y feed neither z nor w, relative to |m[15]|.
    bool isTransform2d() const;
    /// The 2D part: (A, C, B, D, E, F).
    Matrix2x3 getTransform2d() const;
    /// Whether z does not depend on x and y.
    bool isConstantZ() const { return _m[2] == 0 && _m[6] == 0; }
    /// Whether the bottom row has a perspective term.
    bool isPerspectiveProjection() const { return _m[3] != 0 || _m[7] != 0 || _m[11] != 0; }
    /// Whether the 3x3 part has an off-diagonal term (shear included).
    bool hasRotation() const;
    /// Whether an element is NaN.
    bool hasNan() const;
    /// Whether an element is infinite.
    bool hasInfinity() const;
    /// Whether an element is NaN or infinite.
    bool hasNanOrInfinity() const { return hasNan() || hasInfinity(); }

    /// The upper-left 3x3 part alone (no translation, no perspective).
    Matrix4x4 rotation() const;
    /// rotation() with its three columns made unit length.
    Matrix4x4 rotationNormalized() const;
    /// Column a (the image of the unit vector on axis a).
    Vector3d axis(Axis3d a) const
    {
        return {_m[4 * int(a)], _m[4 * int(a) + 1], _m[4 * int(a) + 2]};
    }
    /// The translation, as the image of the origin.
    Point3d origin() const { return {_m[12], _m[13], _m[14]}; }
    /// The linear scale of the plane: sqrt(|A·D − B·C|).
    double scaleFactor() const;

    /// this ×= the view transform of a camera at eye looking at center.
    void lookAt(Point3d const& eye, Point3d const& center, Vector3d const& up);
    /// this ×= the perspective projection with a vertical field of view in
    /// degrees, onto the clip cube [−1, 1]³ (the camera looks down −z).
    void perspectiveProject(double fovyDegrees, double aspect, double zNear, double zFar);
    /// this ×= the perspective projection of the frustum given by its near
    /// rectangle.
    void perspectiveProject(double left, double right, double bottom, double top, double zNear,
                            double zFar);
    /// this ×= the orthographic projection of the box onto [−1, 1]³.
    void orthogonalProject(double left, double right, double bottom, double top, double zNear,
                           double zFar);

    /// Splits an affine matrix into translation × rotation × scale, the
    /// rotation as the angles of Angle3d::toRotationMatrix(). A mirror shows as
    /// a negative x scale. False when a column of the 3x3 part is zero.
    bool extractParameters(Vector3d& translation, Angle3d& angles, Vector3d& scale) const;
    /// The 2D part as translation, rotation (degrees) and scale; a shear is not
    /// reported. False when the first column is zero.
    bool extractParameters(Vector2d& translation, double& angleDegrees, Vector2d& scale) const;

    /// Text dumps to standard output, row by row.
    void print(char const* label) const;
    /// The same dump as print().
    void debugPrint(char const* label) const;

private:
    struct NoInit
    {};
    explicit Matrix4x4(NoInit, bool identity = false)
        : _identity(identity)
    {}
    void set(int i, double v)
    {
        _identity = false;
        _m[i] = v;
    }
    void setValues(double const* values);
    /// r = a × b (r must not alias a or b): column c of r is the columns of a
    /// weighted by column c of b, summed in order k = 0..3.
    static void product(double const* a, double const* b, double* r)
    {
        Internal::multiply4x4(a, b, r);
    }

    alignas(16) double _m[16];
    bool _identity;
};

/// Sixteen contiguous values, then the flag.
static_assert(sizeof(Matrix4x4) == 18 * sizeof(double) && std::is_standard_layout_v<Matrix4x4>);

} // namespace Math

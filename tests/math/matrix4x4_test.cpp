// Matrix4x4: flag short paths, transforms, inversion, orderings, dumps and
// the derived operations (projections, lookAt, parameters).
#include <BrindleBaseCore/math/Matrix4x4.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <new>

using namespace Math;

namespace {

Matrix4x4 sample()
{
    // Column by column: a general matrix with perspective terms.
    return Matrix4x4(2, 0.5, 0, 0.1, 1, 3, -1, 0, 0, 1, 4, 0.2, 5, -6, 7, 1);
}

void expectNear(Matrix4x4 const& a, Matrix4x4 const& b, double tolerance)
{
    for (int i = 0; i < 16; ++i)
        EXPECT_NEAR(a.asArray()[i], b.asArray()[i], tolerance) << "index " << i;
}

// Points, vectors and angles alike.
template <class A, class B>
void expectNear(A const& a, B const& b, double tolerance)
{
    EXPECT_NEAR(a.x(), b.x(), tolerance);
    EXPECT_NEAR(a.y(), b.y(), tolerance);
    EXPECT_NEAR(a.z(), b.z(), tolerance);
}

} // namespace

TEST(Matrix4x4, LayoutAndIdentityFlag)
{
    Matrix4x4 m = sample();
    EXPECT_EQ(m(Row1, Column0), 0.5);
    EXPECT_EQ(m(Row0, Column3), 5.0);
    float f[16];
    m.getValues(f);
    EXPECT_EQ(f[12], 5.0f);
    EXPECT_EQ(Matrix4x4(f).asArray()[4], 1.0);
    EXPECT_TRUE(Matrix4x4(Matrix4x4::_identityPattern).isIdentityFlag());
    Matrix4x4 id;
    id(Row2, Column2) = 1.0; // the same value still clears the flag
    EXPECT_FALSE(id.isIdentityFlag());
    EXPECT_TRUE(id.isEmpty());
}

// A flagged operand with a general one is checked bit for bit below.
TEST(Matrix4x4, CompositionShortCutsTheFlag)
{
    Matrix4x4 unflaggedId;
    unflaggedId(Row0, Column0) = 1;
    EXPECT_TRUE((sample() * unflaggedId) == sample());
    EXPECT_TRUE((Matrix4x4() * Matrix4x4()).isIdentityFlag());
    // The product acts with the right operand first.
    Matrix4x4 t, s;
    t.translate(1, 2, 3);
    s.scale(2, 2, 2);
    EXPECT_EQ((t * s) * Point3d(1, 1, 1), Point3d(3, 4, 5));
    EXPECT_EQ((s * t) * Point3d(1, 1, 1), Point3d(4, 6, 8));
}

// The identity short paths copy the other operand's bits exactly (a NaN's
// payload, -0, denormals) wherever the result lies, and never write past
// the values and the flag: the tail padding may belong to a derived object.
TEST(Matrix4x4, IdentityShortPathsCopyExactlyAtEveryAlignment)
{
    double v[16];
    for (int i = 0; i < 16; ++i)
        v[i] = 0.25 * i - 1.5;
    v[3] = -0.0;
    v[7] = std::nan("0x5a5a");
    v[11] = 4.9e-324;
    v[15] = -INFINITY;
    alignas(64) unsigned char source[64 + sizeof(Matrix4x4)];
    alignas(64) unsigned char target[64 + sizeof(Matrix4x4)];
    for (int from : {0, 16, 48}) {
        auto* a = new (source + from) Matrix4x4(v);
        ASSERT_FALSE(a->isIdentityFlag());
        for (int to : {0, 8, 16, 32, 48}) {
            SCOPED_TRACE(testing::Message() << "source +" << from << ", result +" << to);
            std::memset(target, 0xa5, sizeof target);
            auto* values = reinterpret_cast<double*>(target + to);
            Internal::copyValues(values, a->asArray());
            EXPECT_EQ(std::memcmp(values, v, sizeof v), 0);
            EXPECT_EQ(target[to + sizeof v], 0xa5);
            EXPECT_EQ(target[to + sizeof(Matrix4x4) - 1], 0xa5);
            if (to % 16)
                continue; // Matrix4x4 itself is 16-byte aligned
            auto* left = new (target + to) Matrix4x4(Matrix4x4::Identity * *a);
            EXPECT_EQ(std::memcmp(left->asArray(), v, sizeof v), 0);
            EXPECT_FALSE(left->isIdentityFlag());
            auto* right = new (target + to) Matrix4x4(*a * Matrix4x4::Identity);
            EXPECT_EQ(std::memcmp(right->asArray(), v, sizeof v), 0);
            EXPECT_FALSE(right->isIdentityFlag());
            auto* in = new (target + to) Matrix4x4();
            *in *= *a;
            EXPECT_EQ(std::memcmp(in->asArray(), v, sizeof v), 0);
            EXPECT_FALSE(in->isIdentityFlag());
        }
    }
}

TEST(Matrix4x4, RotationPaths)
{
    Matrix4x4 m;
    m.rotateDegrees(90, Vector3d(0, 0, 1));
    EXPECT_FALSE(m.isIdentityFlag());
    EXPECT_NEAR(m.asArray()[0], 6.123233995736766e-17, 1e-30);
    EXPECT_EQ(m.asArray()[4], -1.0);
    // A zero angle changes nothing, the flag included.
    Matrix4x4 kept, general = sample();
    kept.rotateRadians(0, Vector3d(1, 2, 3));
    general.rotateRadians(0.0, Vector3d(0, 0, 1));
    EXPECT_TRUE(kept.isIdentityFlag());
    EXPECT_TRUE(general == sample());
    // The in-place z path agrees with the general formula.
    Matrix4x4 fast = sample(), slow = sample(), r;
    fast.rotateRadians(0.7, Vector3d(0, 0, 1));
    r.rotateRadians(0.7, Vector3d(0, 0, 1.0 + 1e-300)); // not exactly the z axis
    slow *= r;
    expectNear(fast, slow, 1e-14);
    // Counter-clockwise: about +y, +z goes to +x; about +x, +y goes to +z.
    Matrix4x4 y, x;
    y.rotateDegrees(90, Vector3d(0, 1, 0));
    x.rotateDegrees(90, Vector3d(1, 0, 0));
    expectNear(y * Point3d(0, 0, 1), Point3d(1, 0, 0), 1e-15);
    expectNear(x * Point3d(0, 1, 0), Point3d(0, 0, 1), 1e-15);
}

TEST(Matrix4x4, ScaleAndTranslateSkipNeutralValues)
{
    Matrix4x4 m;
    m.scale(1, 1, 1);
    m.translate(0, 0, 0);
    EXPECT_TRUE(m.isIdentityFlag());
    m.scale(2, 3, 4);
    EXPECT_EQ(m * Point3d(1, 1, 1), Point3d(2, 3, 4));
    // Translating after scaling moves in the scaled frame.
    m.translate(1, 1, 1);
    EXPECT_EQ(m.origin(), Point3d(2, 3, 4));
    // All four rows of column 3 take part.
    Matrix4x4 p = sample();
    p.translate(1, 0, 0);
    EXPECT_DOUBLE_EQ(p.getW(), 1.0 + 0.1);
}

TEST(Matrix4x4, PointAndVectorProducts)
{
    Matrix4x4 m = sample();
    Point3d p = m * Point3d(1, 2, 3);
    double w = 0.1 + 0 + 0.6 + 1;
    expectNear(p, Point3d((2 + 2 + 0 + 5) / w, (0.5 + 6 + 3 - 6) / w, (0 - 2 + 12 + 7) / w), 1e-14);
    EXPECT_EQ(m * Vector3d(1, 0, 0), Vector3d(2, 0.5, 0));
    Point4d h = m * Point4d(1, 2, 3, 1);
    EXPECT_DOUBLE_EQ(h.w(), w);
    expectNear(h.toPoint3d(), p, 1e-14);
    EXPECT_EQ(m * Point2d(1, 2), (m * Point3d(1, 2, 0)).toPoint2d());
    // A w of 0 is not guarded.
    Matrix4x4 zeroW(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0);
    EXPECT_TRUE(std::isinf((zeroW * Point3d(1, 0, 0)).x()));
}

// The values and the singular cases at large are in the property test.
TEST(Matrix4x4, InverseAndSingularity)
{
    Matrix4x4 m = sample();
    Matrix4x4 inv = m.getInverse(), inPlace = m;
    inPlace.inverse();
    EXPECT_FALSE(inv.isIdentityFlag());
    EXPECT_TRUE(inPlace == inv);
    EXPECT_TRUE(Matrix4x4().getInverse().isIdentityFlag());
    EXPECT_FALSE(Matrix4x4().isSingular());
    EXPECT_NEAR(m.determinant() * inv.determinant(), 1.0, 1e-13);
    // A throwing inverse() leaves the matrix as it was.
    Matrix4x4 zeroRow = sample();
    for (Column c : {Column0, Column1, Column2, Column3})
        zeroRow(Row2, c) = 0;
    Matrix4x4 before = zeroRow;
    EXPECT_THROW(zeroRow.inverse(), Matrix4x4::Singularity);
    EXPECT_TRUE(zeroRow == before);
    EXPECT_EQ(Matrix4x4(1, 2, 3, 4, 2, 4, 6, 8, 0, 1, 0, 0, 0, 0, 1, 1).determinant(), 0.0);
}

TEST(Matrix4x4, ComparisonsAndOrder)
{
    Matrix4x4 flagged, unflagged;
    unflagged(Row0, Column0) = 1;
    EXPECT_FALSE(flagged < Matrix4x4());
    EXPECT_EQ(flagged.compare(unflagged), 0);
    EXPECT_TRUE(flagged == unflagged);
    EXPECT_FALSE(flagged < unflagged || unflagged < flagged);
    Matrix4x4 a, b;
    a.translate(1, 0, 0);
    b.translate(2, 0, 0);
    EXPECT_TRUE(a < b);
    EXPECT_FALSE(b < a);
    EXPECT_EQ(a.compare(b), -1);
    EXPECT_EQ(b.compare(a), 1);
    Matrix4x4 nanFirst;
    nanFirst(Row0, Column0) = NAN;
    EXPECT_FALSE(nanFirst < b);         // decided at index 0: NaN is not greater
    EXPECT_EQ(nanFirst.compare(b), -1); // NaN passed over, then 0 < 2 at m[12]
    EXPECT_TRUE(nanFirst.hasNan() && !nanFirst.hasInfinity());
    Matrix4x4 negZero;
    negZero(Row1, Column0) = -0.0;
    EXPECT_FALSE(negZero.isEmpty());
    EXPECT_TRUE(negZero.isIdentity());
    EXPECT_TRUE(negZero != Matrix4x4());
}

TEST(Matrix4x4, TwoDimensionalTransforms)
{
    Matrix2x3 m2(Vector2d(1, 2), Vector2d(3, 4), Point2d(5, 6));
    Matrix4x4 m(m2);
    EXPECT_TRUE(m.isTransform2d());
    EXPECT_TRUE(m.getTransform2d() == m2);
    EXPECT_EQ(m * Point2d(1, 1), m2.Transform(Point2d(1, 1)));
    EXPECT_TRUE(m.hasRotation());
    EXPECT_TRUE(Matrix4x4(Matrix2x3()).isIdentityFlag());
    EXPECT_FALSE(sample().isTransform2d());
    Matrix4x4 zeroW(m2), nearly(m2);
    zeroW.setW(1e-6);
    nearly.setG(1e-6); // small next to w
    EXPECT_FALSE(zeroW.isTransform2d());
    EXPECT_TRUE(nearly.isTransform2d());
    Matrix4x4 scaled(Matrix2x3::CreateScale(Vector2d(2, 8)));
    EXPECT_FALSE(scaled.hasRotation());
    EXPECT_DOUBLE_EQ(scaled.scaleFactor(), 4.0);
    Matrix4x4 sk;
    sk.skew(2, 0);
    EXPECT_EQ(sk * Point2d(1, 1), Point2d(3, 1));
}

TEST(Matrix4x4, TransposeNormalizeAndRotationParts)
{
    Matrix4x4 m = sample();
    Matrix4x4 t = m.getTranspose();
    EXPECT_EQ(t(Row0, Column1), m(Row1, Column0));
    t.transpose();
    EXPECT_TRUE(t == m);
    Matrix4x4 h = m;
    h.setW(2);
    h.normalize();
    EXPECT_EQ(h.getW(), 1.0);
    EXPECT_EQ(h.getE(), 2.5);
    Matrix4x4 r = m.rotation();
    EXPECT_EQ(r.origin(), Point3d());
    EXPECT_EQ(r.getG(), 0.0);
    EXPECT_EQ(r.axis(Axis3d::X), m.axis(Axis3d::X));
    EXPECT_NEAR(m.rotationNormalized().axis(Axis3d::Z).length(), 1.0, 1e-15);
    Matrix4x4 frame(Vector3d(0, 1, 0), Vector3d(-1, 0, 0), Vector3d(0, 0, 1), Point3d(1, 2, 3));
    EXPECT_EQ(frame * Point3d(1, 0, 0), Point3d(1, 3, 3));
}

TEST(Matrix4x4, ParametersRoundTrip)
{
    Matrix4x4 m;
    m.translate(1, -2, 3);
    m *= Angle3d(20, -35, 110).toRotationMatrix();
    m.scale(2, 0.5, 3);
    Vector3d t, s;
    Angle3d a;
    ASSERT_TRUE(m.extractParameters(t, a, s));
    expectNear(t, Vector3d(1, -2, 3), 1e-12);
    expectNear(a, Angle3d(20, -35, 110), 1e-9);
    expectNear(s, Vector3d(2, 0.5, 3), 1e-12);
    Matrix4x4 mirrored, flat;
    mirrored.scale(-1, 1, 1);
    ASSERT_TRUE(mirrored.extractParameters(t, a, s));
    EXPECT_EQ(s, Vector3d(-1, 1, 1));
    EXPECT_EQ(a, Angle3d(0, 0, 0));
    flat.scale(1, 0, 1);
    EXPECT_FALSE(flat.extractParameters(t, a, s));

    Matrix4x4 m2(Matrix2x3::CreateScale(Vector2d(2, 3)) * Matrix2x3::CreateRotate(0.5) *
                 Matrix2x3::CreateTranslate(Vector2d(4, 5)));
    Vector2d t2, s2;
    double degrees = 0;
    ASSERT_TRUE(m2.extractParameters(t2, degrees, s2));
    EXPECT_EQ(t2, Vector2d(4, 5));
    // Scale then rotation is not a pure rotation and scale unless uniform.
    Matrix4x4 uniform(Matrix2x3::CreateScale(Vector2d(2, 2)) * Matrix2x3::CreateRotate(0.5));
    ASSERT_TRUE(uniform.extractParameters(t2, degrees, s2));
    EXPECT_NEAR(degrees, TUMaths::convertRadiansToDegrees(0.5), 1e-12);
    EXPECT_NEAR(s2.x(), 2, 1e-15);
    EXPECT_NEAR(s2.y(), 2, 1e-15);
}

TEST(Matrix4x4, ProjectionsAndLookAt)
{
    Matrix4x4 view, side;
    view.lookAt(Point3d(0, 0, 5), Point3d(0, 0, 0), Vector3d(0, 1, 0));
    side.lookAt(Point3d(3, 0, 0), Point3d(0, 0, 0), Vector3d(0, 1, 0));
    expectNear(view * Point3d(1, 2, 0), Point3d(1, 2, -5), 1e-15);
    expectNear(side * Point3d(0, 0, -1), Point3d(1, 0, -3), 1e-15);

    Matrix4x4 p, f, o;
    p.perspectiveProject(90, 2, 1, 10);
    EXPECT_TRUE(p.isPerspectiveProjection());
    expectNear(p * Point3d(0, 0, -10), Point3d(0, 0, 1), 1e-14);
    expectNear(p * Point3d(2, 1, -1), Point3d(1, 1, -1), 1e-15);
    f.perspectiveProject(-2, 2, -1, 1, 1, 10);
    expectNear(f, p, 1e-15);
    o.orthogonalProject(0, 4, 0, 2, 1, 3);
    expectNear(o * Point3d(4, 2, -3), Point3d(1, 1, 1), 1e-15);
    expectNear(o * Point3d(0, 0, -1), Point3d(-1, -1, -1), 1e-15);
}

TEST(Matrix4x4, PrintFormats)
{
    Matrix4x4 m;
    m.translate(1, 2, 3);
    testing::internal::CaptureStdout();
    m.print("");
    m.debugPrint("cam");
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Matrix:\n"
              "     1.00000      0.00000      0.00000      1.00000\n"
              "     0.00000      1.00000      0.00000      2.00000\n"
              "     0.00000      0.00000      1.00000      3.00000\n"
              "     0.00000      0.00000      0.00000      1.00000\n"
              "    cam:\n"
              "                  [1.00 0.00 0.00 1.00]\n"
              "                  [0.00 1.00 0.00 2.00]\n"
              "                  [0.00 0.00 1.00 3.00]\n"
              "                  [0.00 0.00 0.00 1.00]\n");
}

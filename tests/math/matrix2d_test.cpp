// Matrix2x2 with its identity flag and the affine Matrix2x3.
#include <BrindleBaseCore/math/Box2d.h>
#include <BrindleBaseCore/math/Matrix2x2.h>
#include <BrindleBaseCore/math/Matrix2x3.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

using namespace Math;

namespace {

Matrix2x2 unflagged(double m0, double m1, double m2, double m3)
{
    double const v[4] = {m0, m1, m2, m3};
    Matrix2x2 m(v);
    m(Row0, Column0) = m0; // any write clears the flag
    return m;
}

void expectValues(Matrix2x2 const& m, std::initializer_list<double> values, double tolerance = 0)
{
    for (int i = 0; i < 4; ++i)
        EXPECT_NEAR(m.asArray()[i], values.begin()[i], tolerance) << "index " << i;
}

} // namespace

TEST(Matrix2x2, IdentityFlagFollowsConstructionAndWrites)
{
    double identity[4] = {1, 0, 0, 1};
    float identityF[4] = {1, 0, 0, 1};
    for (Matrix2x2 const& m :
         {Matrix2x2(identity), Matrix2x2(identityF), Matrix2x2(static_cast<double const*>(nullptr)),
          Matrix2x2(Vector2d(1, 0), Vector2d(0, 1))})
        EXPECT_TRUE(m.isIdentityFlag());
    Matrix2x2 m(Vector2d(1, 2), Vector2d(3, 4));
    EXPECT_FALSE(m.isIdentityFlag());
    expectValues(m, {1, 2, 3, 4});
    m.clear();
    EXPECT_TRUE(m.isIdentityFlag());
    m(Row0, Column0) = 1; // the same value still clears the flag
    EXPECT_FALSE(m.isIdentityFlag());
    EXPECT_TRUE(m.isIdentity());
}

TEST(Matrix2x2, EqualityIsFlagOrBytes)
{
    EXPECT_TRUE(unflagged(1, 0, 0, 1) == Matrix2x2());
    EXPECT_TRUE(unflagged(1, 0, -0.0, 1) != unflagged(1, 0, 0, 1));
    EXPECT_TRUE(unflagged(NAN, 0, 0, 1) == unflagged(NAN, 0, 0, 1));
    EXPECT_EQ(unflagged(1, 0, -0.0, 1).compare(unflagged(1, 0, 0, 1)), 0);
    EXPECT_EQ(unflagged(1, 2, 0, 0).compare(unflagged(1, 3, -5, 0)), -1);
    EXPECT_EQ(unflagged(1, 3, 0, 0).compare(unflagged(1, 2, 5, 0)), 1);
}

TEST(Matrix2x2, ProductsShortCutTheFlag)
{
    Matrix2x2 a = unflagged(1, 2, 3, 4), b = unflagged(5, 6, 7, 8);
    expectValues(a * b, {23, 34, 31, 46});
    EXPECT_FALSE((Matrix2x2() * a).isIdentityFlag());
    EXPECT_TRUE((a * Matrix2x2()) == a);
    EXPECT_TRUE((Matrix2x2() * Matrix2x2()).isIdentityFlag());
    Matrix2x2 c = a;
    c *= b;
    EXPECT_TRUE(c == a * b);
    EXPECT_EQ(a * Vector2d(1, 1), Vector2d(4, 6));
    expectValues(a.getTranspose(), {1, 3, 2, 4});
    EXPECT_TRUE(unflagged(INFINITY, 0, 0, 1).hasInfinity());
    EXPECT_TRUE(unflagged(1, NAN, 0, 1).hasNan());
}

TEST(Matrix2x2, InverseCrossesTheOffDiagonals)
{
    // Intended: the transpose of the mathematical inverse (−2, 1, 1.5, −0.5).
    Matrix2x2 m = unflagged(1, 2, 3, 4);
    EXPECT_TRUE(m.inverse());
    expectValues(m, {-2, 1.5, 1, -0.5});
    EXPECT_FALSE(m.isIdentityFlag());
    EXPECT_TRUE(unflagged(1, 2, 3, 4).getInverse() == m);
    // A singular matrix becomes the flagged identity.
    Matrix2x2 s = unflagged(1, 2, 2, 4);
    EXPECT_TRUE(s.getInverse().isIdentityFlag());
    EXPECT_FALSE(s.inverse());
    EXPECT_TRUE(s.isIdentityFlag());
}

TEST(Matrix2x2, RotationAndScaleDependOnTheFlag)
{
    Matrix2x2 flagged, plain = unflagged(1, 0, 0, 1);
    flagged.rotateDegrees(90);
    expectValues(flagged, {0, -1, 1, 0}, 1e-15);
    EXPECT_FALSE(flagged.isIdentityFlag());
    // Intended: the same values without the flag rotate the other way.
    plain.rotateDegrees(90);
    expectValues(plain, {0, 1, -1, 0}, 1e-15);
    Matrix2x2 m;
    m.rotateRadians(0);
    m.scale(1, 1);
    EXPECT_TRUE(m.isIdentityFlag());
    m.scale(2, 3);
    expectValues(m, {2, 3, 0, 1}); // intended: sy lands in m1 on a flagged identity
    Matrix2x2 p = unflagged(1, 2, 3, 4);
    p.scale(2, 3);
    expectValues(p, {2, 4, 9, 12});
}

TEST(Matrix2x3, CompositionAppliesTheLeftOperandFirst)
{
    Matrix2x3 translate = Matrix2x3::CreateTranslate(Vector2d(5, 0));
    Matrix2x3 scale = Matrix2x3::CreateScale(Vector2d(2, 2));
    EXPECT_EQ((translate * scale).Transform(Point2d(1, 1)), Point2d(12, 2));
    EXPECT_EQ((scale * translate).Transform(Point2d(1, 1)), Point2d(7, 2));
    EXPECT_EQ(Vector2d(1, 1) * (translate * scale), Vector2d(2, 2)); // no translation for vectors
    EXPECT_LT(
        (Matrix2x3::CreateRotate(M_PI / 2).Transform(Point2d(1, 0)) - Point2d(0, 1)).GetLength(),
        1e-15); // counter-clockwise
    EXPECT_EQ(Matrix2x3::CreateShearX(2).Transform(Point2d(1, 1)), Point2d(3, 1));
    EXPECT_EQ(Matrix2x3::CreateShearY(2).Transform(Point2d(1, 1)), Point2d(1, 3));
}

TEST(Matrix2x3, ClosedFormsMatchComposition)
{
    Matrix2x3 base(Vector2d(1.5, -0.25), Vector2d(0.75, 2), Point2d(3, -4));
    auto check = [&](void (Matrix2x3::*op)(double), Matrix2x3 const& create, double arg) {
        Matrix2x3 m = base;
        (m.*op)(arg);
        Matrix2x3 c = base * create;
        for (unsigned i = 0; i < 6; ++i)
            EXPECT_DOUBLE_EQ(m.asArray()[i], c.asArray()[i]) << i;
    };
    check(&Matrix2x3::Rotate, Matrix2x3::CreateRotate(0.3), 0.3);
    check(&Matrix2x3::ShearX, Matrix2x3::CreateShearX(0.7), 0.7);
    check(&Matrix2x3::ShearY, Matrix2x3::CreateShearY(-1.5), -1.5);
    Matrix2x3 s = base, t = base;
    s.Scale(Vector2d(2, 3));
    t.Translate(Vector2d(2, 3));
    EXPECT_EQ(s, base * Matrix2x3::CreateScale(Vector2d(2, 3)));
    EXPECT_EQ(t, base * Matrix2x3::CreateTranslate(Vector2d(2, 3)));
}

TEST(Matrix2x3, InverseAndIdentity)
{
    Matrix2x3 m(Vector2d(2, 1), Vector2d(1, 3), Point2d(4, 5));
    Matrix2x3 inv;
    ASSERT_TRUE(inv.MatrixInverse(m));
    EXPECT_LT(((m * inv).Transform(Point2d(7, -3)) - Point2d(7, -3)).GetLength(), 1e-12);
    Matrix2x3 kept = m;
    EXPECT_FALSE(kept.MatrixInverse(Matrix2x3(Vector2d(1, 2), Vector2d(2, 4))));
    EXPECT_EQ(kept, m);
    EXPECT_EQ(m.Determinant(), 5.0);
    Matrix2x3 negZero;
    negZero(1, 0) = -0.0;
    EXPECT_FALSE(negZero.IsIdentity());
    EXPECT_FALSE(negZero.hasRotation());
    EXPECT_TRUE(Matrix2x3::CreateShearX(1).hasRotation()); // shear counts as rotation
}

TEST(Matrix2x3, OrderIsByStoredBytes)
{
    // Little-endian bytes of m4: 1.0 is 00..00 f0 3f, 1.5 is 00..00 f8 3f,
    // 2.0 is 00..00 00 40 and -1.0 is 00..00 f0 bf.
    auto withM4 = [](double m4) {
        Matrix2x3 m;
        m(0, 2) = m4;
        return m;
    };
    double const ascending[] = {2.0, 1.0, -1.0, 1.5};
    for (double const& a : ascending)
        for (double const& b : ascending)
            EXPECT_EQ(withM4(a) < withM4(b), &a < &b) << a << " < " << b;
}

TEST(Matrix2x3, Boxes)
{
    EXPECT_EQ(Matrix2x3().Transform(Box2di(0, 0, 0, 0)), Box2di(0, 0, 1, 1));
    EXPECT_EQ(Matrix2x3::CreateRotate(M_PI / 4).Transform(Box2di(0, 0, 10, 10)),
              Box2di(-8, 0, 16, 15));
    EXPECT_EQ(Matrix2x3::CreateTranslate(Vector2d(0.5, -0.5)).Transform(Box2di(1, 1, 2, 2)),
              Box2di(1, 0, 3, 3));
    Box2d mapped =
        Matrix2x3::CreateScale(Vector2d(-1, 3)).Transform(Box2d(Point2d(0, 0), Point2d(2, 1)));
    EXPECT_EQ(mapped.min(), Point2d(-2, 0));
    EXPECT_EQ(mapped.max(), Point2d(0, 3));
    EXPECT_EQ(mapped.boundary(0), Constants::Closed);
    // An empty box is mapped from its stored corners.
    EXPECT_FALSE(Matrix2x3().Transform(Box2d()).isEmpty());
}

TEST(Matrix2x3, Print)
{
    Matrix2x3 m(Vector2d(1, 2), Vector2d(3, 4), Point2d(5, 6));
    testing::internal::CaptureStdout();
    m.print(nullptr);
    m.print("T");
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Matrix:\n     1.00000      3.00000      5.00000\n     2.00000      4.00000      "
              "6.00000\nT:\n     1.00000      3.00000      5.00000\n     2.00000      4.00000  "
              "    6.00000\n");
}

// Vectors, points, homogeneous points, angles and their orderings.
#include <BrindleBaseCore/math/Matrix4x4.h>
#include <BrindleBaseCore/math/Point2d.h>
#include <BrindleBaseCore/math/Point3d.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

using namespace Math;

TEST(Vector2d, ZeroVectorGivesFixedResults)
{
    Vector2d zero;
    Vector2d v = zero;
    v.Normalize();
    EXPECT_EQ(v, Vector2d(0, 0));
    v.SetLength(10);
    EXPECT_EQ(v, Vector2d(0, 0));
    EXPECT_EQ(zero.GetNormalizedVector(), Vector2d(0, 0));
    EXPECT_EQ(Vector2d(1, 1).GetProjectedVector(zero), Vector2d(0, 0));
    EXPECT_EQ(Vector2d(1, 1).GetProjectedRatio(zero), 0.0);
    EXPECT_EQ(zero.GetCos(Vector2d(1, 0)), 0.0);
    EXPECT_EQ(zero.GetSin(Vector2d(1, 0)), 0.0);
    EXPECT_EQ(zero.GetSignedSinSq(Vector2d(1, 0)), 0.0);
    EXPECT_EQ(zero.GetRadian(), 0.0);
    EXPECT_TRUE(zero.IsAligned(Vector2d(3, -1)));
    EXPECT_TRUE(zero.IsAntiAligned(Vector2d(3, -1)));
    EXPECT_TRUE(zero.IsDegenerate());
}

TEST(Vector2d, LengthsAnglesAndProjections)
{
    Vector2d v(3, 4);
    v.SetLength(10);
    EXPECT_EQ(v, Vector2d(6, 8));
    EXPECT_EQ(Vector2d(1, 0).GetDegree(), 0.0);
    EXPECT_EQ(Vector2d(0, -1).GetDegree(), -90.0);
    EXPECT_DOUBLE_EQ(Vector2d(1, 1).GetCos(Vector2d(0, 2)), std::sqrt(0.5));
    EXPECT_DOUBLE_EQ(Vector2d(1, 0).GetSin(Vector2d(0, -2)), -1.0);
    EXPECT_DOUBLE_EQ(Vector2d(1, 0).GetSignedCosSq(Vector2d(-1, 1)), -0.5);
    EXPECT_DOUBLE_EQ(Vector2d(1, 0).GetSignedSinSq(Vector2d(1, -1)), -0.5);
    EXPECT_EQ(Vector2d(2, 2).GetProjectedVector(Vector2d(4, 0)), Vector2d(2, 0));
    EXPECT_EQ(Vector2d(2, 3).GetRotated90(), Vector2d(-3, 2));
    Vector2d r(5, 0);
    r.SetDegree(90);
    EXPECT_NEAR(r.x(), 0, 1e-12);
    EXPECT_DOUBLE_EQ(r.y(), 5);
    Vector2d turned = Vector2d(1, 0).GetRotatedVector(M_PI / 2);
    EXPECT_NEAR(turned.x(), 0, 1e-15);
    EXPECT_DOUBLE_EQ(turned.y(), 1);
    Vector2d q(1.26, -1.26);
    q.Round(0.5);
    EXPECT_EQ(q, Vector2d(1.5, -1.5));
    EXPECT_TRUE(Vector2d(1, 0).IsLeftTurn(Vector2d(0, 1)));
    EXPECT_TRUE(Vector2d(1, 0).IsAntiAligned(Vector2d(-2, 0)));
    EXPECT_FALSE(Vector2d(1, 0).IsAligned(Vector2d(-2, 0)));
    EXPECT_EQ(Vector2d::interpolate(1.0, Vector2d(0.1, 0), Vector2d(0.7, 0)).x(),
              0.1 + (0.7 - 0.1) * 1.0);
}

TEST(Vector2d, PointsAndVectorsSortDifferently)
{
    std::vector<Point2d> points = {{2, 1}, {1, 2}};
    std::sort(points.begin(), points.end());
    EXPECT_EQ(points.front(), Point2d(1, 2));
    std::vector<Vector2d> vectors = {{1, 2}, {2, 1}};
    std::sort(vectors.begin(), vectors.end());
    EXPECT_EQ(vectors.front(), Vector2d(2, 1));
    EXPECT_TRUE(Point2d::PointLessYX()(Point2d(2, 1), Point2d(1, 2)));
    EXPECT_FALSE(Point2d::PointLessX()(Point2d(1, 0), Point2d(1, -5)));
    EXPECT_TRUE(Vector2d::VectorLessXY()(Vector2d(1, 2), Vector2d(2, 1)));
}

TEST(Vector2d, SignedAngleOrderStartsInTheLowerHalf)
{
    // Sorted by atan2 angle in (−π, π].
    std::vector<Vector2d> v = {{-1, 0}, {0, 1}, {1, 0}, {0, -1}, {-1, -1}, {1, 1}};
    std::sort(v.begin(), v.end(), Vector2d::VectorLessSignedAngle());
    std::vector<Vector2d> expected = {{-1, -1}, {0, -1}, {1, 0}, {1, 1}, {0, 1}, {-1, 0}};
    EXPECT_EQ(v, expected);
}

TEST(Vector2d, UnsignedAngleOrderKeepsThePositiveAxisApart)
{
    Vector2d::VectorLessUnsignedAngle less;
    Vector2d posX(1, 0), up(0, 1), upLeft(-1, 1), negX(-1, 0), down(0, -1);
    EXPECT_TRUE(less(up, upLeft));
    EXPECT_TRUE(less(upLeft, down));
    EXPECT_TRUE(less(negX, down));
    EXPECT_TRUE(less(negX, posX));
    // Intended: nothing in the upper half is less than +x, and +x is less than
    // nothing.
    for (Vector2d const& v : {up, upLeft, negX, down}) {
        EXPECT_FALSE(less(posX, v));
    }
    EXPECT_FALSE(less(up, posX));
}

TEST(Vector2d, InBetweenAngle)
{
    Vector2d::VectorInBetweenAngle between;
    Vector2d x(1, 0), y(0, 1), negX(-1, 0), negY(0, -1), diag(1, 1);
    EXPECT_TRUE(between(x, diag, y));
    EXPECT_FALSE(between(y, diag, x));
    EXPECT_FALSE(between(x, negY, negX));
    EXPECT_TRUE(between(y, negY, x));
    EXPECT_FALSE(between(x, Vector2d(), y));
    EXPECT_TRUE(between(Vector2d(), diag, y));
    EXPECT_TRUE(between(x, diag, Vector2d()));
    // Collinear ends: a half turn from a to c includes what is on a's side.
    EXPECT_TRUE(between(x, y, negX));
    EXPECT_FALSE(between(x, Vector2d(2, 0), x));
    EXPECT_TRUE(between(x, Vector2d(2, 0), negX));
}

TEST(Point2d, RoundingAndConversion)
{
    EXPECT_EQ(Point2d(-1.5, 2.5).toPoint2di(), Point2di(-2, 2));
    EXPECT_EQ(Point2d(Point2di(-3, 7)), Point2d(-3, 7));
    Point2d p(1.2, 1.2);
    p.Round(Vector2d(1, -1), 1.0);
    EXPECT_EQ(p, Point2d(2, 1));
    EXPECT_EQ(Point2d(1, 1).GetDistanceSq(Point2d(4, 5)), 25.0);
    EXPECT_EQ(Point2d(3, 4) - Point2d(1, 1), Vector2d(2, 3));
    Point2d bary = Point2d::Interpolate(Point2d(1, 0), 0.25, Point2d(0, 1), 0.5, Point2d(0, 0));
    EXPECT_EQ(bary, Point2d(0.25, 0.5));
}

TEST(Vector3d, ProductsAndUnguardedNormalisation)
{
    Vector3d x(1, 0, 0), y(0, 1, 0);
    EXPECT_EQ(x ^ y, Vector3d(0, 0, 1));
    EXPECT_EQ(Vector3d(1, 2, 3) * Vector3d(4, 5, 6), 32.0);
    Vector3d n = Vector3d().getNormalized();
    EXPECT_TRUE(std::isnan(n.x()) && std::isnan(n.y()) && std::isnan(n.z()));
    EXPECT_TRUE(Vector3d(1, 1, 1).getProjection(Vector3d()).hasNan());
    EXPECT_EQ(Vector3d(2, 3, 4).getProjection(Vector3d(0, 0, 2)), Vector3d(0, 0, 4));
    EXPECT_EQ(Vector3d().getCos(x), 0.0);
    EXPECT_DOUBLE_EQ(Vector3d(1, 1, 0).getSin(x), std::sqrt(0.5));
    EXPECT_EQ(Vector3d(-1, 0, 0).getSin(x), 0.0);
    EXPECT_EQ(Vector3d(-2, 0, 0).getCos(x), -1.0);
    EXPECT_EQ(Vector3d(Point3d(1, 1, 1), Point3d(2, 3, 4)), Vector3d(1, 2, 3));
}

TEST(Point4d, DivisionByW)
{
    EXPECT_EQ(Point4d(2, 4, 6, 2).toPoint3d(), Point3d(1, 2, 3));
    EXPECT_EQ(Point4d(2, 4, 6, 1e-8).toPoint3d(), Point3d(2, 4, 6));
    EXPECT_EQ(Point4d(2, 4, 6, 2).toPoint2d(), Point2d(1, 2));
    EXPECT_TRUE(Point4d(0, 0, 0, 5).isOrigin());
    EXPECT_EQ(Point4d(), Point4d(0, 0, 0, 0));
    EXPECT_EQ(Point4d(Point2d(1, 2)), Point4d(1, 2, 0, 1));
    EXPECT_EQ(Point4d(Vector3d(1, 2, 3)), Point4d(1, 2, 3, 0));
    Point4d p(2, 4, 6, 2);
    p.normalize();
    EXPECT_EQ(p, Point4d(1, 2, 3, 1));
    Point4d v(2, 4, 6, 0);
    v.normalize();
    EXPECT_EQ(v, Point4d(2, 4, 6, 0));
    EXPECT_TRUE(Point4d(0, 3, 0, 2).isClipped());
    EXPECT_TRUE(Point4d(0, 0, -3, 2).isClipped(Axis3d::Z));
    EXPECT_FALSE(Point4d(2, -2, 2, 2).isClipped());
    EXPECT_TRUE(Point4d(0, 0, -1, 1).isInFront());
    EXPECT_FALSE(Point4d(0, 0, -2, 1).isInFront());
}

TEST(Angle3d, FromDirectionAndBack)
{
    EXPECT_EQ(Angle3d(Vector3d(0, 0, 1)), Angle3d(0, 0, 0));
    EXPECT_EQ(Angle3d(Vector3d(1, 0, 0)), Angle3d(0, 90, 0));
    EXPECT_EQ(Angle3d(Vector3d(0, -1, 0)), Angle3d(90, 0, 0));
    EXPECT_EQ(Angle3d(Vector3d(0, 1e-6, 0)), Angle3d(0, 0, 0));
    // The normal of the angles of a direction is that direction.
    for (Vector3d d : {Vector3d(1, 2, 3), Vector3d(-1, -0.5, 0.2), Vector3d(0, 3, -1)}) {
        Vector3d n = Angle3d(d).toNormal();
        Vector3d u = d.getNormalized();
        EXPECT_NEAR(n.x(), u.x(), 1e-12);
        EXPECT_NEAR(n.y(), u.y(), 1e-12);
        EXPECT_NEAR(n.z(), u.z(), 1e-12);
    }
    EXPECT_EQ(Angle3d(10, 20, 30).toVector3d(), Vector3d(10, 20, 30));
    EXPECT_EQ(Angle3d::interpolate(0.5, Angle3d(350, 0, 0), Angle3d(10, 0, 0)).x(), 180.0);
    EXPECT_TRUE(Angle3d().toRotationMatrix().isIdentityFlag());
}

TEST(Point3d, DebugPrint)
{
    testing::internal::CaptureStdout();
    Vector3d(1, 2.5, -3).debugPrint("v");
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "    v : (1.000000, 2.500000, -3.000000)\n");
}

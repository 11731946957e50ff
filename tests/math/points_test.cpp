// Vectors, points, homogeneous points, angles and their orderings.
#include <BrindleBaseCore/math/Matrix4x4.h>
#include <BrindleBaseCore/math/Point2d.h>
#include <BrindleBaseCore/math/Point3d.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdio>
#include <tuple>
#include <vector>

using namespace Math;

TEST(Vector2d, ZeroVectorGivesFixedResults)
{
    Vector2d zero, v;
    v.Normalize();
    v.SetLength(10);
    EXPECT_EQ(v, zero);
    EXPECT_EQ(zero.GetNormalizedVector(), zero);
    EXPECT_EQ(Vector2d(1, 1).GetProjectedVector(zero), zero);
    double const results[] = {Vector2d(1, 1).GetProjectedRatio(zero), zero.GetCos(Vector2d(1, 0)),
                              zero.GetSin(Vector2d(1, 0)), zero.GetSignedSinSq(Vector2d(1, 0)),
                              zero.GetRadian()};
    for (double const& r : results)
        EXPECT_EQ(r, 0.0) << "result " << &r - results;
    // Parallel to everything, in both senses.
    EXPECT_TRUE(zero.IsAligned(Vector2d(3, -1)) && zero.IsAntiAligned(Vector2d(3, -1)));
}

TEST(Vector2d, LengthsAnglesAndProjections)
{
    Vector2d v(3, 4);
    v.SetLength(10);
    EXPECT_EQ(v, Vector2d(6, 8));
    EXPECT_EQ(Vector2d(0, -1).GetDegree(), -90.0);
    EXPECT_DOUBLE_EQ(Vector2d(1, 1).GetCos(Vector2d(0, 2)), std::sqrt(0.5));
    EXPECT_DOUBLE_EQ(Vector2d(1, 0).GetSin(Vector2d(0, -2)), -1.0);
    EXPECT_DOUBLE_EQ(Vector2d(1, 0).GetSignedCosSq(Vector2d(-1, 1)), -0.5);
    EXPECT_DOUBLE_EQ(Vector2d(1, 0).GetSignedSinSq(Vector2d(1, -1)), -0.5);
    EXPECT_EQ(Vector2d(2, 2).GetProjectedVector(Vector2d(4, 0)), Vector2d(2, 0));
    Vector2d turned = Vector2d(1, 0).GetRotatedVector(M_PI / 2);
    EXPECT_NEAR(turned.x(), 0, 1e-15);
    EXPECT_DOUBLE_EQ(turned.y(), 1);
}

TEST(Vector2d, PointsAndVectorsSortDifferently)
{
    std::vector<Point2d> points = {{2, 1}, {1, 2}};
    std::vector<Vector2d> vectors = {{1, 2}, {2, 1}};
    std::sort(points.begin(), points.end());
    std::sort(vectors.begin(), vectors.end());
    EXPECT_EQ(points.front(), Point2d(1, 2));   // x first
    EXPECT_EQ(vectors.front(), Vector2d(2, 1)); // y first
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
    // {a, b, a < b}. Intended: nothing in the upper half is less than +x, and
    // +x is less than nothing.
    std::tuple<Vector2d, Vector2d, bool> const rows[] = {
        {up, upLeft, true},  {upLeft, down, true}, {negX, down, true},
        {negX, posX, true},  {posX, up, false},    {posX, upLeft, false},
        {posX, negX, false}, {posX, down, false},  {up, posX, false}};
    int row = 0;
    for (auto const& [a, b, expected] : rows)
        EXPECT_EQ(less(a, b), expected) << "row " << row++;
}

TEST(Vector2d, InBetweenAngle)
{
    Vector2d::VectorInBetweenAngle between;
    Vector2d x(1, 0), y(0, 1), negX(-1, 0), negY(0, -1), diag(1, 1), zero, x2(2, 0);
    // {a, b, c, b between a and c}. Collinear ends (the last three): a half
    // turn from a to c includes what is on a's side.
    std::tuple<Vector2d, Vector2d, Vector2d, bool> const rows[] = {
        {x, diag, y, true},  {y, diag, x, false},   {x, negY, negX, false}, {y, negY, x, true},
        {x, zero, y, false}, {zero, diag, y, true}, {x, diag, zero, true},  {x, y, negX, true},
        {x, x2, x, false},   {x, x2, negX, true}};
    int row = 0;
    for (auto const& [a, b, c, expected] : rows)
        EXPECT_EQ(between(a, b, c), expected) << "row " << row++;
}

TEST(Point2d, RoundingAndConversion)
{
    EXPECT_EQ(Point2d(-1.5, 2.5).toPoint2di(), Point2di(-2, 2));
    EXPECT_EQ(Point2d(3e9, NAN).toPoint2di(), Point2di(INT_MIN, INT_MIN)); // no saturation
    Point2d p(1.2, 1.2);
    p.Round(Vector2d(1, -1), 1.0);
    EXPECT_EQ(p, Point2d(2, 1));
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
}

TEST(Point4d, DivisionByW)
{
    EXPECT_EQ(Point4d(2, 4, 6, 2).toPoint3d(), Point3d(1, 2, 3));
    EXPECT_EQ(Point4d(2, 4, 6, 1e-8).toPoint3d(), Point3d(2, 4, 6)); // a direction: copied
    EXPECT_EQ(Point4d(2, 4, 6, 2).toPoint2d(), Point2d(1, 2));
    EXPECT_TRUE(Point4d(0, 0, 0, 5).isOrigin());
    EXPECT_EQ(Point4d(), Point4d(0, 0, 0, 0));
    EXPECT_EQ(Point4d(Vector3d(1, 2, 3)), Point4d(1, 2, 3, 0));
    Point4d p(2, 4, 6, 2), v(2, 4, 6, 0);
    p.normalize();
    v.normalize();
    EXPECT_EQ(p, Point4d(1, 2, 3, 1));
    EXPECT_EQ(v, Point4d(2, 4, 6, 0));
    EXPECT_TRUE(Point4d(0, 3, 0, 2).isClipped());
    EXPECT_TRUE(Point4d(0, 0, -3, 2).isClipped(Axis3d::Z));
    EXPECT_FALSE(Point4d(2, -2, 2, 2).isClipped());
}

TEST(Angle3d, FromDirectionAndBack)
{
    EXPECT_EQ(Angle3d(Vector3d(0, 0, 1)), Angle3d(0, 0, 0));
    EXPECT_EQ(Angle3d(Vector3d(1, 0, 0)), Angle3d(0, 90, 0));
    EXPECT_EQ(Angle3d(Vector3d(0, -1, 0)), Angle3d(90, 0, 0));
    EXPECT_EQ(Angle3d(Vector3d(0, 1e-6, 0)), Angle3d(0, 0, 0));
    // The normal of the angles of a direction is that direction.
    for (Vector3d d : {Vector3d(1, 2, 3), Vector3d(-1, -0.5, 0.2), Vector3d(0, 3, -1)})
        EXPECT_LT((Angle3d(d).toNormal() - d.getNormalized()).length(), 1e-12) << d.x();
    EXPECT_EQ(Angle3d(10, 20, 30).toVector3d(), Vector3d(10, 20, 30)); // not a direction
    // No wrapping: 350 to 10 passes through 180.
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

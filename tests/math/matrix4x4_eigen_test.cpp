// Matrix4x4 against an independent linear-algebra library on thousands of
// random matrices: products, projective point transforms and inverses. The
// singular cases follow our own LU rules, which differ from the peer's.
#include <BrindleBaseCore/math/Matrix4x4.h>

#include <Eigen/Dense>
#include <gtest/gtest.h>

#include <random>

using namespace Math;

namespace {

constexpr int samples = 5000;

struct Pair
{
    Matrix4x4 ours;
    Eigen::Matrix4d peer;
};

// Both matrices share the column-major storage order.
Pair randomPair(std::mt19937_64& rng, double range = 10.0)
{
    std::uniform_real_distribution<double> value(-range, range);
    double v[16];
    for (double& x : v)
        x = value(rng);
    return {Matrix4x4(v), Eigen::Map<Eigen::Matrix4d>(v)};
}

void expectClose(Matrix4x4 const& ours, Eigen::Matrix4d const& peer, double tolerance)
{
    double scale = std::max(1.0, peer.cwiseAbs().maxCoeff());
    for (int c = 0; c < 4; ++c) {
        for (int r = 0; r < 4; ++r)
            ASSERT_NEAR(ours(Row(r), Column(c)), peer(r, c), tolerance * scale);
    }
}

} // namespace

TEST(Matrix4x4Property, ProductMatchesPeer)
{
    std::mt19937_64 rng(1);
    for (int i = 0; i < samples; ++i) {
        Pair a = randomPair(rng), b = randomPair(rng);
        expectClose(a.ours * b.ours, a.peer * b.peer, 1e-13);
        Matrix4x4 c = a.ours;
        c *= b.ours;
        ASSERT_TRUE(c == a.ours * b.ours);
    }
}

TEST(Matrix4x4Property, PointTransformMatchesPeer)
{
    std::mt19937_64 rng(2);
    std::uniform_real_distribution<double> coordinate(-100, 100);
    for (int i = 0; i < samples; ++i) {
        Pair m = randomPair(rng);
        Point3d p(coordinate(rng), coordinate(rng), coordinate(rng));
        Eigen::Vector4d h = m.peer * Eigen::Vector4d(p.x(), p.y(), p.z(), 1.0);
        if (std::abs(h.w()) < 1e-3)
            continue; // near the plane at infinity both sides lose all precision
        Point3d q = m.ours * p;
        Eigen::Vector3d expected = h.head<3>() / h.w();
        double scale = std::max(1.0, expected.cwiseAbs().maxCoeff());
        double tolerance = 1e-10 * scale * (1.0 + std::abs(h.norm() / h.w()));
        ASSERT_NEAR(q.x(), expected.x(), tolerance);
        ASSERT_NEAR(q.y(), expected.y(), tolerance);
        ASSERT_NEAR(q.z(), expected.z(), tolerance);
    }
}

TEST(Matrix4x4Property, InverseMatchesPeer)
{
    std::mt19937_64 rng(3);
    int compared = 0;
    for (int i = 0; i < samples; ++i) {
        Pair m = randomPair(rng);
        Eigen::FullPivLU<Eigen::Matrix4d> lu(m.peer);
        double condition = m.peer.norm() * m.peer.inverse().norm();
        if (!lu.isInvertible() || condition > 1e6)
            continue;
        Matrix4x4 inv = m.ours.getInverse();
        EXPECT_FALSE(m.ours.isSingular());
        expectClose(inv, m.peer.inverse(), 1e-15 * condition);
        ++compared;
    }
    EXPECT_GT(compared, samples * 9 / 10);
}

TEST(Matrix4x4Property, SingularByOurRules)
{
    std::mt19937_64 rng(4);
    for (int i = 0; i < samples / 10; ++i) {
        Pair m = randomPair(rng);
        // A zero row or a zero column always fails.
        Matrix4x4 row = m.ours, column = m.ours;
        for (int k = 0; k < 4; ++k) {
            row(Row(i % 4), Column(k)) = 0;
            column(Row(k), Column(i % 4)) = 0;
        }
        EXPECT_TRUE(row.isSingular());
        EXPECT_TRUE(column.isSingular());
        EXPECT_THROW(row.getInverse(), Matrix4x4::Singularity);
        EXPECT_THROW(column.getInverse(), Matrix4x4::Singularity);
        // Pivots are compared with an absolute epsilon: a well-conditioned
        // matrix with tiny values is singular for us though the peer inverts it.
        Pair tiny = randomPair(rng, 1e-17);
        EXPECT_TRUE(tiny.ours.isSingular());
        EXPECT_THROW(tiny.ours.getInverse(), Matrix4x4::Singularity);
        EXPECT_TRUE(tiny.peer.inverse().allFinite());
    }
}

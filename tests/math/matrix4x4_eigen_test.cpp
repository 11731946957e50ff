// Matrix4x4 against an independent linear-algebra library on thousands of
// random matrices: products, projective point transforms and inverses. The
// singular cases follow our own LU rules, which differ from the peer's.
#include <BrindleBaseCore/math/Matrix4x4.h>

#include <Eigen/Dense>
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstring>
#include <functional>
#include <random>
#include <utility>

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

// The textbook decomposition and column-by-column solve, with rows moved as
// data and the forward pass starting at the first non-zero entry. getInverse()
// must give these numbers bit for bit.
bool referenceInverse(double const* m, double* out)
{
    double a[4][4], scale[4];
    int index[4];
    for (int r = 0; r < 4; ++r) {
        double big = 0;
        for (int c = 0; c < 4; ++c)
            big = std::max(big, std::fabs(a[r][c] = m[4 * c + r]));
        if (big == 0)
            return false;
        scale[r] = 1.0 / big;
    }
    for (int j = 0; j < 4; ++j) {
        for (int i = 0; i < j; ++i)
            for (int k = 0; k < i; ++k)
                a[i][j] -= a[i][k] * a[k][j];
        double big = 0;
        int imax = j;
        for (int i = j; i < 4; ++i) {
            for (int k = 0; k < j; ++k)
                a[i][j] -= a[i][k] * a[k][j];
            if (scale[i] * std::fabs(a[i][j]) >= big) {
                big = scale[i] * std::fabs(a[i][j]);
                imax = i;
            }
        }
        std::swap(a[imax], a[j]); // a no-op when the pivot row stays
        scale[imax] = scale[j];
        index[j] = imax;
        if (std::fabs(a[j][j]) < DBL_EPSILON)
            return false;
        for (int i = j + 1; i < 4; ++i)
            a[i][j] *= 1.0 / a[j][j];
    }
    for (int c = 0; c < 4; ++c) {
        double b[4] = {0, 0, 0, 0};
        b[c] = 1;
        int first = -1;
        for (int i = 0; i < 4; ++i) {
            double sum = b[index[i]];
            b[index[i]] = b[i];
            if (first >= 0) {
                for (int j = first; j < i; ++j)
                    sum -= a[i][j] * b[j];
            } else if (sum != 0) {
                first = i;
            }
            b[i] = sum;
        }
        for (int i = 3; i >= 0; --i) {
            for (int j = i + 1; j < 4; ++j)
                b[i] -= a[i][j] * b[j];
            b[i] /= a[i][i];
        }
        for (int i = 0; i < 4; ++i)
            out[4 * c + i] = b[i];
    }
    return true;
}

} // namespace

TEST(Matrix4x4Property, InverseIsTheTextbookLuSolveBitForBit)
{
    std::mt19937_64 rng(5);
    std::uniform_int_distribution<int> small(-2, 2);
    std::uniform_real_distribution<double> value(-10, 10), exponent(-320, 308);
    // Small integers give ties, zeros and exact cancellations; huge values
    // overflow the elimination into infinities; wide exponents reach denormal
    // scale factors; NaNs and infinities take the pivot rules of the portable
    // path.
    auto rarely = [&](double big) { return small(rng) == 2 ? big : 1.0; };
    std::function<double()> const kinds[] = {
        [&] { return value(rng); },
        [&] { return double(small(rng)); },
        [&] { return small(rng) == 0 ? 0.0 : value(rng); },
        [&] { return small(rng) * rarely(1e308); },
        [&] { return value(rng) * std::pow(10.0, exponent(rng)); },
        [&] { return small(rng) * rarely(1e-310); },
        [&] { return small(rng) == 2    ? NAN
                     : small(rng) == -2 ? -INFINITY
                                        : value(rng); },
        [&] { return small(rng) * 0.5 + (small(rng) == 2 ? 1e-16 : 0.0); },
    };
    for (int i = 0; i < 4 * samples; ++i) {
        double v[16];
        for (double& x : v)
            x = kinds[i % 8]();
        Matrix4x4 m(v);
        if (m.isIdentityFlag())
            continue;
        double expected[16];
        bool invertible = referenceInverse(v, expected);
        ASSERT_EQ(m.isSingular(), !invertible) << i;
        if (!invertible) {
            EXPECT_THROW(m.getInverse(), Matrix4x4::Singularity);
            continue;
        }
        Matrix4x4 inv = m.getInverse();
        for (int k = 0; k < 16; ++k) {
            double got = inv.asArray()[k];
            ASSERT_TRUE(std::memcmp(&got, &expected[k], sizeof got) == 0 ||
                        (std::isnan(got) && std::isnan(expected[k])))
                << "matrix " << i << " index " << k << ": " << got << " vs " << expected[k];
        }
    }
}

// Whatever the processor, the product is the plain sum in order k = 0..3,
// without fused multiply-adds; the peer agrees within rounding on products
// and projective point transforms.
TEST(Matrix4x4Property, ProductsAreOrderedSumsBitForBitAndMatchThePeer)
{
    std::mt19937_64 rng(6);
    std::uniform_real_distribution<double> value(-10, 10), exponent(-300, 300);
    std::uniform_real_distribution<double> coordinate(-100, 100);
    for (int i = 0; i < samples; ++i) {
        double a[16], b[16];
        for (int k = 0; k < 16; ++k) {
            a[k] = value(rng) * std::pow(10.0, exponent(rng));
            b[k] = value(rng);
        }
        Matrix4x4 p = Matrix4x4(a) * Matrix4x4(b), q(a);
        for (int c = 0; c < 4; ++c) {
            for (int r = 0; r < 4; ++r) {
                volatile double t0 = a[r] * b[4 * c], t1 = a[4 + r] * b[4 * c + 1];
                volatile double t2 = a[8 + r] * b[4 * c + 2], t3 = a[12 + r] * b[4 * c + 3];
                double expected = ((t0 + t1) + t2) + t3;
                double got = p(Row(r), Column(c));
                ASSERT_EQ(std::memcmp(&got, &expected, sizeof got), 0) << i << " " << r << c;
            }
        }
        q *= Matrix4x4(b);
        ASSERT_TRUE(q == p);
        Pair x = randomPair(rng), y = randomPair(rng);
        expectClose(x.ours * y.ours, x.peer * y.peer, 1e-13);

        Point3d pt(coordinate(rng), coordinate(rng), coordinate(rng));
        Eigen::Vector4d h = x.peer * Eigen::Vector4d(pt.x(), pt.y(), pt.z(), 1.0);
        if (std::abs(h.w()) < 1e-3)
            continue; // near the plane at infinity both sides lose all precision
        Point3d got = x.ours * pt;
        Eigen::Vector3d expected = h.head<3>() / h.w();
        double scale = std::max(1.0, expected.cwiseAbs().maxCoeff());
        double tolerance = 1e-10 * scale * (1.0 + std::abs(h.norm() / h.w()));
        ASSERT_NEAR(got.x(), expected.x(), tolerance);
        ASSERT_NEAR(got.y(), expected.y(), tolerance);
        ASSERT_NEAR(got.z(), expected.z(), tolerance);
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
        for (Matrix4x4 const& zero : {row, column}) {
            EXPECT_TRUE(zero.isSingular());
            EXPECT_THROW(zero.getInverse(), Matrix4x4::Singularity);
        }
        // Pivots are compared with an absolute epsilon: a well-conditioned
        // matrix with tiny values is singular for us though the peer inverts it.
        Pair tiny = randomPair(rng, 1e-17);
        EXPECT_TRUE(tiny.ours.isSingular());
        EXPECT_THROW(tiny.ours.getInverse(), Matrix4x4::Singularity);
        EXPECT_TRUE(tiny.peer.inverse().allFinite());
    }
}

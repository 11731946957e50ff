#include "Matrix4x4Kernels.h"

#include <BrindleBaseCore/math/Matrix4x4.h>

#include <cfloat>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace Math::Internal {

namespace {

using ProductFunction = void(double const*, double const*, double*);
using InverseFunction = InverseResult(double const*, double*);

// Column c of r is the columns of a weighted by column c of b, summed in
// order k = 0..3.
void productPortable(double const* a, double const* b, double* r)
{
#if defined(__SSE2__)
    __m128d a0l = _mm_loadu_pd(a), a0h = _mm_loadu_pd(a + 2);
    __m128d a1l = _mm_loadu_pd(a + 4), a1h = _mm_loadu_pd(a + 6);
    __m128d a2l = _mm_loadu_pd(a + 8), a2h = _mm_loadu_pd(a + 10);
    __m128d a3l = _mm_loadu_pd(a + 12), a3h = _mm_loadu_pd(a + 14);
    for (int c = 0; c < 4; ++c) {
        __m128d b0 = _mm_set1_pd(b[4 * c]), b1 = _mm_set1_pd(b[4 * c + 1]);
        __m128d b2 = _mm_set1_pd(b[4 * c + 2]), b3 = _mm_set1_pd(b[4 * c + 3]);
        __m128d lo = _mm_add_pd(
            _mm_add_pd(_mm_add_pd(_mm_mul_pd(a0l, b0), _mm_mul_pd(a1l, b1)), _mm_mul_pd(a2l, b2)),
            _mm_mul_pd(a3l, b3));
        __m128d hi = _mm_add_pd(
            _mm_add_pd(_mm_add_pd(_mm_mul_pd(a0h, b0), _mm_mul_pd(a1h, b1)), _mm_mul_pd(a2h, b2)),
            _mm_mul_pd(a3h, b3));
        _mm_storeu_pd(r + 4 * c, lo);
        _mm_storeu_pd(r + 4 * c + 2, hi);
    }
#else
    for (int c = 0; c < 4; ++c) {
        double b0 = b[4 * c], b1 = b[4 * c + 1], b2 = b[4 * c + 2], b3 = b[4 * c + 3];
        for (int i = 0; i < 4; ++i)
            r[4 * c + i] = a[i] * b0 + a[4 + i] * b1 + a[8 + i] * b2 + a[12 + i] * b3;
    }
#endif
}

InverseResult invertPortable(double const*, double*)
{
    return InverseResult::Unsure;
}

#if defined(__x86_64__)

#pragma GCC push_options
#pragma GCC target("avx2")

// The product with whole columns in 256-bit registers.
void productAvx(double const* a, double const* b, double* r)
{
    __m256d a0 = _mm256_loadu_pd(a), a1 = _mm256_loadu_pd(a + 4);
    __m256d a2 = _mm256_loadu_pd(a + 8), a3 = _mm256_loadu_pd(a + 12);
    for (int c = 0; c < 4; ++c) {
        __m256d sum = _mm256_add_pd(_mm256_mul_pd(a0, _mm256_broadcast_sd(b + 4 * c)),
                                    _mm256_mul_pd(a1, _mm256_broadcast_sd(b + 4 * c + 1)));
        sum = _mm256_add_pd(sum, _mm256_mul_pd(a2, _mm256_broadcast_sd(b + 4 * c + 2)));
        sum = _mm256_add_pd(sum, _mm256_mul_pd(a3, _mm256_broadcast_sd(b + 4 * c + 3)));
        _mm256_storeu_pd(r + 4 * c, sum);
    }
}

// Lane permutations exchanging lanes j and p, as pairs of 32-bit indices.
struct SwapTable
{
    alignas(32) int index[4][4][8];
};

constexpr SwapTable makeSwapTable()
{
    SwapTable t{};
    for (int j = 0; j < 4; ++j) {
        for (int p = 0; p < 4; ++p) {
            for (int lane = 0; lane < 4; ++lane) {
                int from = lane == j ? p : lane == p ? j : lane;
                t.index[j][p][2 * lane] = 2 * from;
                t.index[j][p][2 * lane + 1] = 2 * from + 1;
            }
        }
    }
    return t;
}

constexpr SwapTable swapTable = makeSwapTable();

inline __m256d permuteLanes(__m256d v, __m256i index)
{
    return _mm256_castsi256_pd(_mm256_permutevar8x32_epi32(_mm256_castpd_si256(v), index));
}

template <int Lane>
inline __m256d broadcastLane(__m256d v)
{
    return _mm256_permute4x64_pd(v, Lane * 0x55);
}

inline __m256d absolute(__m256d v)
{
    return _mm256_andnot_pd(_mm256_set1_pd(-0.0), v);
}

// The state of the decomposition: the columns with one row per lane, rows
// exchanged as data, so that lane i is logical row i throughout.
struct Lu
{
    __m256d column[4];
    __m256d scale;
    __m256d order; // original row index of each lane
    __m256d failed;
};

// Step J of the right-looking elimination. Every element sees the products
// subtracted in the order k = 0..J of Crout's loops, and the pivot is the last
// row of greatest merit, as there.
template <int J>
inline void eliminate(Lu& s)
{
    __m256d column = s.column[J];
    // The quotients of all candidates start before the pivot is known.
    __m256d quotients = _mm256_div_pd(_mm256_set1_pd(1.0), column);
    __m256d merit = _mm256_mul_pd(s.scale, absolute(column));
    if constexpr (J > 0)
        merit = _mm256_blend_pd(merit, _mm256_set1_pd(-1.0), (1 << J) - 1);
    __m256d best = _mm256_max_pd(merit, _mm256_permute_pd(merit, 0x5));
    best = _mm256_max_pd(best, _mm256_permute2f128_pd(best, best, 1));
    int ties = _mm256_movemask_pd(_mm256_cmp_pd(merit, best, _CMP_EQ_OQ));
    int pivotRow = 31 - __builtin_clz(unsigned(ties) | (1u << J));
    __m256i swap =
        _mm256_load_si256(reinterpret_cast<__m256i const*>(swapTable.index[J][pivotRow]));
    for (__m256d& c : s.column)
        c = permuteLanes(c, swap);
    s.scale = permuteLanes(s.scale, swap);
    s.order = permuteLanes(s.order, swap);
    __m256d pivot = broadcastLane<J>(s.column[J]);
    s.failed = _mm256_or_pd(
        s.failed, _mm256_cmp_pd(absolute(pivot), _mm256_set1_pd(DBL_EPSILON), _CMP_LT_OQ));
    if constexpr (J < 3) {
        constexpr int below = (0xF << (J + 1)) & 0xF;
        __m256d inverse = broadcastLane<J>(permuteLanes(quotients, swap));
        __m256d multipliers = _mm256_mul_pd(s.column[J], inverse);
        s.column[J] = _mm256_blend_pd(s.column[J], multipliers, below);
        for (int k = J + 1; k < 4; ++k) {
            __m256d u = _mm256_permute4x64_pd(s.column[k], J * 0x55);
            __m256d updated = _mm256_sub_pd(s.column[k], _mm256_mul_pd(multipliers, u));
            s.column[k] = _mm256_blend_pd(s.column[k], updated, below);
        }
    }
}

// x[I] -= lu(I, K) × x[K], for one row of the four right-hand sides.
template <int I, int K>
inline void subtractRow(__m256d (&x)[4], Lu const& s)
{
    __m256d factor = broadcastLane<I>(s.column[K]);
    x[I] = _mm256_sub_pd(x[I], _mm256_mul_pd(factor, x[K]));
}

// Solves for the four unit vectors side by side: row i of x holds entry i of
// the four solutions. The terms the one-column solve skips before its first
// non-zero entry subtract an exact +0 here, which changes nothing.
template <int I>
inline void backSubstitute(__m256d (&x)[4], Lu const& s)
{
    if constexpr (I < 3)
        subtractRow<I, I + 1>(x, s);
    if constexpr (I < 2)
        subtractRow<I, I + 2>(x, s);
    if constexpr (I < 1)
        subtractRow<I, I + 3>(x, s);
    x[I] = _mm256_div_pd(x[I], broadcastLane<I>(s.column[I]));
}

InverseResult invertAvx2(double const* m, double* out)
{
    Lu s;
    for (int c = 0; c < 4; ++c)
        s.column[c] = _mm256_loadu_pd(m + 4 * c);
    __m256d big = _mm256_max_pd(_mm256_max_pd(absolute(s.column[0]), absolute(s.column[1])),
                                _mm256_max_pd(absolute(s.column[2]), absolute(s.column[3])));
    s.scale = _mm256_div_pd(_mm256_set1_pd(1.0), big);
    s.order = _mm256_setr_pd(0, 1, 2, 3);
    s.failed = _mm256_setzero_pd();
    eliminate<0>(s);
    eliminate<1>(s);
    eliminate<2>(s);
    eliminate<3>(s);

    // A zero row (infinite scale) or any value that is not finite leaves the
    // case to the portable code. Otherwise no NaN met the pivot search, and a
    // value that is not finite never becomes finite again, so these are the
    // portable decomposition's numbers.
    __m256d zero = _mm256_setzero_pd();
    __m256d probe = _mm256_mul_pd(s.scale, zero);
    for (__m256d c : s.column)
        probe = _mm256_add_pd(probe, _mm256_mul_pd(c, zero));
    if (_mm256_movemask_pd(_mm256_cmp_pd(probe, probe, _CMP_UNORD_Q)) != 0)
        return InverseResult::Unsure;
    if (_mm256_movemask_pd(s.failed) != 0)
        return InverseResult::Singular;

    __m256d lanes = _mm256_setr_pd(0, 1, 2, 3), one = _mm256_set1_pd(1.0);
    __m256d x[4] = {
        _mm256_and_pd(_mm256_cmp_pd(lanes, broadcastLane<0>(s.order), _CMP_EQ_OQ), one),
        _mm256_and_pd(_mm256_cmp_pd(lanes, broadcastLane<1>(s.order), _CMP_EQ_OQ), one),
        _mm256_and_pd(_mm256_cmp_pd(lanes, broadcastLane<2>(s.order), _CMP_EQ_OQ), one),
        _mm256_and_pd(_mm256_cmp_pd(lanes, broadcastLane<3>(s.order), _CMP_EQ_OQ), one)};
    subtractRow<1, 0>(x, s);
    subtractRow<2, 0>(x, s);
    subtractRow<2, 1>(x, s);
    subtractRow<3, 0>(x, s);
    subtractRow<3, 1>(x, s);
    subtractRow<3, 2>(x, s);
    backSubstitute<3>(x, s);
    backSubstitute<2>(x, s);
    backSubstitute<1>(x, s);
    backSubstitute<0>(x, s);

    // Rows of x to columns of the result.
    __m256d t0 = _mm256_unpacklo_pd(x[0], x[1]), t1 = _mm256_unpackhi_pd(x[0], x[1]);
    __m256d t2 = _mm256_unpacklo_pd(x[2], x[3]), t3 = _mm256_unpackhi_pd(x[2], x[3]);
    _mm256_storeu_pd(out, _mm256_permute2f128_pd(t0, t2, 0x20));
    _mm256_storeu_pd(out + 4, _mm256_permute2f128_pd(t1, t3, 0x20));
    _mm256_storeu_pd(out + 8, _mm256_permute2f128_pd(t0, t2, 0x31));
    _mm256_storeu_pd(out + 12, _mm256_permute2f128_pd(t1, t3, 0x31));
    return InverseResult::Inverted;
}

#pragma GCC pop_options

#endif

} // namespace

extern "C" {

// Resolvers of the functions below, run by the dynamic loader.
static ProductFunction* brindleResolveProduct4x4()
{
#if defined(__x86_64__)
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx2"))
        return productAvx;
#endif
    return productPortable;
}

static InverseFunction* brindleResolveInverse4x4()
{
#if defined(__x86_64__)
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx2"))
        return invertAvx2;
#endif
    return invertPortable;
}
}

void multiply4x4(double const* a, double const* b, double* r)
    __attribute__((ifunc("brindleResolveProduct4x4")));

InverseResult invertFast(double const* m, double* out)
    __attribute__((ifunc("brindleResolveInverse4x4")));

} // namespace Math::Internal

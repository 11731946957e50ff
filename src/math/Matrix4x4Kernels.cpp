#include "Matrix4x4Kernels.h"

#include <BrindleBaseCore/math/Matrix4x4.h>

#include <atomic>
#include <cfloat>

#if defined(__SSE2__)
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

// Without vector units the portable code does all the work.
InverseResult noVectorInverse(double const*, double*)
{
    return InverseResult::Unsure;
}

#if defined(__x86_64__)

// Everything up to the matching pop is compiled for AVX2 (chosen at run time).
#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx2"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx2")
#endif

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

inline __m256d absolute(__m256d v)
{
    return _mm256_andnot_pd(_mm256_set1_pd(-0.0), v);
}

// Every lane becomes the bitwise OR of the four: with one lane selected and
// the others zeroed, the selected value exactly (signed zeros included).
inline __m256d orAcross(__m256d v)
{
    v = _mm256_or_pd(v, _mm256_permute_pd(v, 0x5));
    return _mm256_or_pd(v, _mm256_permute2f128_pd(v, v, 1));
}

// The state of the decomposition: the columns with one row per lane. Rows
// stay in their lanes; logical row J is the lane picked as pivot at step J.
struct Lu
{
    __m256d column[4];
    __m256d scale;
    __m256d open;     // the lanes not yet picked
    __m256d pivot[4]; // one lane set: the row picked at each step
    // Row J of U spread across all lanes, kept from step J for the back
    // substitution: upper[J][J] is the pivot.
    __m256d upper[4][4];
    __m256d failed;
    bool unsure = false;
};

// Step J of the right-looking elimination. Every element sees the products
// subtracted in the order of Crout's loops. Among equal merits Crout's loop
// takes the last row in its exchanged order; that order is not tracked here,
// so a tie leaves the matrix to the portable code.
template <int J>
inline void eliminate(Lu& s)
{
    __m256d column = s.column[J];
    // The quotients of all candidates start before the pivot is known.
    __m256d quotients = _mm256_div_pd(_mm256_set1_pd(1.0), column);
    __m256d pick = s.open;
    if constexpr (J < 3) {
        __m256d merit = _mm256_mul_pd(s.scale, absolute(column));
        if constexpr (J > 0)
            merit = _mm256_blendv_pd(_mm256_set1_pd(-1.0), merit, s.open);
        __m256d best = _mm256_max_pd(merit, _mm256_permute_pd(merit, 0x5));
        best = _mm256_max_pd(best, _mm256_permute2f128_pd(best, best, 1));
        pick = _mm256_cmp_pd(merit, best, _CMP_EQ_OQ);
        s.unsure |= __builtin_popcount(unsigned(_mm256_movemask_pd(pick))) != 1;
    }
    s.pivot[J] = pick;
    __m256d pivot = orAcross(_mm256_and_pd(column, pick));
    s.upper[J][J] = pivot;
    s.failed = _mm256_or_pd(
        s.failed, _mm256_cmp_pd(absolute(pivot), _mm256_set1_pd(DBL_EPSILON), _CMP_LT_OQ));
    if constexpr (J < 3) {
        s.open = _mm256_andnot_pd(pick, s.open);
        __m256d inverse = orAcross(_mm256_and_pd(quotients, pick));
        __m256d multipliers = _mm256_mul_pd(column, inverse);
        s.column[J] = _mm256_blendv_pd(column, multipliers, s.open);
        for (int k = J + 1; k < 4; ++k) {
            __m256d u = orAcross(_mm256_and_pd(s.column[k], pick));
            s.upper[J][k] = u;
            __m256d updated = _mm256_sub_pd(s.column[k], _mm256_mul_pd(multipliers, u));
            s.column[k] = _mm256_blendv_pd(s.column[k], updated, s.open);
        }
    }
}

// Solves for the four unit vectors side by side: row i of x holds entry i of
// the four solutions. The terms the one-column solve skips before its first
// non-zero entry subtract an exact +0 here, which changes nothing.
void solveIdentity(Lu const& s, double* out)
{
    alignas(32) double lu[4][4]; // lu[c][lane]
    for (int c = 0; c < 4; ++c)
        _mm256_store_pd(lu[c], s.column[c]);
    int row[4];
    __m256d x[4];
    __m256d one = _mm256_set1_pd(1.0);
    for (int i = 0; i < 4; ++i) {
        row[i] = __builtin_ctz(unsigned(_mm256_movemask_pd(s.pivot[i])));
        // Entry i of the permuted identity's columns.
        x[i] = _mm256_and_pd(s.pivot[i], one);
    }
    auto subtract = [&](int i, int k, __m256d factor) {
        x[i] = _mm256_sub_pd(x[i], _mm256_mul_pd(factor, x[k]));
    };
    for (int i = 1; i < 4; ++i) {
        for (int k = 0; k < i; ++k)
            subtract(i, k, _mm256_broadcast_sd(&lu[k][row[i]]));
    }
    for (int i = 3; i >= 0; --i) {
        for (int k = i + 1; k < 4; ++k)
            subtract(i, k, s.upper[i][k]);
        x[i] = _mm256_div_pd(x[i], s.upper[i][i]);
    }
    // Rows of x to columns of the result.
    __m256d t0 = _mm256_unpacklo_pd(x[0], x[1]), t1 = _mm256_unpackhi_pd(x[0], x[1]);
    __m256d t2 = _mm256_unpacklo_pd(x[2], x[3]), t3 = _mm256_unpackhi_pd(x[2], x[3]);
    _mm256_storeu_pd(out, _mm256_permute2f128_pd(t0, t2, 0x20));
    _mm256_storeu_pd(out + 4, _mm256_permute2f128_pd(t1, t3, 0x20));
    _mm256_storeu_pd(out + 8, _mm256_permute2f128_pd(t0, t2, 0x31));
    _mm256_storeu_pd(out + 12, _mm256_permute2f128_pd(t1, t3, 0x31));
}

InverseResult invertAvx2(double const* m, double* out)
{
    Lu s;
    for (int c = 0; c < 4; ++c)
        s.column[c] = _mm256_loadu_pd(m + 4 * c);
    __m256d big = _mm256_max_pd(_mm256_max_pd(absolute(s.column[0]), absolute(s.column[1])),
                                _mm256_max_pd(absolute(s.column[2]), absolute(s.column[3])));
    s.scale = _mm256_div_pd(_mm256_set1_pd(1.0), big);
    s.open = _mm256_castsi256_pd(_mm256_set1_epi64x(-1));
    s.failed = _mm256_setzero_pd();
    eliminate<0>(s);
    eliminate<1>(s);
    eliminate<2>(s);
    eliminate<3>(s);

    // A tie, a zero row (infinite scale) or any value that is not finite
    // leaves the case to the portable code. Otherwise no NaN met the pivot
    // search, and a value that is not finite never becomes finite again, so
    // these are the portable decomposition's numbers.
    __m256d zero = _mm256_setzero_pd();
    __m256d probe = _mm256_mul_pd(s.scale, zero);
    for (__m256d c : s.column)
        probe = _mm256_add_pd(probe, _mm256_mul_pd(c, zero));
    if (s.unsure || _mm256_movemask_pd(_mm256_cmp_pd(probe, probe, _CMP_UNORD_Q)) != 0)
        return InverseResult::Unsure;
    if (_mm256_movemask_pd(s.failed) != 0)
        return InverseResult::Singular;
    solveIdentity(s, out);
    return InverseResult::Inverted;
}

#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

bool hasAvx2()
{
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2");
}

#endif

// Each entry point jumps through a pointer that starts at a function which
// asks the processor, stores its choice and runs it. Threads that race there
// store the same choice.
void chooseProduct(double const* a, double const* b, double* r);
InverseResult chooseInverse(double const* m, double* out);
constinit std::atomic<ProductFunction*> productChoice{chooseProduct};
constinit std::atomic<InverseFunction*> inverseChoice{chooseInverse};

void chooseProduct(double const* a, double const* b, double* r)
{
    ProductFunction* chosen = productPortable;
#if defined(__x86_64__)
    if (hasAvx2())
        chosen = productAvx;
#endif
    productChoice.store(chosen, std::memory_order_relaxed);
    chosen(a, b, r);
}

InverseResult chooseInverse(double const* m, double* out)
{
    InverseFunction* chosen = noVectorInverse;
#if defined(__x86_64__)
    if (hasAvx2())
        chosen = invertAvx2;
#endif
    inverseChoice.store(chosen, std::memory_order_relaxed);
    return chosen(m, out);
}

} // namespace

void multiply4x4(double const* a, double const* b, double* r)
{
    productChoice.load(std::memory_order_relaxed)(a, b, r);
}

InverseResult invertFast(double const* m, double* out)
{
    return inverseChoice.load(std::memory_order_relaxed)(m, out);
}

} // namespace Math::Internal

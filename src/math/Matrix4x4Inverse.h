// The vector form of Matrix4x4::getInverse(): Crout's decomposition with
// partial pivoting and implicit scaling, then the solves against the four
// unit vectors side by side, giving the bits of the portable loops.
//
// Include inside a BRINDLE_TARGET_BEGIN region. Lanes is a policy class for
// the processor level (see Matrix4x4InverseAvx2.cpp): the operations on lane
// masks and the moves of one lane to all lanes.
#pragma once

// Every loop below runs over the four lanes or rows and is unrolled even at
// -O2: the values must stay in registers, not in an indexed array.

#include "Matrix4x4Kernels.h"

#include <cfloat>
#include <immintrin.h>

namespace Math::Internal::VectorInverse {

inline __m256d absolute(__m256d v)
{
    return _mm256_andnot_pd(_mm256_set1_pd(-0.0), v);
}

inline __m256i laneNumbers()
{
    return _mm256_setr_epi64x(0, 1, 2, 3);
}

// The bits of a key taken from the lane number rather than the merit: the two
// lowest, and the sign, so that a key orders as the merit's absolute value.
inline __m256i laneBits()
{
    return _mm256_set1_epi64x(static_cast<long long>(0x8000000000000003ull));
}

// The greatest key in every lane.
inline __m256i greatest(__m256i key)
{
    __m256d k = _mm256_castsi256_pd(key);
    k = _mm256_max_pd(k, _mm256_permute_pd(k, 0x5));
    return _mm256_castpd_si256(_mm256_max_pd(k, _mm256_permute2f128_pd(k, k, 1)));
}

template <class Lanes>
struct Decomposition
{
    using Mask = typename Lanes::Mask;
    __m256d column[4]; // rows in lanes; rows stay in their lanes
    __m256d scale;     // zero for the rows already picked
    Mask pick[4];      // the row picked at each step
    Mask doubt;        // rows whose merit makes the pick doubtful
    __m256i key[3];    // the picking key of each step
    __m256d lu[4][4];  // row J of L (j < J) and of U (j >= J), in every lane
};

// Step J of the right-looking elimination: every element sees the same
// operations in the same order as in Crout's loops.
//
// The pivot is found by a key per row: its merit with the two lowest bits
// replaced by its lane and the sign cleared. Keys order as the merits without
// those two bits do, equal ones by lane, and the greatest key is also the
// index that moves the pivot's lane to all lanes. Rows whose exact merit
// would make another choice are flagged in doubt.
template <class Lanes, int J>
[[gnu::always_inline]] inline void eliminate(Decomposition<Lanes>& s)
{
    using Mask = typename Lanes::Mask;
    __m256d col = s.column[J];
    // The quotients of all candidates start before the pivot is known.
    __m256d quotients = _mm256_div_pd(_mm256_set1_pd(1.0), col);
    // scale * col: the key clears the sign, so the absolute value is off the
    // path to the pivot.
    __m256d signedMerit = _mm256_mul_pd(s.scale, col);
    __m256i key = Lanes::keyOf(signedMerit);
    __m256d merit = absolute(signedMerit);
    __m256i best = greatest(key);
    __m256i idx = Lanes::index(best);
    s.key[J] = best;
    s.pick[J] = Lanes::sameKey(key, best);
    __m256d bestMerit = Lanes::lane(merit, idx);
    if constexpr (J == 0) {
        // Before any exchange the loop takes the last row among equal
        // merits, the greatest lane: only a greater merit hidden by the cut
        // bits is in doubt.
        s.doubt = Lanes::template compare<_CMP_GT_OQ>(merit, bestMerit);
    } else {
        // After exchanges the order of the rows is not the lanes': any other
        // row of equal merit is in doubt.
        Mask tied = Lanes::template compare<_CMP_GE_OQ>(merit, bestMerit);
        s.doubt = Lanes::either(s.doubt, Lanes::without(tied, s.pick[J]));
    }
    if constexpr (J < 2)
        s.scale = Lanes::clear(s.scale, s.pick[J]);
    __m256d inverse = Lanes::lane(quotients, idx);
    s.lu[J][J] = Lanes::lane(col, idx);
    __m256d multipliers = _mm256_mul_pd(col, inverse);
#pragma GCC unroll 4
    for (int j = 0; j < J; ++j)
        s.lu[J][j] = Lanes::lane(s.column[j], idx);
    s.column[J] = multipliers;
#pragma GCC unroll 4
    for (int k = J + 1; k < 4; ++k) {
        __m256d u = Lanes::lane(s.column[k], idx);
        s.lu[J][k] = u;
        s.column[k] = _mm256_sub_pd(s.column[k], _mm256_mul_pd(multipliers, u));
    }
}

// The last step has one row left: lane 0 + 1 + 2 + 3 less the lanes picked,
// in the low two bits.
template <class Lanes>
[[gnu::always_inline]] inline void eliminateLast(Decomposition<Lanes>& s)
{
    __m256i p = _mm256_sub_epi64(_mm256_set1_epi64x(6), s.key[0]);
    p = _mm256_sub_epi64(_mm256_sub_epi64(p, s.key[1]), s.key[2]);
    __m256i idx = Lanes::index(p);
    s.pick[3] = Lanes::lastPick(s.pick, p);
    s.lu[3][3] = Lanes::lane(s.column[3], idx);
#pragma GCC unroll 4
    for (int j = 0; j < 3; ++j)
        s.lu[3][j] = Lanes::lane(s.column[j], idx);
}

template <class Lanes>
[[gnu::always_inline]] inline InverseResult invert(double const* m, double* out)
{
    Decomposition<Lanes> s;
#pragma GCC unroll 4
    for (int k = 0; k < 4; ++k)
        s.column[k] = _mm256_loadu_pd(m + 4 * k);
    __m256d big = Lanes::greaterMagnitude(Lanes::greaterMagnitude(s.column[0], s.column[1]),
                                          Lanes::greaterMagnitude(s.column[2], s.column[3]));
    s.scale = _mm256_div_pd(_mm256_set1_pd(1.0), big);
    eliminate<Lanes, 0>(s);
    eliminate<Lanes, 1>(s);
    eliminate<Lanes, 2>(s);
    eliminateLast(s);

    // Row i of x holds entry i of the four solutions, starting as the unit
    // vector of the row picked at step i.
    __m256d x[4];
#pragma GCC unroll 4
    for (int i = 0; i < 4; ++i) {
        x[i] = Lanes::unit(s.pick[i]);
        if (i > 0)
            x[i] = Lanes::subtractFirst(x[i], s.lu[i][0], x[0], s.pick[0]);
#pragma GCC unroll 4
        for (int j = 1; j < i; ++j)
            x[i] = _mm256_sub_pd(x[i], _mm256_mul_pd(s.lu[i][j], x[j]));
    }
#pragma GCC unroll 4
    for (int i = 3; i >= 0; --i) {
#pragma GCC unroll 4
        for (int j = i + 1; j < 4; ++j)
            x[i] = _mm256_sub_pd(x[i], _mm256_mul_pd(s.lu[i][j], x[j]));
        x[i] = _mm256_div_pd(x[i], s.lu[i][i]);
    }
    Lanes::storeColumns(x, out);

    // A value that is not finite stays so through the elimination, so one
    // sum finds any; the loop's pivot rules for such values differ from
    // these, as they may in doubtful picks.
    __m256d sum = _mm256_add_pd(_mm256_add_pd(s.column[0], s.column[1]),
                                _mm256_add_pd(s.column[2], s.column[3]));
    sum = _mm256_add_pd(sum, s.scale);
    if (Lanes::any(Lanes::either(s.doubt, Lanes::notFinite(sum))))
        return InverseResult::Unsure;
    __m256d smallest = Lanes::lesserMagnitude(Lanes::lesserMagnitude(s.lu[0][0], s.lu[1][1]),
                                              Lanes::lesserMagnitude(s.lu[2][2], s.lu[3][3]));
    bool failed =
        Lanes::any(Lanes::template compare<_CMP_LT_OQ>(smallest, _mm256_set1_pd(DBL_EPSILON)));
    return failed ? InverseResult::Singular : InverseResult::Inverted;
}

} // namespace Math::Internal::VectorInverse

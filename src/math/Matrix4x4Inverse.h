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
#include <cstdint>
#include <cstring>
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

// The lane of a key.
inline unsigned laneOf(__m256i key)
{
    return static_cast<unsigned>(_mm_cvtsi128_si64(_mm256_castsi256_si128(key))) & 3u;
}

// The rows of L and U stay in memory, in the columns they were computed in:
// the back substitution and the updates off the critical path read their
// entries as broadcast operands, which ties up no vector register. Only the
// entries the next step waits for move from lane to lanes by permutation.
struct Rows
{
    alignas(32) double multipliers[3][4]; // column j after step j: L(., j)
    alignas(32) double pivotColumn[4][4]; // column J after step J - 1: U(J, J)
    alignas(32) double lastColumn[4];     // column 3 after step 0: U(1, 3)
};

// The values of the elimination that live in registers. (Rows is apart: its
// address is taken, and would keep these in memory too.)
template <class Lanes>
struct Decomposition
{
    using Mask = typename Lanes::Mask;

    Decomposition(double const* matrix, Rows& memory)
        : m(matrix)
        , rows(memory)
    {}

    double const* m;
    Rows& rows;
    __m256d column[4]; // rows in lanes; rows stay in their lanes
    __m256d scale;
    Mask pick[4];         // the row picked at each step
    Mask picked;          // the rows picked so far
    Mask doubt;           // rows whose merit makes the pick doubtful
    unsigned lane[4];     // the lane picked at each step
    __m256d following[3]; // U(J, J + 1), in every lane

    // Entry (J, k) of L (k < J) or U (k >= J) in memory. U(J, J + 1) is in
    // following[J] instead.
    double const* entry(int J, int k) const
    {
        if (k < J)
            return &rows.multipliers[k][lane[J]];
        if (J == 0)
            return m + 4 * k + lane[0];
        if (k == J)
            return &rows.pivotColumn[J][lane[J]];
        return &rows.lastColumn[lane[1]];
    }
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
    if constexpr (J > 0)
        _mm256_store_pd(s.rows.pivotColumn[J], col);
    // The quotients of all candidates start before the pivot is known.
    __m256d quotients = _mm256_div_pd(_mm256_set1_pd(1.0), col);
    __m256d signedMerit;
    if constexpr (J == 0)
        signedMerit = _mm256_mul_pd(s.scale, col);
    else
        signedMerit = Lanes::merit(s.scale, col, s.picked);
    // The key clears the sign, so the absolute value is off the path to the
    // pivot.
    __m256i key = Lanes::keyOf(signedMerit);
    __m256d merit = absolute(signedMerit);
    __m256i best = greatest(key);
    __m256i idx = Lanes::index(best);
    s.pick[J] = Lanes::sameKey(key, best);
    s.lane[J] = laneOf(best);
    __m256d bestMerit = Lanes::lane(merit, idx);
    if constexpr (J == 0) {
        // Before any exchange the loop takes the last row among equal
        // merits, the greatest lane: only a greater merit hidden by the cut
        // bits is in doubt.
        s.doubt = Lanes::template compare<_CMP_GT_OQ>(merit, bestMerit);
        s.picked = s.pick[0];
    } else {
        // After exchanges the order of the rows is not the lanes': any other
        // row of equal merit is in doubt.
        Mask tied = Lanes::template compare<_CMP_GE_OQ>(merit, bestMerit);
        s.doubt = Lanes::either(s.doubt, Lanes::without(tied, s.pick[J]));
        s.picked = Lanes::either(s.picked, s.pick[J]);
    }
    __m256d multipliers = _mm256_mul_pd(col, Lanes::lane(quotients, idx));
    s.column[J] = multipliers;
    _mm256_store_pd(s.rows.multipliers[J], multipliers);
    // The next step waits for the next column.
    __m256d u = Lanes::lane(s.column[J + 1], idx);
    s.following[J] = u;
    s.column[J + 1] = _mm256_sub_pd(s.column[J + 1], _mm256_mul_pd(multipliers, u));
#pragma GCC unroll 4
    for (int k = J + 2; k < 4; ++k)
        s.column[k] = _mm256_sub_pd(s.column[k],
                                    _mm256_mul_pd(multipliers, _mm256_broadcast_sd(s.entry(J, k))));
    if constexpr (J == 0)
        _mm256_store_pd(s.rows.lastColumn, s.column[3]);
}

template <class Lanes>
[[gnu::always_inline]] inline InverseResult invert(double const* m, double* out)
{
    Rows rows;
    Decomposition<Lanes> s(m, rows);
#pragma GCC unroll 4
    for (int k = 0; k < 4; ++k)
        s.column[k] = _mm256_loadu_pd(m + 4 * k);
    __m256d big = Lanes::greaterMagnitude(Lanes::greaterMagnitude(s.column[0], s.column[1]),
                                          Lanes::greaterMagnitude(s.column[2], s.column[3]));
    s.scale = _mm256_div_pd(_mm256_set1_pd(1.0), big);
    eliminate<Lanes, 0>(s);
    eliminate<Lanes, 1>(s);
    eliminate<Lanes, 2>(s);
    _mm256_store_pd(s.rows.pivotColumn[3], s.column[3]);
    // The one row left: lane 0 + 1 + 2 + 3 less the lanes picked. Picks that
    // repeat (every merit left zero) have been flagged in doubt.
    s.lane[3] = (6u - s.lane[0] - s.lane[1] - s.lane[2]) & 3u;
    s.pick[3] = Lanes::lastPick(s.picked);

    // Row i of x holds entry i of the four solutions, starting as the unit
    // vector of the row picked at step i.
    __m256d x[4];
#pragma GCC unroll 4
    for (int i = 0; i < 4; ++i) {
        x[i] = Lanes::unit(s.pick[i]);
        if (i > 0)
            x[i] = Lanes::subtractFirst(x[i], _mm256_broadcast_sd(s.entry(i, 0)), x[0], s.pick[0]);
#pragma GCC unroll 4
        for (int j = 1; j < i; ++j)
            x[i] = _mm256_sub_pd(x[i], _mm256_mul_pd(_mm256_broadcast_sd(s.entry(i, j)), x[j]));
    }
#pragma GCC unroll 4
    for (int i = 3; i >= 0; --i) {
#pragma GCC unroll 4
        for (int j = i + 1; j < 4; ++j) {
            __m256d u = j == i + 1 ? s.following[i] : _mm256_broadcast_sd(s.entry(i, j));
            x[i] = _mm256_sub_pd(x[i], _mm256_mul_pd(u, x[j]));
        }
        x[i] = _mm256_div_pd(x[i], _mm256_broadcast_sd(s.entry(i, i)));
    }
    Lanes::storeColumns(x, out);

    // The loop's pivot rules differ from these only for merits that are not
    // finite. Finite columns and scales cannot make one (a row's entries grow
    // at most twofold per step relative to its scale), so they come from a
    // scale of 0, infinity or NaN or from such a value in a column. One in a
    // row not yet picked makes its multiplier so, and the update of the last
    // column carries it there; one in a picked row reaches the other rows'
    // columns through U. So the last column and the scales find every one.
    __m256d sum = _mm256_add_pd(s.column[3], s.scale);
    // A pivot under DBL_EPSILON in magnitude: the portable code decides, and
    // so reports every singular matrix. The pivots' bits are tested in
    // memory, off the vector registers.
    std::uint64_t epsilon;
    double const bound = DBL_EPSILON;
    std::memcpy(&epsilon, &bound, sizeof epsilon);
    bool small = false;
#pragma GCC unroll 4
    for (int J = 0; J < 4; ++J) {
        std::uint64_t pivot;
        std::memcpy(&pivot, s.entry(J, J), sizeof pivot);
        small |= (pivot << 1) < (epsilon << 1);
    }
    typename Lanes::Mask unsure = Lanes::either(s.doubt, Lanes::notFinite(sum));
    return Lanes::any(unsure) || small ? InverseResult::Unsure : InverseResult::Inverted;
}

} // namespace Math::Internal::VectorInverse

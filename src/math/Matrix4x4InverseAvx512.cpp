// The vector inverse for processors with AVX-512 (F, VL, DQ): lane masks are
// mask registers, and 32 vector registers hold the whole decomposition.
#include "KernelTarget.h"
#include "Matrix4x4Kernels.h"

#include <cfloat>
#include <immintrin.h>

#if defined(__x86_64__)

BRINDLE_TARGET_BEGIN("avx512f,avx512vl,avx512dq")

#include "Matrix4x4Inverse.h"

namespace Math::Internal {

namespace {

struct Avx512Lanes
{
    using Mask = __mmask8;

    // vpermpd reads the low two bits of each 64-bit index.
    static __m256i index(__m256i p) { return p; }
    static __m256d lane(__m256d v, __m256i index) { return _mm256_permutexvar_pd(index, v); }
    static __m256i keyOf(__m256d merit)
    {
        // Bits of the lane number where laneBits() is set, of merit elsewhere.
        return _mm256_ternarylogic_epi64(_mm256_castpd_si256(merit), VectorInverse::laneBits(),
                                         VectorInverse::laneNumbers(), 0xB8);
    }
    static Mask sameKey(__m256i a, __m256i b) { return _mm256_cmpeq_epi64_mask(a, b); }
    template <int Predicate>
    static Mask compare(__m256d a, __m256d b)
    {
        return _mm256_cmp_pd_mask(a, b, Predicate);
    }
    static Mask either(Mask a, Mask b) { return _kor_mask8(a, b); }
    static Mask without(Mask a, Mask b) { return _kandn_mask8(b, a); }
    static bool any(Mask m) { return !_kortestz_mask8_u8(m, m); }
    static Mask lastPick(Mask picked) { return _knot_mask8(picked); }
    // scale * col, zero in the rows picked.
    static __m256d merit(__m256d scale, __m256d col, Mask picked)
    {
        return _mm256_maskz_mul_pd(_knot_mask8(picked), scale, col);
    }
    static __m256d unit(Mask m) { return _mm256_maskz_mov_pd(m, _mm256_set1_pd(1.0)); }
    // x0 is the unit vector of pick0: only its lane changes (0 − l · 1);
    // elsewhere the product is an exact zero and x stays.
    static __m256d subtractFirst(__m256d x, __m256d l, __m256d, Mask pick0)
    {
        return _mm256_mask_sub_pd(x, pick0, x, l);
    }
    static __m256d greaterMagnitude(__m256d a, __m256d b) { return _mm256_range_pd(a, b, 0xB); }
    static Mask notFinite(__m256d sum) { return _mm256_fpclass_pd_mask(sum, 0x99); }
    // Rows of x to the columns of out. (GCC 12's headers build the insertion
    // from an undefined vector, which -Wuninitialized reports.)
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wuninitialized"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
    static void storeColumns(__m256d const* x, double* out)
    {
        __m512d a = _mm512_insertf64x4(_mm512_castpd256_pd512(x[0]), x[1], 1);
        __m512d b = _mm512_insertf64x4(_mm512_castpd256_pd512(x[2]), x[3], 1);
        _mm512_storeu_pd(out,
                         _mm512_permutex2var_pd(a, _mm512_setr_epi64(0, 4, 8, 12, 1, 5, 9, 13), b));
        _mm512_storeu_pd(
            out + 8, _mm512_permutex2var_pd(a, _mm512_setr_epi64(2, 6, 10, 14, 3, 7, 11, 15), b));
    }
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic pop
#endif
};

} // namespace

InverseResult invertAvx512(double const* m, double* out)
{
    return VectorInverse::invert<Avx512Lanes>(m, out);
}

} // namespace Math::Internal

BRINDLE_TARGET_END

#endif

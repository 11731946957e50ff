// The vector inverse for processors with AVX2: lane masks are vectors.
#include "KernelTarget.h"
#include "Matrix4x4Kernels.h"

#include <cfloat>
#include <immintrin.h>

#if defined(__x86_64__)

BRINDLE_TARGET_BEGIN("avx2")

#include "Matrix4x4Inverse.h"

namespace Math::Internal {

namespace {

struct Avx2Lanes
{
    using Mask = __m256d;

    // vpermps takes 32-bit indices: 2p and 2p + 1 for lane p.
    static __m256i index(__m256i p)
    {
        p = _mm256_and_si256(p, _mm256_set1_epi64x(3));
        p = _mm256_add_epi32(p, p);
        return _mm256_add_epi32(_mm256_shuffle_epi32(p, 0xA0), _mm256_set1_epi64x(1ll << 32));
    }
    static __m256d lane(__m256d v, __m256i index)
    {
        return _mm256_castps_pd(_mm256_permutevar8x32_ps(_mm256_castpd_ps(v), index));
    }
    static __m256i keyOf(__m256d merit)
    {
        __m256i bits = _mm256_andnot_si256(VectorInverse::laneBits(), _mm256_castpd_si256(merit));
        return _mm256_or_si256(bits, VectorInverse::laneNumbers());
    }
    static Mask sameKey(__m256i a, __m256i b)
    {
        return _mm256_castsi256_pd(_mm256_cmpeq_epi64(a, b));
    }
    template <int Predicate>
    static Mask compare(__m256d a, __m256d b)
    {
        return _mm256_cmp_pd(a, b, Predicate);
    }
    static Mask either(Mask a, Mask b) { return _mm256_or_pd(a, b); }
    static Mask without(Mask a, Mask b) { return _mm256_andnot_pd(b, a); }
    static bool any(Mask m) { return _mm256_movemask_pd(m) != 0; }
    static Mask lastPick(Mask picked)
    {
        __m256i all = _mm256_cmpeq_epi64(_mm256_setzero_si256(), _mm256_setzero_si256());
        return _mm256_xor_pd(picked, _mm256_castsi256_pd(all));
    }
    // scale * col, zero in the rows picked.
    static __m256d merit(__m256d scale, __m256d col, Mask picked)
    {
        return _mm256_mul_pd(_mm256_andnot_pd(picked, scale), col);
    }
    static __m256d unit(Mask m) { return _mm256_and_pd(m, _mm256_set1_pd(1.0)); }
    static __m256d subtractFirst(__m256d x, __m256d l, __m256d x0, Mask)
    {
        return _mm256_sub_pd(x, _mm256_mul_pd(l, x0));
    }
    static __m256d greaterMagnitude(__m256d a, __m256d b)
    {
        return _mm256_max_pd(VectorInverse::absolute(a), VectorInverse::absolute(b));
    }
    // NaN where the sum is not finite.
    static Mask notFinite(__m256d sum)
    {
        __m256d zero = _mm256_setzero_pd();
        return _mm256_cmp_pd(_mm256_mul_pd(sum, zero), zero, _CMP_NEQ_UQ);
    }
    // Rows of x to the columns of out.
    static void storeColumns(__m256d const* x, double* out)
    {
        __m256d t0 = _mm256_unpacklo_pd(x[0], x[1]), t1 = _mm256_unpackhi_pd(x[0], x[1]);
        __m256d t2 = _mm256_unpacklo_pd(x[2], x[3]), t3 = _mm256_unpackhi_pd(x[2], x[3]);
        _mm256_storeu_pd(out, _mm256_permute2f128_pd(t0, t2, 0x20));
        _mm256_storeu_pd(out + 4, _mm256_permute2f128_pd(t1, t3, 0x20));
        _mm256_storeu_pd(out + 8, _mm256_permute2f128_pd(t0, t2, 0x31));
        _mm256_storeu_pd(out + 12, _mm256_permute2f128_pd(t1, t3, 0x31));
    }
};

} // namespace

InverseResult invertAvx2(double const* m, double* out)
{
    return VectorInverse::invert<Avx2Lanes>(m, out);
}

} // namespace Math::Internal

BRINDLE_TARGET_END

#endif

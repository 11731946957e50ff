#include "Matrix4x4Kernels.h"

#include "KernelTarget.h"

#include <BrindleBaseCore/math/Matrix4x4.h>

#include <atomic>
#include <cstdlib>
#include <cstring>

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

enum class Level
{
    Portable,
    Avx2,
    Avx512
};

#if defined(__x86_64__)

BRINDLE_TARGET_BEGIN("avx2")

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

BRINDLE_TARGET_END

#endif

// The best level of the processor, capped by BRINDLE_MATH_KERNEL.
Level level()
{
    Level best = Level::Portable;
#if defined(__x86_64__)
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx2"))
        best = Level::Avx2;
    if (best == Level::Avx2 && __builtin_cpu_supports("avx512f") &&
        __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512dq"))
        best = Level::Avx512;
#endif
    char const* cap = std::getenv("BRINDLE_MATH_KERNEL");
    if (cap && std::strcmp(cap, "portable") == 0)
        return Level::Portable;
    if (cap && std::strcmp(cap, "avx2") == 0 && best == Level::Avx512)
        return Level::Avx2;
    return best;
}

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
    if (level() != Level::Portable)
        chosen = productAvx;
#endif
    productChoice.store(chosen, std::memory_order_relaxed);
    chosen(a, b, r);
}

InverseResult chooseInverse(double const* m, double* out)
{
    InverseFunction* chosen = noVectorInverse;
#if defined(__x86_64__)
    switch (level()) {
    case Level::Avx512:
        chosen = invertAvx512;
        break;
    case Level::Avx2:
        chosen = invertAvx2;
        break;
    case Level::Portable:
        break;
    }
#endif
    inverseChoice.store(chosen, std::memory_order_relaxed);
    return chosen(m, out);
}

} // namespace

// Before this is set, copies take the narrow path, which gives the same bytes.
bool const wideCopies = level() != Level::Portable;

void multiply4x4(double const* a, double const* b, double* r)
{
    productChoice.load(std::memory_order_relaxed)(a, b, r);
}

InverseResult invertFast(double const* m, double* out)
{
    return inverseChoice.load(std::memory_order_relaxed)(m, out);
}

} // namespace Math::Internal

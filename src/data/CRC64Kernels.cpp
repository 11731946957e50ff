#include "CRC64Kernels.h"

#include <cstring>

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#endif

namespace brindle::crc64 {

namespace {
constexpr quint64 kReflectedPolynomial = 0xD800000000000000ull;
} // namespace

quint64 tableValue(unsigned i)
{
    quint64 c = i;
    for (int k = 0; k < 8; ++k)
        c = (c & 1) ? (c >> 1) ^ kReflectedPolynomial : c >> 1;
    return c;
}

namespace {

quint64 load64(unsigned char const* p)
{
    quint64 v;
    std::memcpy(&v, p, 8);
#if Q_BYTE_ORDER == Q_BIG_ENDIAN
    v = __builtin_bswap64(v);
#endif
    return v;
}

// Eight tables: slice[k][b] is the CRC of byte b followed by k zero bytes.
struct SliceTables
{
    quint64 slice[8][256];
    SliceTables()
    {
        for (unsigned i = 0; i < 256; ++i)
            slice[0][i] = tableValue(i);
        for (int k = 1; k < 8; ++k) {
            for (unsigned i = 0; i < 256; ++i)
                slice[k][i] = (slice[k - 1][i] >> 8) ^ slice[0][slice[k - 1][i] & 0xFF];
        }
    }
};

SliceTables const& sliceTables()
{
    static SliceTables const tables;
    return tables;
}

quint64 updateBytes(quint64 c, unsigned char const* p, std::size_t n, quint64 const* table)
{
    for (std::size_t i = 0; i < n; ++i)
        c = (c >> 8) ^ table[(c ^ p[i]) & 0xFF];
    return c;
}

} // namespace

quint64 updateSliced(quint64 c, unsigned char const* p, std::size_t n)
{
    auto const& t = sliceTables().slice;
    for (; n >= 8; n -= 8, p += 8) {
        c ^= load64(p);
        c = t[7][c & 0xFF] ^ t[6][(c >> 8) & 0xFF] ^ t[5][(c >> 16) & 0xFF] ^
            t[4][(c >> 24) & 0xFF] ^ t[3][(c >> 32) & 0xFF] ^ t[2][(c >> 40) & 0xFF] ^
            t[1][(c >> 48) & 0xFF] ^ t[0][c >> 56];
    }
    return updateBytes(c, p, n, t[0]);
}

#ifdef BRINDLE_CRC64_X86

namespace {

constexpr quint64 kPolynomialLow = 0x1B; // x^4 + x^3 + x + 1; x^64 is implicit

// Folding with carry-less multiplication. In the reflected bit order a 16-byte
// block is H * x^64 + L with H its first 8 bytes. Moving a block D bits further
// into the message multiplies it by x^D; modulo the polynomial that is
// H * (x^(64+D) mod P) + L * (x^D mod P), two 64x64-bit products that fit the
// 128-bit block they are added to. A reflected carry-less product carries one
// extra factor x, hence the constants below use exponents one less.
quint64 xPowerModP(unsigned n)
{
    quint64 r = 1;
    for (unsigned i = 0; i < n; ++i)
        r = (r << 1) ^ ((r >> 63) ? kPolynomialLow : 0);
    return r;
}

quint64 reflect64(quint64 v)
{
    quint64 r = 0;
    for (int i = 0; i < 64; ++i)
        r |= ((v >> i) & 1) << (63 - i);
    return r;
}

struct FoldConstant
{
    quint64 high; // multiplies the first 8 bytes of a block
    quint64 low;  // multiplies the last 8 bytes
    explicit FoldConstant(unsigned distanceBits = 128)
        : high(reflect64(xPowerModP(64 + distanceBits - 1)))
        , low(reflect64(xPowerModP(distanceBits - 1)))
    {}
};

struct FoldConstants
{
    FoldConstant by128{128}, by256{256}, by384{384}, by512{512}, by1024{1024}, by1536{1536},
        by2048{2048};
};

FoldConstants const& foldConstants()
{
    static FoldConstants const constants;
    return constants;
}

// The CRC of a folded 16-byte remainder is that of the message it stands for.
quint64 finishBlock(__m128i block, unsigned char const* tail, std::size_t tailSize)
{
    alignas(16) unsigned char bytes[16];
    _mm_store_si128(reinterpret_cast<__m128i*>(bytes), block);
    quint64 c = updateSliced(0, bytes, 16);
    return updateSliced(c, tail, tailSize);
}

__attribute__((target("pclmul,sse4.1"))) __m128i fold128(__m128i x, FoldConstant const& k)
{
    __m128i const kk = _mm_set_epi64x(qint64(k.low), qint64(k.high));
    return _mm_xor_si128(_mm_clmulepi64_si128(x, kk, 0x00), _mm_clmulepi64_si128(x, kk, 0x11));
}

__attribute__((target("pclmul,sse4.1"))) __m128i load128(unsigned char const* p)
{
    return _mm_loadu_si128(reinterpret_cast<__m128i const*>(p));
}

// Folds 16-byte blocks into one; returns the block, advancing p and n.
__attribute__((target("pclmul,sse4.1"))) __m128i foldTail(__m128i x, unsigned char const*& p,
                                                          std::size_t& n)
{
    FoldConstant const& k = foldConstants().by128;
    for (; n >= 16; n -= 16, p += 16)
        x = _mm_xor_si128(fold128(x, k), load128(p));
    return x;
}

} // namespace

__attribute__((target("pclmul,sse4.1"))) quint64 updateClmul(quint64 crc, unsigned char const* p,
                                                             std::size_t n)
{
    FoldConstants const& k = foldConstants();
    __m128i x[8];
    for (int i = 0; i < 8; ++i)
        x[i] = load128(p + 16 * i);
    x[0] = _mm_xor_si128(x[0], _mm_cvtsi64_si128(qint64(crc)));
    p += 128;
    n -= 128;
    for (; n >= 128; n -= 128, p += 128) {
        for (int i = 0; i < 8; ++i)
            x[i] = _mm_xor_si128(fold128(x[i], k.by1024), load128(p + 16 * i));
    }
    __m128i acc = x[0];
    for (int i = 1; i < 8; ++i)
        acc = _mm_xor_si128(fold128(acc, k.by128), x[i]);
    acc = foldTail(acc, p, n);
    return finishBlock(acc, p, n);
}

namespace {

__attribute__((target("avx512f,avx512vl,vpclmulqdq,pclmul,sse4.1"))) __m512i
broadcast512(FoldConstant const& k)
{
    auto const h = qint64(k.high), l = qint64(k.low);
    return _mm512_set_epi64(l, h, l, h, l, h, l, h);
}

__attribute__((target("avx512f,avx512vl,vpclmulqdq,pclmul,sse4.1"))) __m512i
fold512(__m512i x, FoldConstant const& k)
{
    __m512i const kk = broadcast512(k);
    return _mm512_xor_si512(_mm512_clmulepi64_epi128(x, kk, 0x00),
                            _mm512_clmulepi64_epi128(x, kk, 0x11));
}

} // namespace

__attribute__((target("avx512f,avx512vl,vpclmulqdq,pclmul,sse4.1"))) quint64
updateVclmul(quint64 crc, unsigned char const* p, std::size_t n)
{
    FoldConstants const& k = foldConstants();
    __m512i const kk = broadcast512(k.by2048);
    __m512i z[4];
    for (int i = 0; i < 4; ++i)
        z[i] = _mm512_loadu_si512(p + 64 * i);
    z[0] = _mm512_xor_si512(z[0], _mm512_zextsi128_si512(_mm_cvtsi64_si128(qint64(crc))));
    p += 256;
    n -= 256;
    for (; n >= 256; n -= 256, p += 256) {
        for (int i = 0; i < 4; ++i) {
            __m512i const lo = _mm512_clmulepi64_epi128(z[i], kk, 0x00);
            __m512i const hi = _mm512_clmulepi64_epi128(z[i], kk, 0x11);
            z[i] = _mm512_ternarylogic_epi64(lo, hi, _mm512_loadu_si512(p + 64 * i), 0x96);
        }
    }
    __m512i acc = _mm512_xor_si512(z[3], fold512(z[2], k.by512));
    acc = _mm512_xor_si512(acc, fold512(z[1], k.by1024));
    acc = _mm512_xor_si512(acc, fold512(z[0], k.by1536));
    alignas(64) __m128i lanes[4];
    _mm512_store_si512(lanes, acc);
    __m128i x = _mm_xor_si128(fold128(lanes[0], k.by384), fold128(lanes[1], k.by256));
    x = _mm_xor_si128(x, fold128(lanes[2], k.by128));
    x = _mm_xor_si128(x, lanes[3]);
    x = foldTail(x, p, n);
    return finishBlock(x, p, n);
}

#endif // BRINDLE_CRC64_X86

Kernel selectKernel()
{
#ifdef BRINDLE_CRC64_X86
    __builtin_cpu_init();
    if (!__builtin_cpu_supports("pclmul") || !__builtin_cpu_supports("sse4.1"))
        return Kernel::Sliced;
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") &&
        __builtin_cpu_supports("vpclmulqdq"))
        return Kernel::Vclmul;
    return Kernel::Clmul;
#else
    return Kernel::Sliced;
#endif
}

} // namespace brindle::crc64

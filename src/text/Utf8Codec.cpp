#include "text/Utf8Codec.h"

#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace brindle::text {

namespace {

constexpr std::size_t ChunkUnits = 64;

// Converts from src until the target is full (returns true), the source ends
// or an ill-formed sequence starts (returns false). A character is either
// written whole or not at all, so a full target may hold one unit less than
// its size when a surrogate pair did not fit.
bool decodeChunk(unsigned char const*& src, unsigned char const* end, char16_t*& dst,
                 char16_t* dstEnd)
{
    unsigned char const* s = src;
    char16_t* d = dst;
    bool full = false;
    while (s < end) {
#if defined(__SSE2__)
        // Sixteen bytes at a time while they can be read and written: the
        // ASCII prefix of each block is widened in place.
        while (end - s >= 16 && dstEnd - d >= 16) {
            __m128i block = _mm_loadu_si128(reinterpret_cast<__m128i const*>(s));
            __m128i zero = _mm_setzero_si128();
            _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm_unpacklo_epi8(block, zero));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 8), _mm_unpackhi_epi8(block, zero));
            unsigned nonAscii = unsigned(_mm_movemask_epi8(block));
            if (nonAscii != 0) {
                unsigned ascii = unsigned(__builtin_ctz(nonAscii));
                s += ascii;
                d += ascii;
                break;
            }
            s += 16;
            d += 16;
        }
        if (s == end)
            break;
#endif
        unsigned b0 = *s;
        if (b0 < 0x80) {
            if (d == dstEnd) {
                full = true;
                break;
            }
            *d++ = char16_t(b0);
            ++s;
            continue;
        }
        std::ptrdiff_t left = end - s;
        char32_t ch;
        int length;
        if (b0 >= 0xC2 && b0 <= 0xDF) {
            if (left < 2 || (s[1] & 0xC0) != 0x80)
                break;
            ch = char32_t(((b0 & 0x1F) << 6) | (s[1] & 0x3F));
            length = 2;
        } else if (b0 >= 0xE0 && b0 <= 0xEF) {
            if (left < 3)
                break;
            unsigned b1 = s[1];
            unsigned low = b0 == 0xE0 ? 0xA0 : 0x80;
            unsigned high = b0 == 0xED ? 0x9F : 0xBF;
            if (b1 < low || b1 > high || (s[2] & 0xC0) != 0x80)
                break;
            ch = char32_t(((b0 & 0x0F) << 12) | ((b1 & 0x3F) << 6) | (s[2] & 0x3F));
            length = 3;
        } else if (b0 >= 0xF0 && b0 <= 0xF4) {
            if (left < 4)
                break;
            unsigned b1 = s[1];
            unsigned low = b0 == 0xF0 ? 0x90 : 0x80;
            unsigned high = b0 == 0xF4 ? 0x8F : 0xBF;
            if (b1 < low || b1 > high || (s[2] & 0xC0) != 0x80 || (s[3] & 0xC0) != 0x80)
                break;
            ch = char32_t(((b0 & 0x07) << 18) | ((b1 & 0x3F) << 12) | ((s[2] & 0x3F) << 6) |
                          (s[3] & 0x3F));
            length = 4;
        } else {
            break; // a continuation byte, an overlong lead (C0, C1) or F5..FF
        }
        if (ch < 0x10000) {
            if (d == dstEnd) {
                full = true;
                break;
            }
            *d++ = char16_t(ch);
        } else {
            if (dstEnd - d < 2) {
                full = true;
                break;
            }
            ch -= 0x10000;
            *d++ = char16_t(0xD800 + (ch >> 10));
            *d++ = char16_t(0xDC00 + (ch & 0x3FF));
        }
        s += length;
    }
    src = s;
    dst = d;
    return full;
}

// The same contract in the other direction: stops at an unpaired surrogate or
// a high surrogate ending the input.
bool encodeChunk(char16_t const*& src, char16_t const* end, char*& dst, char* dstEnd)
{
    char16_t const* s = src;
    char* d = dst;
    bool full = false;
    while (s < end) {
#if defined(__SSE2__)
        if (end - s >= 16 && dstEnd - d >= 16) {
            __m128i a = _mm_loadu_si128(reinterpret_cast<__m128i const*>(s));
            __m128i b = _mm_loadu_si128(reinterpret_cast<__m128i const*>(s + 8));
            __m128i high = _mm_set1_epi16(short(0xFF80));
            if (_mm_movemask_epi8(_mm_cmpeq_epi16(_mm_and_si128(_mm_or_si128(a, b), high),
                                                  _mm_setzero_si128())) == 0xFFFF) {
                _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm_packus_epi16(a, b));
                s += 16;
                d += 16;
                continue;
            }
        }
#endif
        char32_t ch = *s;
        std::size_t used = 1;
        if (ch >= 0xD800 && ch <= 0xDFFF) {
            if (ch >= 0xDC00 || end - s < 2 || s[1] < 0xDC00 || s[1] > 0xDFFF)
                break;
            ch = 0x10000 + ((ch - 0xD800) << 10) + (char32_t(s[1]) - 0xDC00);
            used = 2;
        }
        int length = ch < 0x80 ? 1 : ch < 0x800 ? 2 : ch < 0x10000 ? 3 : 4;
        if (dstEnd - d < length) {
            full = true;
            break;
        }
        switch (length) {
        case 1:
            d[0] = char(ch);
            break;
        case 2:
            d[0] = char(0xC0 | (ch >> 6));
            d[1] = char(0x80 | (ch & 0x3F));
            break;
        case 3:
            d[0] = char(0xE0 | (ch >> 12));
            d[1] = char(0x80 | ((ch >> 6) & 0x3F));
            d[2] = char(0x80 | (ch & 0x3F));
            break;
        default:
            d[0] = char(0xF0 | (ch >> 18));
            d[1] = char(0x80 | ((ch >> 12) & 0x3F));
            d[2] = char(0x80 | ((ch >> 6) & 0x3F));
            d[3] = char(0x80 | (ch & 0x3F));
            break;
        }
        d += length;
        s += used;
    }
    src = s;
    dst = d;
    return full;
}

} // namespace

void appendUtf8(std::u16string& out, char const* bytes, std::size_t size)
{
    auto const* src = reinterpret_cast<unsigned char const*>(bytes);
    auto const* end = src + size;
    char16_t chunk[ChunkUnits];
    bool full;
    do {
        char16_t* dst = chunk;
        full = decodeChunk(src, end, dst, chunk + ChunkUnits);
        out.append(chunk, std::size_t(dst - chunk));
    } while (full);
}

void appendUtf16AsUtf8(std::string& out, char16_t const* units, std::size_t size)
{
    char16_t const* src = units;
    char16_t const* end = units + size;
    char chunk[ChunkUnits];
    bool full;
    do {
        char* dst = chunk;
        full = encodeChunk(src, end, dst, chunk + ChunkUnits);
        out.append(chunk, std::size_t(dst - chunk));
    } while (full);
}

} // namespace brindle::text

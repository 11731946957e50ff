// CRC-64 kernels behind TUCRC64Calculator (reflected ISO polynomial). Each
// continues a CRC over more bytes; all give the same result as the byte loop.
#pragma once

#include <QtCore/QtGlobal>

#include <cstddef>

#if defined(__x86_64__) || defined(__i386__)
#define BRINDLE_CRC64_X86 1
#endif

namespace brindle::crc64 {

// The table entry for byte value i.
quint64 tableValue(unsigned i);

// Eight table lookups per 8 bytes; any size.
quint64 updateSliced(quint64 crc, unsigned char const* p, std::size_t n);

enum class Kernel
{
    Sliced,
    Clmul,
    Vclmul
};

// The fastest kernel this processor runs.
Kernel selectKernel();

#ifdef BRINDLE_CRC64_X86
// 128-bit carry-less multiplication; n >= 128.
quint64 updateClmul(quint64 crc, unsigned char const* p, std::size_t n);
// 512-bit carry-less multiplication; n >= 256.
quint64 updateVclmul(quint64 crc, unsigned char const* p, std::size_t n);
#endif

} // namespace brindle::crc64

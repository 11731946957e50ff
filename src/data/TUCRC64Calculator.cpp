#include <BrindleBaseCore/data/TUCRC64Calculator.h>

#include "CRC64Kernels.h"

TUCRC64Calculator::TUCRC64Calculator()
{
    for (unsigned i = 0; i < 256; ++i) {
        quint64 const c = brindle::crc64::tableValue(i);
        m_high[i] = quint32(c >> 32);
        m_low[i] = quint32(c);
    }
}

quint64 TUCRC64Calculator::update(quint64 crc, void const* data, std::size_t size) const
{
    auto const* p = static_cast<unsigned char const*>(data);
    if (size < 16) {
        // The table loop on the two halves, kept as two 32-bit registers.
        quint32 high = quint32(crc >> 32), low = quint32(crc);
        for (std::size_t i = 0; i < size; ++i) {
            unsigned const index = (low ^ p[i]) & 0xFF;
            low = ((low >> 8) | (high << 24)) ^ m_low[index];
            high = (high >> 8) ^ m_high[index];
        }
        return (quint64(high) << 32) | low;
    }
    using namespace brindle::crc64;
#ifdef BRINDLE_CRC64_X86
    static Kernel const kernel = selectKernel();
    if (kernel == Kernel::Vclmul && size >= 256)
        return updateVclmul(crc, p, size);
    if (kernel != Kernel::Sliced && size >= 128)
        return updateClmul(crc, p, size);
#endif
    return updateSliced(crc, p, size);
}

std::pair<quint32, quint32> TUCRC64Calculator::compute(std::string const& data) const
{
    quint64 const c = update(0, data.data(), data.size());
    return {quint32(c >> 32), quint32(c)};
}

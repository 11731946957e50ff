#pragma once

#include <BrindleBaseCore/Global.h>

#include <QtCore/QtGlobal>

#include <cstddef>
#include <string>
#include <utility>

/// 64-bit cyclic redundancy check with the ISO 3309 polynomial
/// (x^64 + x^4 + x^3 + x + 1), reflected input and output, initial value 0 and
/// no final XOR. The check value of "123456789" is 0x46A5A9388A5BEFFE.
///
/// The object holds the byte lookup table (high halves, then low halves); build
/// one calculator and reuse it. compute() gives exactly the result of the plain
/// table loop, but runs a carry-less multiplication kernel when the processor
/// has one, and a multi-table loop otherwise. Nothing fails; a calculator is
/// read-only after construction, so one may be shared between threads.
class BRINDLE_EXPORT TUCRC64Calculator
{
public:
    TUCRC64Calculator();
    /// Copies the table.
    TUCRC64Calculator(TUCRC64Calculator const&) = default;
    /// Moves (copies) the table.
    TUCRC64Calculator(TUCRC64Calculator&&) = default;
    /// Copies the table.
    TUCRC64Calculator& operator=(TUCRC64Calculator const&) = default;
    /// Moves (copies) the table.
    TUCRC64Calculator& operator=(TUCRC64Calculator&&) = default;

    /// CRC of the bytes: first the high 32 bits, second the low 32 bits.
    std::pair<quint32, quint32> compute(std::string const& data) const;

    /// Streaming form: continues the CRC `crc` (0 to start) over `size` more
    /// bytes and returns the new 64-bit value. compute(s) equals the halves of
    /// update(0, s.data(), s.size()).
    quint64 update(quint64 crc, void const* data, std::size_t size) const;

    /// The table entry for a byte value, as one 64-bit value.
    quint64 tableEntry(unsigned char byte) const
    {
        return (quint64(m_high[byte]) << 32) | m_low[byte];
    }

private:
    quint32 m_high[256];
    quint32 m_low[256];
};

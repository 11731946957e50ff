#include <BrindleBaseCore/data/TUCRC64Calculator.h>

#include "CRC64Kernels.h"

#include <gtest/gtest.h>

#include <random>

namespace {

// The reference: one table lookup per byte, straight from the definition.
quint64 referenceCrc(TUCRC64Calculator const& calc, unsigned char const* p, std::size_t n)
{
    quint64 c = 0;
    for (std::size_t i = 0; i < n; ++i)
        c = (c >> 8) ^ calc.tableEntry(static_cast<unsigned char>((c ^ p[i]) & 0xFF));
    return c;
}

std::pair<quint32, quint32> halves(quint64 c)
{
    return {quint32(c >> 32), quint32(c)};
}

} // namespace

TEST(TUCRC64Calculator, KnownValues)
{
    TUCRC64Calculator const calc;
    EXPECT_EQ(calc.compute(""), std::make_pair(0u, 0u));
    EXPECT_EQ(calc.compute("a"), std::make_pair(0x5BB00000u, 0u));
    EXPECT_EQ(calc.compute("123456789"), std::make_pair(0x46A5A938u, 0x8A5BEFFEu));
    EXPECT_EQ(calc.tableEntry(1), 0x01B0000000000000ull);
    EXPECT_EQ(calc.tableEntry(0x80), 0xD800000000000000ull);

    std::string const zeros(1000, '\0');
    EXPECT_EQ(calc.compute(zeros), std::make_pair(0u, 0u)); // no initial value, no final XOR
}

TEST(TUCRC64Calculator, CopiesKeepTheTable)
{
    TUCRC64Calculator const calc;
    TUCRC64Calculator copy(calc);
    TUCRC64Calculator assigned;
    assigned = std::move(copy);
    EXPECT_EQ(assigned.compute("123456789"), calc.compute("123456789"));
    for (unsigned i = 0; i < 256; ++i)
        ASSERT_EQ(assigned.tableEntry(static_cast<unsigned char>(i)),
                  calc.tableEntry(static_cast<unsigned char>(i)));
}

// Every kernel, at every length up to a few blocks and every alignment, on
// random data and on a running CRC, equals the byte loop.
TEST(TUCRC64Calculator, KernelsMatchByteLoop)
{
    using namespace brindle::crc64;
    TUCRC64Calculator const calc;
    std::mt19937_64 random(12345);
    std::vector<unsigned char> buffer(4096 + 64);
    for (auto& b : buffer)
        b = static_cast<unsigned char>(random());

    bool const x86 = selectKernel() != Kernel::Sliced;
    bool const wide = selectKernel() == Kernel::Vclmul;
    for (std::size_t length = 0; length <= 1200; ++length) {
        for (std::size_t offset : {0, 1, 3, 7, 8, 13}) {
            unsigned char const* p = buffer.data() + offset;
            quint64 const expected = referenceCrc(calc, p, length);
            ASSERT_EQ(updateSliced(0, p, length), expected) << length << "+" << offset;
            ASSERT_EQ(calc.update(0, p, length), expected) << length << "+" << offset;
#ifdef BRINDLE_CRC64_X86
            if (x86 && length >= 128) {
                ASSERT_EQ(updateClmul(0, p, length), expected) << length << "+" << offset;
            }
            if (wide && length >= 256) {
                ASSERT_EQ(updateVclmul(0, p, length), expected) << length << "+" << offset;
            }
#endif
        }
    }
    (void)x86;
    (void)wide;

    // Streaming in uneven pieces gives the one-piece result.
    quint64 const whole = calc.update(0, buffer.data(), buffer.size());
    quint64 running = 0;
    std::size_t done = 0;
    for (std::size_t piece : {1, 300, 7, 1000, 129, 257, 16, 5000}) {
        piece = std::min(piece, buffer.size() - done);
        running = calc.update(running, buffer.data() + done, piece);
        done += piece;
    }
    ASSERT_EQ(done, buffer.size());
    EXPECT_EQ(running, whole);
    EXPECT_EQ(halves(whole), calc.compute(std::string(reinterpret_cast<char const*>(buffer.data()),
                                                      buffer.size())));
}

#include <BrindleBaseCore/data/TUCRC64Calculator.h>

#include "CRC64Kernels.h"

#include <gtest/gtest.h>

#include <random>

TEST(TUCRC64Calculator, KnownValuesAndCopies)
{
    TUCRC64Calculator const calc;
    EXPECT_EQ(calc.compute(""), std::make_pair(0u, 0u));
    EXPECT_EQ(calc.compute("a"), std::make_pair(0x5BB00000u, 0u));
    EXPECT_EQ(calc.compute("123456789"), std::make_pair(0x46A5A938u, 0x8A5BEFFEu));
    EXPECT_EQ(calc.tableEntry(1), 0x01B0000000000000ull);
    EXPECT_EQ(calc.tableEntry(0x80), 0xD800000000000000ull);
    // No initial value, no final XOR.
    EXPECT_EQ(calc.compute(std::string(1000, '\0')), std::make_pair(0u, 0u));

    TUCRC64Calculator copy(calc);
    TUCRC64Calculator assigned;
    assigned = std::move(copy);
    EXPECT_EQ(assigned.compute("123456789"), calc.compute("123456789"));
    for (int i = 0; i < 256; ++i)
        ASSERT_EQ(assigned.tableEntry(quint8(i)), calc.tableEntry(quint8(i))) << i;
}

// Every kernel, at every length up to a few blocks and every alignment, on
// random data, equals one table lookup per byte straight from the definition.
TEST(TUCRC64Calculator, KernelsMatchByteLoop)
{
    using namespace brindle::crc64;
    TUCRC64Calculator const calc;
    std::mt19937_64 random(12345);
    std::vector<unsigned char> buffer(4096 + 64);
    for (auto& b : buffer)
        b = static_cast<unsigned char>(random());

    for (std::size_t length = 0; length <= 1200; ++length) {
        for (std::size_t offset : {0, 1, 3, 7, 8, 13}) {
            unsigned char const* p = buffer.data() + offset;
            quint64 expected = 0;
            for (std::size_t i = 0; i < length; ++i)
                expected = (expected >> 8) ^ calc.tableEntry((expected ^ p[i]) & 0xFF);
            ASSERT_EQ(updateSliced(0, p, length), expected) << length << "+" << offset;
            ASSERT_EQ(calc.update(0, p, length), expected) << length << "+" << offset;
#ifdef BRINDLE_CRC64_X86
            if (selectKernel() != Kernel::Sliced && length >= 128) {
                ASSERT_EQ(updateClmul(0, p, length), expected) << length << "+" << offset;
            }
            if (selectKernel() == Kernel::Vclmul && length >= 256) {
                ASSERT_EQ(updateVclmul(0, p, length), expected) << length << "+" << offset;
            }
#endif
        }
    }

    // Streaming in uneven pieces, from a running CRC, gives the one-piece result.
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
    std::string const text(reinterpret_cast<char const*>(buffer.data()), buffer.size());
    EXPECT_EQ(calc.compute(text), std::make_pair(quint32(whole >> 32), quint32(whole)));
}

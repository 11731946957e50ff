// TUCRC64Calculator::compute against the byte-at-a-time table loop and against
// ISA-L's crc64_iso_refl (same polynomial and bit order; ISA-L inverts the CRC
// before and after, so our value is ~crc64_iso_refl(~0, ...)).
#include <BrindleBaseCore/data/TUCRC64Calculator.h>

#include "data_ratios.h"

#include <benchmark/benchmark.h>
#include <isa-l/crc64.h>

#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

namespace {

constexpr std::size_t kSize = 1 << 20;

std::string const& buffer()
{
    static std::string const data = [] {
        std::string s(kSize, '\0');
        std::mt19937_64 random(7);
        for (char& c : s)
            c = char(random());
        return s;
    }();
    return data;
}

TUCRC64Calculator const& calculator()
{
    static TUCRC64Calculator const calc;
    return calc;
}

quint64 byteLoop(std::string const& s)
{
    TUCRC64Calculator const& calc = calculator();
    quint64 c = 0;
    for (unsigned char b : s)
        c = (c >> 8) ^ calc.tableEntry(static_cast<unsigned char>((c ^ b) & 0xFF));
    return c;
}

quint64 isal(std::string const& s)
{
    return ~crc64_iso_refl(~quint64(0), reinterpret_cast<unsigned char const*>(s.data()), s.size());
}

quint64 ours(std::string const& s)
{
    auto const [high, low] = calculator().compute(s);
    return (quint64(high) << 32) | low;
}

// The three agree on the check string and on every length of a random buffer.
void checkAgreement()
{
    std::string const& data = buffer();
    for (std::size_t length : {std::size_t(0), std::size_t(1), std::size_t(9), std::size_t(255),
                               std::size_t(4097), kSize}) {
        std::string const part = length == 9 ? std::string("123456789") : data.substr(0, length);
        if (ours(part) != byteLoop(part) || ours(part) != isal(part)) {
            std::fprintf(stderr, "CRC mismatch at length %zu\n", length);
            std::exit(1);
        }
    }
}

void BM_Ours(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(ours(buffer()));
    state.SetBytesProcessed(qint64(state.iterations()) * qint64(kSize));
}

void BM_IsaL(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(isal(buffer()));
    state.SetBytesProcessed(qint64(state.iterations()) * qint64(kSize));
}

void BM_ByteLoop(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(byteLoop(buffer()));
    state.SetBytesProcessed(qint64(state.iterations()) * qint64(kSize));
}

BENCHMARK(BM_Ours)->Repetitions(5);
BENCHMARK(BM_IsaL)->Repetitions(5);
BENCHMARK(BM_ByteLoop)->Repetitions(5);

} // namespace

int main(int argc, char** argv)
{
    checkAgreement();
    benchmark::Initialize(&argc, argv);
    data_bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatio("BM_Ours", "BM_IsaL", "CRC-64 vs ISA-L crc64_iso_refl (1 MiB)", 0.9);
    reporter.printRatio("BM_Ours", "BM_ByteLoop", "CRC-64 vs byte-at-a-time loop (1 MiB)", 8);
    benchmark::Shutdown();
    return 0;
}

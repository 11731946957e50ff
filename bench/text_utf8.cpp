// UTF-8 -> UT_String against QString::fromUtf8 on 16 MiB of ASCII and of mixed
// text (Latin accents and CJK), result allocation included on both sides.
// Both run in turn in each iteration; "speedup" is Qt's time over ours
// (target >= 1.0).
#include <BrindleBaseCore/text/UT_String.h>

#include "BenchReport.h"

#include <benchmark/benchmark.h>

#include <QtCore/QString>

#include <chrono>
#include <cstdio>
#include <random>
#include <string>

namespace {

constexpr std::size_t InputSize = 16u << 20;

std::string makeInput(bool mixed)
{
    static char const* const words[] = {"frame", "shot", "render", "layer", "comp", "plate"};
    static char const* const accented[] = {"caf\xC3\xA9",
                                           "\xC3\xBC"
                                           "ber",
                                           "ma\xC3\xB1"
                                           "ana",
                                           "gar\xC3\xA7on", "d\xC3\xA9j\xC3\xA0"};
    static char const* const cjk[] = {"\xE6\x97\xA5\xE6\x9C\xAC", "\xE4\xB8\xAD\xE6\x96\x87",
                                      "\xED\x95\x9C\xEA\xB5\xAD\xEC\x96\xB4",
                                      "\xE3\x83\x95\xE3\x83\xAC\xE3\x83\xBC\xE3\x83\xA0"};
    std::mt19937 random(42);
    std::string text;
    text.reserve(InputSize + 64);
    while (text.size() < InputSize) {
        unsigned pick = random() % 10;
        if (!mixed || pick < 4)
            text += words[random() % std::size(words)];
        else if (pick < 7)
            text += accented[random() % std::size(accented)];
        else
            text += cjk[random() % std::size(cjk)];
        text += random() % 8 == 0 ? '\n' : ' ';
    }
    return text;
}

void compare(benchmark::State& state, bool mixed)
{
    std::string const input = makeInput(mixed);
    using Clock = std::chrono::steady_clock;
    Clock::duration ours{}, qt{};
    for (auto _ : state) {
        auto t0 = Clock::now();
        {
            UT_String decoded(input.c_str());
            benchmark::DoNotOptimize(decoded.data());
        }
        auto t1 = Clock::now();
        {
            QString decoded = QString::fromUtf8(input.data(), qsizetype(input.size()));
            benchmark::DoNotOptimize(decoded.constData());
        }
        auto t2 = Clock::now();
        ours += t1 - t0;
        qt += t2 - t1;
        state.SetIterationTime(std::chrono::duration<double>(t1 - t0).count());
    }
    double oursSeconds = std::chrono::duration<double>(ours).count();
    double qtSeconds = std::chrono::duration<double>(qt).count();
    double mib = double(input.size()) / (1 << 20) * double(state.iterations());
    state.counters["ours_MiB/s"] = mib / oursSeconds;
    state.counters["qt_MiB/s"] = mib / qtSeconds;
    state.counters["speedup"] = qtSeconds / oursSeconds;
    bench_report::record(mixed ? "UTF-8 decode (mixed) vs QString::fromUtf8"
                               : "UTF-8 decode (ASCII) vs QString::fromUtf8",
                         mib / oursSeconds, mib / qtSeconds, "MiB/s", qtSeconds / oursSeconds, 1.0,
                         bench_report::Better::Higher);
}

void BM_DecodeAscii(benchmark::State& state)
{
    compare(state, false);
}
void BM_DecodeMixed(benchmark::State& state)
{
    compare(state, true);
}

} // namespace

BENCHMARK(BM_DecodeAscii)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_DecodeMixed)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK_MAIN();

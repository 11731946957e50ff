// Tokenizing speed of TULex over a generated 64 MB scene-like text (target:
// at least 500 MB/s).
#include <BrindleBaseCore/app/TULex.h>

#include "BenchReport.h"

#include <benchmark/benchmark.h>

#include <QtCore/QByteArray>

#include <random>

#include <time.h>

namespace {

QByteArray const& sceneText()
{
    static QByteArray const text = [] {
        std::mt19937 rng(7);
        QByteArray out;
        out.reserve(64 << 20);
        char line[256];
        int layer = 0;
        while (out.size() < (64 << 20)) {
            int n = std::snprintf(line, sizeof line,
                                  "layer \"Background %03d\" visible Y locked N opacity %.3f\n",
                                  ++layer, double(rng() % 1000) / 1000.0);
            out.append(line, n);
            for (int k = 0; k < 24; ++k) {
                n = std::snprintf(line, sizeof line,
                                  "  key %d position %.2f %.2f %d ease 0.33 0.66 image "
                                  "sequences/bg_%04u.png\n",
                                  k * 2, double(rng() % 200000) / 100.0 - 1000.0,
                                  double(rng() % 200000) / 100.0 - 1000.0, int(rng() % 100),
                                  unsigned(rng() % 10000));
                out.append(line, n);
            }
        }
        return out;
    }();
    return text;
}

void BM_LexScene(benchmark::State& state)
{
    QByteArray const& text = sceneText();
    size_t tokens = 0;
    // CPU time of this thread: on a shared machine the wall clock also counts
    // the time the scheduler gave to other processes.
    auto const cpuSeconds = [] {
        timespec now{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
        return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
    };
    double const start = cpuSeconds();
    for (auto _ : state) {
        TULex lex(text);
        while (!lex.eof()) {
            lex.get();
            ++tokens;
        }
        benchmark::DoNotOptimize(tokens);
    }
    double const took = cpuSeconds() - start;
    state.SetBytesProcessed(int64_t(state.iterations()) * text.size());
    bench_report::record("TULex tokenizing a 64 MB scene text",
                         double(text.size()) * double(state.iterations()) / took / 1e6, NAN, "MB/s",
                         NAN, 500, bench_report::Better::Higher);
    state.counters["tokens"] = double(tokens) / double(state.iterations());
}
BENCHMARK(BM_LexScene)->Unit(benchmark::kMillisecond)->MinTime(2.0);

} // namespace

BENCHMARK_MAIN();

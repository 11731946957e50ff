// UT_Path::SetPath and UT_RelPath assignment over a million realistic paths,
// in nanoseconds per path, beside QDir::cleanPath on the same texts.
#include <BrindleBaseCore/files/UT_Path.h>
#include <BrindleBaseCore/files/UT_RelPath.h>

#include "data_ratios.h"

#include <QtCore/QDir>
#include <QtCore/QStringList>

#include <benchmark/benchmark.h>

#include <random>

namespace {

constexpr int kPaths = 1000000;

// Production paths: absolute Linux paths, drive paths written with
// backslashes, shares, and relative paths with '.' and '..'.
QStringList const& paths()
{
    static QStringList const list = [] {
        QStringList out;
        out.reserve(kPaths);
        std::mt19937 random(11);
        for (int i = 0; i < kPaths; ++i) {
            unsigned const r = random();
            int const seq = int(r % 40), shot = int((r >> 8) % 300), version = int((r >> 16) % 30);
            switch (r % 10) {
            case 0:
                out << QStringLiteral(
                           "C:\\Users\\artist\\Documents\\show\\sq%1\\sh%2\\comp_v%3.xstage")
                           .arg(seq)
                           .arg(shot, 4, 10, QLatin1Char('0'))
                           .arg(version);
                break;
            case 1:
                out << QStringLiteral("//render-farm/projects/show/sq%1/sh%2/out/frame.%3.exr")
                           .arg(seq)
                           .arg(shot)
                           .arg(i % 2000, 4, 10, QLatin1Char('0'));
                break;
            case 2:
                out << QStringLiteral("./elements/../elements/sq%1/bg_v%2.tga")
                           .arg(seq)
                           .arg(version);
                break;
            default:
                out << QStringLiteral("/projects/show/sequences/sq%1/sh%2/render/v%3/comp.%4.exr")
                           .arg(seq, 3, 10, QLatin1Char('0'))
                           .arg(shot, 4, 10, QLatin1Char('0'))
                           .arg(version, 3, 10, QLatin1Char('0'))
                           .arg(i % 240, 4, 10, QLatin1Char('0'));
            }
        }
        return out;
    }();
    return list;
}

void BM_UT_Path_SetPath(benchmark::State& state)
{
    QStringList const& list = paths();
    UT_Path path(true);
    for (auto _ : state) {
        for (QString const& text : list)
            benchmark::DoNotOptimize(path.SetPath(text));
    }
    state.SetItemsProcessed(state.iterations() * list.size());
    state.counters["ns_per_path"] = benchmark::Counter(
        double(state.iterations() * list.size()),
        benchmark::Counter::kIsRate | benchmark::Counter::kInvert, benchmark::Counter::kIs1000);
}

void BM_UT_RelPath_Assign(benchmark::State& state)
{
    QStringList const& list = paths();
    UT_RelPath path;
    for (auto _ : state) {
        for (QString const& text : list) {
            path = text;
            benchmark::DoNotOptimize(path.ToString().size());
        }
    }
    state.SetItemsProcessed(state.iterations() * list.size());
}

void BM_QDir_cleanPath(benchmark::State& state)
{
    QStringList const& list = paths();
    for (auto _ : state) {
        for (QString const& text : list)
            benchmark::DoNotOptimize(QDir::cleanPath(text));
    }
    state.SetItemsProcessed(state.iterations() * list.size());
}

BENCHMARK(BM_UT_Path_SetPath)->Repetitions(5)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_UT_RelPath_Assign)->Repetitions(5)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_QDir_cleanPath)->Repetitions(5)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    paths();
    benchmark::Initialize(&argc, argv);
    data_bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatio("BM_UT_Path_SetPath", "BM_QDir_cleanPath",
                        "UT_Path::setPath vs QDir::cleanPath (1M paths)", 0);
    reporter.printRatio("BM_UT_RelPath_Assign", "BM_QDir_cleanPath",
                        "UT_RelPath assign vs QDir::cleanPath (1M paths)", 0);
    benchmark::Shutdown();
    return 0;
}

// UT_StringSortNatural::getOrder against sorting by QCollator sort keys
// (en_US, numeric mode, one key per item) on 200,000 file-like names. Both run
// in turn in each iteration; "speedup" is the collator's time over ours
// (target >= 3.0).
#include <BrindleBaseCore/text/UT_StringSortNatural.h>

#include "BenchReport.h"

#include <benchmark/benchmark.h>

#include <QtCore/QCollator>
#include <QtCore/QLocale>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <numeric>
#include <random>

namespace {

std::vector<QString> makeNames(std::size_t count)
{
    static char const* const stems[] = {"render", "Render",   "shot",     "SHOT",  "plate",
                                        "comp",   "bg_layer", "fg-layer", "matte", "cam"};
    static char const* const extensions[] = {"exr", "png", "dpx", "tif", "jpg"};
    std::mt19937 random(7);
    std::vector<QString> names;
    names.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        QString name;
        switch (random() % 3) {
        case 0: // seq010_sh0230_comp_v012.exr
            name = QStringLiteral("seq%1_sh%2_%3_v%4.%5")
                       .arg(random() % 40, 3, 10, QLatin1Char('0'))
                       .arg(random() % 2000, 4, 10, QLatin1Char('0'))
                       .arg(stems[random() % std::size(stems)])
                       .arg(random() % 30, 3, 10, QLatin1Char('0'))
                       .arg(extensions[random() % std::size(extensions)]);
            break;
        case 1: // render.1042.exr
            name = QStringLiteral("%1.%2.%3")
                       .arg(stems[random() % std::size(stems)])
                       .arg(random() % 100000)
                       .arg(extensions[random() % std::size(extensions)]);
            break;
        default: // Plate 12 take3 (final).dpx
            name = QStringLiteral("%1 %2 take%3 (%4).%5")
                       .arg(stems[random() % std::size(stems)])
                       .arg(random() % 500)
                       .arg(random() % 20)
                       .arg(random() % 2 ? "final" : "wip")
                       .arg(extensions[random() % std::size(extensions)]);
            break;
        }
        names.push_back(name);
    }
    return names;
}

std::vector<std::size_t> collatorOrder(QCollator const& collator, std::vector<QString> const& items)
{
    std::vector<QCollatorSortKey> keys;
    keys.reserve(items.size());
    for (QString const& item : items)
        keys.push_back(collator.sortKey(item));
    std::vector<std::size_t> order(items.size());
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(),
              [&](std::size_t a, std::size_t b) { return keys[a].compare(keys[b]) < 0; });
    return order;
}

void BM_NaturalOrder(benchmark::State& state)
{
    std::vector<QString> const names = makeNames(200000);
    QCollator collator{QLocale(QStringLiteral("en_US"))};
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    if (collator.compare(QStringLiteral("file2"), QStringLiteral("file10")) >= 0)
        std::printf(
            "warning: this Qt's QCollator ignores numeric mode; the peer is not comparable\n");

    using Clock = std::chrono::steady_clock;
    Clock::duration ours{}, peer{};
    for (auto _ : state) {
        auto t0 = Clock::now();
        std::vector<std::size_t> a = UT_StringSortNatural::getOrder(names);
        benchmark::DoNotOptimize(a.data());
        auto t1 = Clock::now();
        std::vector<std::size_t> b = collatorOrder(collator, names);
        benchmark::DoNotOptimize(b.data());
        auto t2 = Clock::now();
        ours += t1 - t0;
        peer += t2 - t1;
        state.SetIterationTime(std::chrono::duration<double>(t1 - t0).count());
    }
    double oursMs =
        std::chrono::duration<double, std::milli>(ours).count() / double(state.iterations());
    double peerMs =
        std::chrono::duration<double, std::milli>(peer).count() / double(state.iterations());
    state.counters["ours_ms"] = oursMs;
    state.counters["collator_ms"] = peerMs;
    state.counters["speedup"] = peerMs / oursMs;
    bench_report::record("natural order of 200000 names vs QCollator sort keys", oursMs, peerMs,
                         "ms", peerMs / oursMs, 3.0, bench_report::Better::Higher);
}

} // namespace

BENCHMARK(BM_NaturalOrder)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(3.0);
BENCHMARK_MAIN();

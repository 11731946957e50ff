// A periodic 10 ms timer over 2 s delivered through the event loop: mean
// lateness behind the nominal expiry times and jitter of the intervals.
#include <BrindleBaseCore/os/PL_Timer.h>

#include "BenchReport.h"

#include <benchmark/benchmark.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QEventLoop>
#include <QtCore/QObject>
#include <QtCore/QTimer>

#include <cmath>
#include <vector>

namespace {

class StampingTimer : public PL_Timer
{
public:
    QElapsedTimer clock;
    std::vector<double> stamps; // ms since start
    void TimerNotify() override { stamps.push_back(double(clock.nsecsElapsed()) / 1e6); }
};

void PeriodicTimer10ms(benchmark::State& state)
{
    QObject window;
    PL_TimerManager::SetUIThread(&window);
    PL_TimerManager::InstallIdleHook();
    double const period = 10.0;
    double lateness = 0;
    double jitter = 0;
    double count = 0;
    for (auto _ : state) {
        StampingTimer timer;
        QEventLoop loop;
        QTimer::singleShot(2000, &loop, &QEventLoop::quit);
        timer.clock.start();
        timer.StartTimer(10, false, false);
        loop.exec();
        timer.StopTimer();
        double late = 0;
        for (double t : timer.stamps)
            late += t - period * std::floor(t / period);
        std::vector<double> intervals;
        for (size_t i = 1; i < timer.stamps.size(); ++i)
            intervals.push_back(timer.stamps[i] - timer.stamps[i - 1]);
        double mean = 0;
        for (double v : intervals)
            mean += v;
        mean /= double(std::max<size_t>(1, intervals.size()));
        double var = 0;
        for (double v : intervals)
            var += (v - mean) * (v - mean);
        var /= double(std::max<size_t>(1, intervals.size()));
        count = double(timer.stamps.size());
        lateness = late / std::max(1.0, count);
        jitter = std::sqrt(var);
    }
    PL_TimerManager::SetUIThread(nullptr);
    state.counters["notifications"] = count;
    state.counters["mean_lateness_ms"] = lateness;
    state.counters["jitter_ms"] = jitter;
    bench_report::record("10 ms periodic timer: mean lateness", lateness, NAN, "ms", NAN, 0,
                         bench_report::Better::Lower);
    bench_report::record("10 ms periodic timer: interval jitter", jitter, NAN, "ms", NAN, 0,
                         bench_report::Better::Lower);
}
BENCHMARK(PeriodicTimer10ms)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

// Lock primitives against their peers: each benchmark times ours and the peer in
// the same process and reports ours_ns, peer_ns, ratio (ours/peer) and target.
#include <BrindleBaseCore/os/PL_Mutex.h>
#include <BrindleBaseCore/os/TUSema.h>

#include "BenchReport.h"

#include <benchmark/benchmark.h>

#include <QtCore/QSemaphore>

#include <oneapi/tbb/spin_mutex.h>
#include <oneapi/tbb/spin_rw_mutex.h>

#include <algorithm>
#include <chrono>
#include <mutex>
#include <thread>
#include <utility>

namespace {

// Nanoseconds per call of `op`, best of five runs of `count` calls.
template <class Op>
double nsPerOp(Op&& op, long count)
{
    double best = 1e300;
    for (int run = 0; run < 5; ++run) {
        auto const start = std::chrono::steady_clock::now();
        for (long i = 0; i < count; ++i)
            op();
        std::chrono::duration<double, std::nano> const took =
            std::chrono::steady_clock::now() - start;
        best = std::min(best, took.count() / double(count));
    }
    return best;
}

// Ours and the peer, each the best of rounds that alternate between the two so
// that a change of machine load hits both alike: {ours, peer}.
template <class Ours, class Peer>
std::pair<double, double> compare(Ours&& ours, Peer&& peer, long count)
{
    std::pair<double, double> best{1e300, 1e300};
    for (int round = 0; round < 4; ++round) {
        best.first = std::min(best.first, nsPerOp(ours, count));
        best.second = std::min(best.second, nsPerOp(peer, count));
    }
    return best;
}

// Nanoseconds per operation of `op` run by two threads at once, best of five.
template <class Op>
double nsPerOpOnTwoThreads(Op&& op, long count)
{
    return nsPerOp(
               [&] {
                   std::thread other([&] {
                       for (long i = 0; i < count; ++i)
                           op();
                   });
                   for (long i = 0; i < count; ++i)
                       op();
                   other.join();
               },
               1) /
           double(2 * count);
}

void report(benchmark::State& state, char const* name, std::pair<double, double> times,
            double target)
{
    auto const [ours, peer] = times;
    state.counters["ours_ns"] = ours;
    state.counters["peer_ns"] = peer;
    state.counters["ratio"] = ours / peer;
    if (target > 0)
        state.counters["target"] = target;
    bench_report::record(name, ours, peer, "ns/op", ours / peer, target,
                         bench_report::Better::Lower);
}

constexpr long kOps = 1 << 21;

void SpinMutex_vs_TbbSpinMutex(benchmark::State& state)
{
    PL_SpinMutex ours;
    tbb::spin_mutex peer;
    auto const lockOurs = [&] {
        PL_MutexScopeLock<PL_SpinMutex> guard(ours);
        benchmark::ClobberMemory();
    };
    auto const lockPeer = [&] {
        tbb::spin_mutex::scoped_lock guard(peer);
        benchmark::ClobberMemory();
    };
    for (auto _ : state)
        lockOurs();
    report(state, "spin mutex lock/unlock vs tbb::spin_mutex",
           compare(lockOurs, lockPeer, kOps / 4), 1.3);
}
BENCHMARK(SpinMutex_vs_TbbSpinMutex);

template <bool Write>
void SpinRwMutex_vs_TbbSpinRwMutex(benchmark::State& state)
{
    PL_SpinRwMutex ours;
    tbb::spin_rw_mutex peer;
    auto const lockOurs = [&] {
        PL_SpinRwMutex::ScopeLock guard(ours, Write);
        benchmark::ClobberMemory();
    };
    auto const lockPeer = [&] {
        tbb::spin_rw_mutex::scoped_lock guard(peer, Write);
        benchmark::ClobberMemory();
    };
    for (auto _ : state)
        lockOurs();
    report(state,
           Write ? "spin rw mutex writer vs tbb::spin_rw_mutex"
                 : "spin rw mutex reader vs tbb::spin_rw_mutex",
           compare(lockOurs, lockPeer, kOps / 4), 1.3);
}
BENCHMARK(SpinRwMutex_vs_TbbSpinRwMutex<false>)->Name("SpinRwMutex_vs_TbbSpinRwMutex/reader");
BENCHMARK(SpinRwMutex_vs_TbbSpinRwMutex<true>)->Name("SpinRwMutex_vs_TbbSpinRwMutex/writer");

void ContendedCounter_SpinMutex_vs_StdMutex(benchmark::State& state)
{
    PL_SpinMutex ours;
    std::mutex peer;
    long counter = 0;
    auto const addOurs = [&] {
        PL_MutexScopeLock<PL_SpinMutex> guard(ours);
        ++counter;
    };
    auto const addPeer = [&] {
        std::lock_guard guard(peer);
        ++counter;
    };
    for (auto _ : state)
        addOurs();
    report(state, "contended counter, spin mutex vs std::mutex",
           {nsPerOpOnTwoThreads(addOurs, kOps / 4), nsPerOpOnTwoThreads(addPeer, kOps / 4)}, 1.0);
    benchmark::DoNotOptimize(counter);
}
BENCHMARK(ContendedCounter_SpinMutex_vs_StdMutex);

// Round trips between two threads handing a unit back and forth.
template <class Sema>
double pingPongNs(long rounds)
{
    Sema ping;
    Sema pong;
    return nsPerOp(
               [&] {
                   std::thread other([&] {
                       for (long i = 0; i < rounds; ++i) {
                           ping.acquire();
                           pong.release();
                       }
                   });
                   for (long i = 0; i < rounds; ++i) {
                       ping.release();
                       pong.acquire();
                   }
                   other.join();
               },
               1) /
           double(rounds);
}

void PingPong_TUSema_vs_QSemaphore(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(pingPongNs<TUSema>(1000));
    report(state, "semaphore ping-pong vs QSemaphore",
           {pingPongNs<TUSema>(20000), pingPongNs<QSemaphore>(20000)}, 0);
}
BENCHMARK(PingPong_TUSema_vs_QSemaphore)->Iterations(3)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();

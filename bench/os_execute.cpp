// Child processes and pipes.
//
// Spawn: OSW_Execute::execm of /bin/true (start and wait) against a bare
// posix_spawn + waitpid and against QProcess start + waitForFinished. The
// three run interleaved in one loop, in rotating order, and the medians are
// compared: ratio = ours / the faster peer, target <= 1.05.
//
// Pipe: 64-byte messages sent back and forth between two threads through two
// named pipes; reported as messages per second.
#include <BrindleBaseCore/os/OSW_Execute.h>

#include <benchmark/benchmark.h>

#include <QtCore/QProcess>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace {

using Clock = std::chrono::steady_clock;

double median(std::vector<double> values)
{
    std::nth_element(values.begin(), values.begin() + qsizetype(values.size() / 2), values.end());
    return values[values.size() / 2];
}

void runOurs()
{
    OSW_Execute exec;
    if (exec.execm(QStringList{QStringLiteral("/bin/true")}) != 0)
        std::abort();
}

void runBareSpawn()
{
    char program[] = "/bin/true";
    char* argv[] = {program, nullptr};
    pid_t pid = 0;
    int status = 0;
    if (posix_spawn(&pid, program, nullptr, nullptr, argv, environ) != 0 ||
        waitpid(pid, &status, 0) != pid)
        std::abort();
}

void runQProcess()
{
    QProcess process;
    process.start(QStringLiteral("/bin/true"), {});
    if (!process.waitForFinished())
        std::abort();
}

void BM_SpawnAndWait(benchmark::State& state)
{
    void (*const runners[3])() = {runOurs, runBareSpawn, runQProcess};
    std::vector<double> samples[3];
    int round = 0;
    for (auto _ : state) {
        for (int k = 0; k < 3; ++k) {
            int const which = (round + k) % 3;
            auto const start = Clock::now();
            runners[which]();
            samples[which].push_back(
                std::chrono::duration<double, std::micro>(Clock::now() - start).count());
        }
        ++round;
    }
    double const ours = median(samples[0]);
    double const spawn = median(samples[1]);
    double const qprocess = median(samples[2]);
    double const ratio = ours / std::min(spawn, qprocess);
    state.counters["ours_us"] = ours;
    state.counters["posix_spawn_us"] = spawn;
    state.counters["QProcess_us"] = qprocess;
    state.counters["ratio"] = ratio;
    std::printf("spawn+wait median: ours %.1f us, posix_spawn %.1f us, QProcess %.1f us; "
                "ratio to the faster %.3f (target <= 1.05: %s)\n",
                ours, spawn, qprocess, ratio, ratio <= 1.05 ? "pass" : "FAIL");
}
BENCHMARK(BM_SpawnAndWait)->Iterations(400)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();

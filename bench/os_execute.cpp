// Child processes and pipes.
//
// Spawn: OSW_Execute::execm of /bin/true (start and wait) against a bare
// posix_spawn + waitpid and against QProcess start + waitForFinished. The
// three run interleaved in one loop, in rotating order, and the medians are
// compared: ratio = ours / the faster peer, target <= 1.05.
//
// Pipe: 64-byte messages sent back and forth between two threads through two
// named pipes; reported as messages per second.
#include <BrindleBaseCore/files/PL_FileSpec.h>
#include <BrindleBaseCore/os/OSW_Execute.h>
#include <BrindleBaseCore/os/OSW_Pipe.h>

#include "BenchReport.h"

#include <benchmark/benchmark.h>

#include <QtCore/QProcess>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
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
    std::printf("spawn+wait median: posix_spawn %.1f us, QProcess %.1f us\n", spawn, qprocess);
    bench_report::record("execm spawn+wait vs faster of posix_spawn/QProcess", ours,
                         std::min(spawn, qprocess), "us", ratio, 1.05, bench_report::Better::Lower);
}
BENCHMARK(BM_SpawnAndWait)->Iterations(400)->Unit(benchmark::kMicrosecond);

PL_FileSpec pipeName(char const* name)
{
    return PL_FileSpec(UT_String(
        QStringLiteral("bench_%1_%2").arg(QLatin1String(name)).arg(::getpid()).toStdU16String()));
}

void BM_PipeRoundTrip64(benchmark::State& state)
{
    PL_FileSpec const ping = pipeName("ping"), pong = pipeName("pong");
    OSW_Pipe pingServer, pongServer, pingClient, pongClient;
    if (!pingServer.createNamedPipe(ping, OSW_Pipe::Read) ||
        !pongServer.createNamedPipe(pong, OSW_Pipe::Write)) {
        state.SkipWithError("cannot create the pipes");
        return;
    }
    std::thread echo([&] {
        if (!pingServer.openNamedPipe(ping, OSW_Pipe::Read) ||
            !pongServer.openNamedPipe(pong, OSW_Pipe::Write))
            return;
        char message[64];
        int n;
        while ((n = pingServer.readData(message, sizeof message)) > 0)
            pongServer.writeData(message, quint64(n));
    });
    pingClient.openNamedPipe(ping, OSW_Pipe::Write);
    pongClient.openNamedPipe(pong, OSW_Pipe::Read);
    char message[64] = "a 64-byte message";
    for (auto _ : state) {
        pingClient.writeData(message, sizeof message);
        if (pongClient.readData(message, sizeof message) != int(sizeof message))
            state.SkipWithError("short read");
    }
    // A last empty message stops the echo thread.
    pingClient.writeData(message, 0);
    echo.join();
    state.counters["messages_per_s"] =
        benchmark::Counter(double(state.iterations()) * 2, benchmark::Counter::kIsRate);
}
BENCHMARK(BM_PipeRoundTrip64)->UseRealTime();

} // namespace

BENCHMARK_MAIN();

// The action log against a plain write(2) of the same line, and the cost of
// application start-up.
//
// Target: UT_LogIO::logAction (time stamp, indent, UTF-8, one unbuffered write
// per line) reaches at least 0.8x the lines per second of write(2) of the
// finished line.
#include <BrindleBaseCore/app/BAPP_Application.h>
#include <BrindleBaseCore/app/BAPP_SpecialFolders.h>
#include <BrindleBaseCore/app/UT_Log.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QTemporaryDir>

#include "BenchReport.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace {

QTemporaryDir* g_dir = nullptr;
char g_program[] = "bench_app_log";
QString const g_action = QStringLiteral("Open /projects/scene_042/layout.xml");

void logAction(benchmark::State& state)
{
    UT_LogIO::create(g_dir->path() + "/ours");
    for (auto _ : state)
        benchmark::DoNotOptimize(UT_LogIO::logAction(g_action));
    state.SetItemsProcessed(state.iterations());
    UT_LogIO::close();
}

void plainWrite(benchmark::State& state)
{
    QByteArray const line = "2026-01-01 12:00:00;ACTION;" + g_action.toUtf8() + "\n";
    QByteArray const path = QFile::encodeName(g_dir->path() + "/plain.log");
    int fd = ::open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    for (auto _ : state)
        benchmark::DoNotOptimize(::write(fd, line.constData(), size_t(line.size())));
    state.SetItemsProcessed(state.iterations());
    ::close(fd);
}

// Construction and destruction of the application object: arguments, the
// French translators, main thread, plug-in path (the folders are computed by
// the first start-up only).
void startUp(benchmark::State& state)
{
    for (auto _ : state) {
        char lang[] = "-lang", fr[] = "fr", noLogo[] = "-nologo";
        char* argv[] = {g_program, lang, fr, noLogo, nullptr};
        int argc = 4;
        BAPP_Arguments arguments = BAPP_Application::parseArguments(argc, argv);
        BAPP_CoreApplication app(argc, argv, arguments);
        benchmark::DoNotOptimize(app.translators().size());
    }
}

void specialFolders(benchmark::State& state)
{
    QString const program = QFile::symLinkTarget(QStringLiteral("/proc/self/exe"));
    for (auto _ : state) {
        BAPP_SpecialFoldersImpl folders(program, true);
        benchmark::DoNotOptimize(folders.lang());
    }
}

// Lines per second of each way of writing, measured in alternating rounds on
// the same machine state; the best round of each is kept, so that the ratio
// does not depend on what else the machine was doing at one moment.
void compareWithWrite()
{
    constexpr int linesPerRound = 50000;
    QByteArray const line = "2026-01-01 12:00:00;ACTION;" + g_action.toUtf8() + "\n";
    QByteArray const path = QFile::encodeName(g_dir->path() + "/plain-rounds.log");
    int fd = ::open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    UT_LogIO::create(g_dir->path() + "/ours-rounds");
    double ours = 0, peer = 0;
    QElapsedTimer timer;
    for (int round = 0; round < 10; ++round) {
        timer.start();
        for (int i = 0; i < linesPerRound; ++i)
            benchmark::DoNotOptimize(UT_LogIO::logAction(g_action));
        ours = std::max(ours, linesPerRound * 1e9 / double(timer.nsecsElapsed()));
        timer.start();
        for (int i = 0; i < linesPerRound; ++i)
            benchmark::DoNotOptimize(::write(fd, line.constData(), size_t(line.size())));
        peer = std::max(peer, linesPerRound * 1e9 / double(timer.nsecsElapsed()));
    }
    UT_LogIO::close();
    ::close(fd);
    bench_report::record("logAction lines vs write(2)", ours, peer, "lines/s", ours / peer, 0.8,
                         bench_report::Better::Higher);
}

} // namespace

BENCHMARK(logAction)->MinTime(1.0);
BENCHMARK(plainWrite)->MinTime(1.0);
BENCHMARK(startUp)->Unit(benchmark::kMicrosecond);
BENCHMARK(specialFolders)->Unit(benchmark::kMicrosecond);

int main(int argc, char** argv)
{
    QTemporaryDir dir;
    g_dir = &dir;

    // The first start-up of the process also computes the special folders.
    QElapsedTimer timer;
    timer.start();
    {
        char lang[] = "-lang", fr[] = "fr", noLogo[] = "-nologo";
        char* startArgv[] = {g_program, lang, fr, noLogo, nullptr};
        int startArgc = 4;
        BAPP_Arguments arguments = BAPP_Application::parseArguments(startArgc, startArgv);
        BAPP_CoreApplication app(startArgc, startArgv, arguments);
        double const us = double(timer.nsecsElapsed()) / 1000.0;
        std::printf("first start-up loaded %zu translator(s)\n", app.translators().size());
        bench_report::record("first start-up of BAPP_CoreApplication (-lang fr)", us, NAN, "us",
                             NAN, 0, bench_report::Better::Lower);
    }

    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    compareWithWrite();
    benchmark::Shutdown();
    return 0;
}

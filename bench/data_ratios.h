// Shared by the data benchmarks: runs the benchmarks and keeps each one's CPU
// time per iteration so that main() can print ours/peer speed ratios.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace data_bench {

class RatioReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(std::vector<Run> const& runs) override
    {
        for (Run const& run : runs)
            m_times[run.benchmark_name()] = run.GetAdjustedCPUTime();
        ConsoleReporter::ReportRuns(runs);
    }

    // How many times faster `ours` ran than `peer`, printed with its target.
    void printRatio(std::string const& ours, std::string const& peer, char const* label,
                    double target)
    {
        double const mine = m_times[ours], theirs = m_times[peer];
        if (mine <= 0 || theirs <= 0)
            return;
        double const ratio = theirs / mine;
        if (target > 0)
            std::printf("speed ratio ours/%-40s %7.2fx  (target >= %gx: %s)\n", label, ratio,
                        target, ratio >= target ? "pass" : "FAIL");
        else
            std::printf("speed ratio ours/%-40s %7.2fx  (reference)\n", label, ratio);
    }

private:
    std::map<std::string, double> m_times;
};

} // namespace data_bench

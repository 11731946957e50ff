// Shared by the data benchmarks: runs the benchmarks and keeps each one's best
// CPU time per iteration over its repetitions, so that main() can report
// ours/peer speed ratios that a slow spell of a shared machine does not decide.
#pragma once

#include "BenchReport.h"

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace data_bench {

class RatioReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(std::vector<Run> const& runs) override
    {
        for (Run const& run : runs) {
            if (run.run_type != Run::RT_Iteration || run.iterations == 0)
                continue;
            double const us =
                run.GetAdjustedCPUTime() / benchmark::GetTimeUnitMultiplier(run.time_unit) * 1e6;
            auto [it, added] = m_times.emplace(run.run_name.function_name, us);
            if (!added && us < it->second)
                it->second = us;
        }
        ConsoleReporter::ReportRuns(runs);
    }

    // How many times faster `ours` ran than `peer` (CPU microseconds per
    // iteration), recorded with its target (0: reference only).
    void printRatio(std::string const& ours, std::string const& peer, char const* label,
                    double target)
    {
        double const mine = m_times[ours], theirs = m_times[peer];
        if (mine <= 0 || theirs <= 0)
            return;
        bench_report::record(label, mine, theirs, "us/iter", theirs / mine, target,
                             bench_report::Better::Higher);
    }

private:
    std::map<std::string, double> m_times;
};

} // namespace data_bench

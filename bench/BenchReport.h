// One way for every benchmark to report a comparison with its peer (or a bare
// figure against a fixed target): a uniform line on standard output and, when
// the environment variable BRINDLE_BENCH_RECORDS names a file, one JSON object
// per line appended to it, read by scripts/bench-report.sh.
//
// A benchmark function may be run several times while Google Benchmark sizes
// its iteration count, so the same name can be recorded more than once: the
// last record of a name is the one that counts.
#pragma once

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace bench_report {

enum class Better
{
    Higher,
    Lower
};

namespace detail {

inline std::string number(double value)
{
    if (!std::isfinite(value))
        return "null";
    char text[64];
    std::snprintf(text, sizeof text, "%.9g", value);
    return text;
}

inline std::string quoted(char const* text)
{
    std::string out = "\"";
    for (char const* c = text; *c; ++c) {
        if (*c == '"' || *c == '\\')
            out += '\\';
        out += *c >= 0 && *c < 0x20 ? ' ' : *c;
    }
    return out + '"';
}

} // namespace detail

// Records one comparison. `ours` and `peer` are in `unit`; `peer` is NaN when
// there is none, and `ratio` is then ignored. `target` applies to the ratio
// when there is a peer and to `ours` otherwise; 0 means "no target, for
// reference only". `better` says which way the ratio (or figure) should go.
inline void record(char const* name, double ours, double peer, char const* unit, double ratio,
                   double target, Better better)
{
    bool const hasPeer = std::isfinite(peer);
    if (!hasPeer)
        ratio = NAN;
    double const value = hasPeer ? ratio : ours;
    bool const higher = better == Better::Higher;
    char verdict[64] = "reference";
    if (target > 0) {
        bool const pass = higher ? value >= target : value <= target;
        std::snprintf(verdict, sizeof verdict, "target %s %g: %s", higher ? ">=" : "<=", target,
                      pass ? "pass" : "FAIL");
    }
    if (hasPeer)
        std::printf("comparison %-44s ours %10.4g %-8s peer %10.4g  ratio %6.3f  (%s)\n", name,
                    ours, unit, peer, ratio, verdict);
    else
        std::printf("figure     %-44s ours %10.4g %-8s (%s)\n", name, ours, unit, verdict);
    std::fflush(stdout);

    char const* path = std::getenv("BRINDLE_BENCH_RECORDS");
    if (!path || !*path)
        return;
    std::string const line =
        "{\"name\":" + detail::quoted(name) + ",\"ours\":" + detail::number(ours) +
        ",\"peer\":" + detail::number(peer) + ",\"unit\":" + detail::quoted(unit) +
        ",\"ratio\":" + detail::number(ratio) +
        ",\"target\":" + detail::number(target > 0 ? target : NAN) +
        ",\"higher_is_better\":" + (higher ? "true" : "false") + "}\n";
    if (std::FILE* file = std::fopen(path, "a")) {
        std::fputs(line.c_str(), file);
        std::fclose(file);
    }
}

} // namespace bench_report

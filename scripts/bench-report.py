#!/usr/bin/env python3
"""Turns the output of the benchmark runs of scripts/bench-report.sh into
bench/REPORT.md (a table of every comparison) and bench/ratios.svg (a bar chart
of how far each figure is from its target).

For each benchmark NAME the run directory holds NAME.records (one JSON object
per comparison, written by bench/BenchReport.h), NAME.json (Google Benchmark's
JSON output) and NAME.status (the exit status). Exits 1 when a benchmark failed,
reported an error or recorded no comparison; the report is written anyway.
"""

import argparse
import datetime
import json
import math
import os
import platform
import subprocess
import sys
from xml.sax.saxutils import escape

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


def read_records(path):
    """The comparisons of one benchmark, in first-recorded order; a name
    recorded again (a benchmark function run more than once) keeps its last
    figures."""
    records = {}
    if os.path.exists(path):
        with open(path, encoding="utf-8") as file:
            for line in file:
                if line.strip():
                    record = json.loads(line)
                    records[record["name"]] = record
    return list(records.values())


def benchmark_errors(path):
    """Messages of the Google Benchmark entries that reported an error, or a
    complaint when the JSON output is missing or unreadable."""
    try:
        with open(path, encoding="utf-8") as file:
            data = json.load(file)
    except (OSError, ValueError) as error:
        return ["no readable JSON output (%s)" % error]
    return [
        "%s: %s" % (entry.get("name"), entry.get("error_message", "error"))
        for entry in data.get("benchmarks", [])
        if entry.get("error_occurred")
    ]


def score(record):
    """How far the figure is from its target, as a factor where 1 is exactly
    on target and above 1 is better; None when there is no target."""
    target = record.get("target")
    value = record["ratio"] if record.get("peer") is not None else record["ours"]
    if not target or value is None or value <= 0:
        return None
    return value / target if record["higher_is_better"] else target / value


def fmt(value):
    if value is None:
        return "–"
    if value == 0 or 0.01 <= abs(value) < 1e6:
        return "%.4g" % value if abs(value) < 1000 else "%.0f" % value
    return "%.3g" % value


def target_text(record):
    target = record.get("target")
    if not target:
        return "–"
    sign = "≥" if record["higher_is_better"] else "≤"
    if record.get("peer") is not None:
        return "%s %g×" % (sign, target)
    return "%s %g %s" % (sign, target, record["unit"])


def result_text(record):
    s = score(record)
    if s is None:
        return "reference"
    return "pass" if s >= 1 else "**FAIL**"


def machine():
    model = "unknown"
    try:
        with open("/proc/cpuinfo", encoding="utf-8") as file:
            for line in file:
                if line.startswith("model name"):
                    model = line.split(":", 1)[1].strip()
                    break
    except OSError:
        pass
    return model, os.cpu_count() or 0


def git_commit():
    try:
        return subprocess.run(
            ["git", "-C", ROOT, "rev-parse", "--short", "HEAD"],
            capture_output=True, text=True, check=True).stdout.strip()
    except (OSError, subprocess.CalledProcessError):
        return "unknown"


def write_markdown(path, args, rows, problems):
    model, cpus = machine()
    now = datetime.datetime.now(datetime.timezone.utc)
    scored = [s for s in (score(r) for _, r in rows) if s is not None]
    passed = sum(1 for s in scored if s >= 1)
    out = [
        "# Benchmark report",
        "",
        "Written by `scripts/bench-report.sh` (every `bench_*` of the release preset, "
        "Google Benchmark minimum time %s s per benchmark unless the benchmark sets its own; "
        "the repetitions of a file's benchmarks run interleaved in random order, so that a "
        "slow spell of the machine falls on ours and the peer alike)."
        % args.min_time,
        "",
        "- Date: %s UTC, commit %s" % (now.strftime("%Y-%m-%d %H:%M"), git_commit()),
        "- Machine: %s, %d logical CPUs (`nproc`), %s %s" % (
            model, cpus, platform.system(), platform.release()),
        "- Load average (1/5/15 min): %s before the runs, %s after. The machine is "
        "shared, so figures measured against a peer in the same process (the ratios) "
        "are steadier than the absolute ones." % (args.load_before, args.load_after),
        "- Duration: %d s in all, of which %d s running the benchmarks" % (
            args.elapsed, args.run_elapsed),
        "- Result: %d of %d targets met" % (passed, len(scored)),
        "",
        "Ratio: how many times faster ours is (targets with ≥), or ours' time over the "
        "peer's (targets with ≤). A figure without a peer is compared with its target "
        "directly. ![ratios to target](ratios.svg)",
        "",
        "| Benchmark | Comparison | Ours | Peer | Unit | Ratio | Target | Result |",
        "|---|---|---:|---:|---|---:|---|---|",
    ]
    for bench, r in rows:
        out.append("| %s | %s | %s | %s | %s | %s | %s | %s |" % (
            bench, r["name"].replace("|", "\\|"), fmt(r["ours"]), fmt(r.get("peer")),
            r["unit"], fmt(r.get("ratio")), target_text(r), result_text(r)))
    if problems:
        out += ["", "## Failures", ""] + ["- %s" % p for p in problems]
    with open(path, "w", encoding="utf-8") as file:
        file.write("\n".join(out) + "\n")


def write_svg(path, rows):
    """Horizontal bars on a log scale around the target line (factor 1): a bar
    to the right (green) meets its target by that factor, to the left (red)
    misses it."""
    bars = [(r["name"], score(r)) for _, r in rows if score(r) is not None]
    label_w, plot_w, row_h, top = 430, 500, 22, 56
    height = top + row_h * len(bars) + 40
    span = max([2.0] + [max(s, 1 / s) for _, s in bars])
    span = 2 ** math.ceil(math.log2(span))
    x0 = label_w + plot_w / 2

    def x(factor):
        return x0 + math.log(factor) / math.log(span) * (plot_w / 2 - 10)

    out = [
        '<svg xmlns="http://www.w3.org/2000/svg" width="%d" height="%d" '
        'font-family="sans-serif" font-size="12">' % (label_w + plot_w + 70, height),
        '<rect width="100%" height="100%" fill="white"/>',
        '<text x="10" y="20" font-size="14" font-weight="bold">Figure relative to its '
        'target (log scale; right of the line meets it)</text>',
        '<text x="10" y="38" fill="#555">ratio / target for targets with ≥, target / ratio '
        'for targets with ≤ (a figure without a peer stands for the ratio)</text>',
    ]
    tick = 1 / span
    while tick <= span * 1.001:
        out.append('<line x1="%.1f" y1="%d" x2="%.1f" y2="%d" stroke="#ddd"/>' % (
            x(tick), top - 5, x(tick), height - 30))
        out.append('<text x="%.1f" y="%d" text-anchor="middle" fill="#555">%s×</text>' % (
            x(tick), height - 15, "%g" % tick if tick >= 1 else "1/%g" % (1 / tick)))
        tick *= 2
    for i, (name, s) in enumerate(bars):
        y = top + i * row_h
        left, right = sorted((x0, x(s)))
        colour = "#2e9d3a" if s >= 1 else "#d03030"
        out.append('<text x="%d" y="%d" text-anchor="end">%s</text>' % (
            label_w - 8, y + 15, escape(name)))
        out.append('<rect x="%.1f" y="%d" width="%.1f" height="%d" fill="%s"/>' % (
            left, y + 3, max(right - left, 1), row_h - 6, colour))
        anchor, tx = ("start", right + 4) if s >= 1 else ("end", left - 4)
        out.append('<text x="%.1f" y="%d" text-anchor="%s">%.2f</text>' % (
            tx, y + 15, anchor, s))
    out.append('<line x1="%.1f" y1="%d" x2="%.1f" y2="%d" stroke="black" '
               'stroke-width="2"/>' % (x0, top - 8, x0, height - 30))
    out.append("</svg>")
    with open(path, "w", encoding="utf-8") as file:
        file.write("\n".join(out) + "\n")


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--dir", required=True, help="directory of the run outputs")
    parser.add_argument("--elapsed", type=int, default=0)
    parser.add_argument("--run-elapsed", type=int, default=0)
    parser.add_argument("--load-before", default="?")
    parser.add_argument("--load-after", default="?")
    parser.add_argument("--min-time", default="?")
    parser.add_argument("benches", nargs="+")
    args = parser.parse_args()

    rows, problems = [], []
    for bench in args.benches:
        with open(os.path.join(args.dir, bench + ".status"), encoding="utf-8") as file:
            status = int(file.read().strip() or "1")
        if status != 0:
            problems.append("%s exited with status %d" % (bench, status))
        problems += ["%s: %s" % (bench, e)
                     for e in benchmark_errors(os.path.join(args.dir, bench + ".json"))]
        records = read_records(os.path.join(args.dir, bench + ".records"))
        if not records:
            problems.append("%s recorded no comparison" % bench)
        rows += [(bench, r) for r in records]

    write_markdown(os.path.join(ROOT, "bench", "REPORT.md"), args, rows, problems)
    write_svg(os.path.join(ROOT, "bench", "ratios.svg"), rows)
    for problem in problems:
        print("bench-report: %s" % problem, file=sys.stderr)
    print("bench-report: wrote bench/REPORT.md and bench/ratios.svg (%d comparisons)"
          % len(rows), file=sys.stderr)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())

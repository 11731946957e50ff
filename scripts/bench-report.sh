#!/usr/bin/env bash
# Builds the benchmarks of the release preset, runs every one of them with a
# short minimum time, their repetitions interleaved at random, and writes
# bench/REPORT.md and bench/ratios.svg.
# Usage: scripts/bench-report.sh [MIN_TIME_SECONDS]   (default 0.1)
# Exits non-zero when a benchmark fails, reports an error or records nothing.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
min_time=${1:-0.1}
start=$(date +%s)

benches=()
for src in bench/*.cpp; do
    benches+=("bench_$(basename "$src" .cpp)")
done
targets=()
for bench in "${benches[@]}"; do
    targets+=(--target "$bench")
done
bash scripts/build.sh release "${targets[@]}"

out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
load_before=$(cut -d' ' -f1-3 /proc/loadavg)
run_start=$(date +%s)
for bench in "${benches[@]}"; do
    echo "== $bench" >&2
    status=0
    BRINDLE_BENCH_RECORDS="$out/$bench.records" \
        "build/release/bench/$bench" --benchmark_min_time="$min_time" \
        --benchmark_enable_random_interleaving=true \
        --benchmark_out="$out/$bench.json" --benchmark_out_format=json \
        >"$out/$bench.log" 2>&1 || status=$?
    echo "$status" >"$out/$bench.status"
    grep -E '^(comparison|figure) ' "$out/$bench.log" >&2 || true
    if [ "$status" -ne 0 ]; then
        echo "$bench exited with status $status; its output:" >&2
        tail -n 20 "$out/$bench.log" >&2
    fi
done
load_after=$(cut -d' ' -f1-3 /proc/loadavg)

python3 scripts/bench-report.py --dir "$out" --elapsed "$(($(date +%s) - start))" \
    --run-elapsed "$(($(date +%s) - run_start))" \
    --load-before "$load_before" --load-after "$load_after" --min-time "$min_time" \
    "${benches[@]}"

#!/usr/bin/env bash
# Short smoke run of every libFuzzer target. Usage: scripts/fuzz-smoke.sh [SECONDS]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
seconds=${1:-20}
bash scripts/build.sh fuzz
shopt -s nullglob
for fuzzer in build/fuzz/fuzz/fuzz_*; do
  [[ -x "$fuzzer" ]] || continue
  name=${fuzzer##*/fuzz_}
  corpus=$(mktemp -d)
  seeds=()
  [[ -d fuzz/corpus/$name ]] && seeds=(fuzz/corpus/$name)
  echo "fuzz: $name for ${seconds}s"
  "$fuzzer" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=4096 -print_final_stats=0 \
    "$corpus" "${seeds[@]}" > "build/fuzz/$name.log" 2>&1 || { tail -50 "build/fuzz/$name.log"; exit 1; }
  rm -rf "$corpus"
done
echo "fuzz: all targets ran clean"

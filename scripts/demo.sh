#!/usr/bin/env bash
# The main job: builds the brindle tool and runs it on the sample data shipped
# in samples/. Each samples/demo.d/*.sh shows one family of subcommands; it is
# run with BRINDLE set to the tool and the working directory at samples/.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"
bash scripts/build.sh release --target brindle >/dev/null
export BRINDLE="$root/build/release/bin/brindle"
cd samples
for demo in demo.d/*.sh; do
  echo "### $(sed -n 's/^# //p;q' "$demo")"
  bash "$demo"
  echo
done

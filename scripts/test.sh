#!/usr/bin/env bash
# Builds the library, the tool and the tests (preset release by default) and
# runs the whole test suite. Usage: scripts/test.sh [PRESET]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
preset=${1:-release}
bash scripts/build.sh "$preset"
ctest --preset "$preset"

#!/usr/bin/env bash
# Configures and builds one CMake preset (default: release) after installing
# the dependencies. Usage: scripts/build.sh [PRESET] [cmake --build args...]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
preset=${1:-release}
shift || true
bash scripts/install-deps.sh
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" "$@"

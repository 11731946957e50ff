#!/usr/bin/env bash
# Installs, from Debian's packages, everything the build, the tests, the
# benchmarks and the tool need. The package lists are scripts/packages/*.txt
# (one package per line, '#' starts a comment). Idempotent; quiet when every
# package is already there.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

mapfile -t wanted < <(cat "$here"/packages/*.txt | sed 's/#.*//' | tr -s ' \t' '\n' | sed '/^$/d' | sort -u)
missing=()
for p in "${wanted[@]}"; do
  status=$(dpkg-query -W -f='${Status}' "$p" 2>/dev/null || true)
  [[ "$status" == "install ok installed" ]] || missing+=("$p")
done
[[ ${#missing[@]} -eq 0 ]] && exit 0

sudo=""
if [[ $(id -u) -ne 0 ]]; then
  command -v sudo >/dev/null || { echo "install-deps: need root (or sudo) to install: ${missing[*]}" >&2; exit 1; }
  sudo=sudo
fi
echo "install-deps: installing ${missing[*]}" >&2
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null

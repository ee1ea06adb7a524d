#!/usr/bin/env bash
# install-deps.sh [--fuzz] - installs what building and testing quarn needs on
# Debian 12 (run as root); with --fuzz, also what the fuzz build needs (clang
# and its runtime libraries: libFuzzer and the sanitizers). Skips apt-get
# entirely when everything is already there.
set -euo pipefail
packages=(build-essential cmake libexpat1-dev libisal-dev libgtest-dev libgmock-dev)
if [ "${1:-}" = --fuzz ]; then packages+=(clang libclang-rt-14-dev); fi
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq
  apt-get install -y -qq "${missing[@]}"
fi

#!/usr/bin/env bash
# Installs what the fuzz build needs on Debian 12 (run as root): clang and its
# runtime libraries (libFuzzer and the sanitizers). Skips apt-get when present.
set -euo pipefail
packages=(clang libclang-rt-14-dev)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq
  apt-get install -y -qq "${missing[@]}"
fi

#!/usr/bin/env bash
# install-deps.sh [--fuzz] - installs what building and testing quarn needs on
# Debian 12 (run as root); with --fuzz, also what the fuzz build needs (clang
# and its runtime libraries: libFuzzer and the sanitizers). Skips apt-get
# entirely when everything is already there. The date-time tests also read
# German month and day names, so the de_DE.UTF-8 locale is made when missing.
set -euo pipefail
packages=(build-essential cmake libexpat1-dev libisal-dev libgtest-dev libgmock-dev locales)
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
if ! locale -a 2>/dev/null | grep -qix 'de_DE\.utf-\?8'; then
  localedef -i de_DE -c -f UTF-8 de_DE.UTF-8
fi

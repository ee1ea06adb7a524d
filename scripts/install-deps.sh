#!/usr/bin/env bash
# Installs what building and testing quarn needs on Debian 12 (run as root).
# Skips apt-get entirely when everything is already there.
set -euo pipefail
packages=(build-essential cmake libexpat1-dev libisal-dev libgtest-dev libgmock-dev)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq
  apt-get install -y -qq "${missing[@]}"
fi

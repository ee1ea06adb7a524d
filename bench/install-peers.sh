#!/usr/bin/env bash
# install-peers.sh - installs the peer libraries the benchmarks compare against
#
# StreamBench sets quarn's byte streams beside protobuf's coded streams; the
# peer rows are left out when protobuf is missing. DateTimeBench sets the
# date-time conversions beside Howard Hinnant's date library (header-only;
# its rows are left out when it is missing). Safe to run again: apt-get
# leaves installed packages alone. Needs root (as on the project's machines).
set -euo pipefail
export DEBIAN_FRONTEND=noninteractive
apt-get update -qq
apt-get install -y -qq --no-install-recommends libprotobuf-dev libboost-dev libhowardhinnant-date-dev >/dev/null

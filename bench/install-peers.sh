#!/usr/bin/env bash
# install-peers.sh - installs the peer libraries the benchmarks compare against
#
# StreamBench and ArrayBench set quarn beside protobuf's coded streams,
# BitsetBench beside boost, RecordBench beside Qt 5 and a generated protobuf
# message (which needs protoc), and DateTimeBench beside Howard Hinnant's date
# library (header-only). The peer rows are left out when a peer is missing.
# Safe to run again: apt-get leaves installed packages alone. Needs root (as on
# the project's machines).
set -euo pipefail
export DEBIAN_FRONTEND=noninteractive
apt-get update -qq
apt-get install -y -qq --no-install-recommends libprotobuf-dev protobuf-compiler qtbase5-dev libboost-dev \
  libhowardhinnant-date-dev >/dev/null

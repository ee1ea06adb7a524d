#!/usr/bin/env bash
# fuzz/run.sh [seconds] [build folder] - runs every fuzz target of a "fuzz" preset build
#
# Each target first replays its seed corpus (fuzz/corpus/<target>) and its
# regression inputs (fuzz/regressions/<target>): every input once, no search.
# Then, when seconds > 0, it searches for that many seconds, starting from
# both and keeping what it finds in <build>/fuzz-work/<target> (the seeds in
# the source tree stay as they are). A crash, a leak, a sanitizer report, an
# allocation above 64 MB or a failed round trip fails the script, and the
# input that did it is left in <build>/fuzz-artifacts/. One job at a time.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-30}
build=${2:-build/fuzz}
options=(-rss_limit_mb=2048 -malloc_limit_mb=64 -timeout=20 -print_final_stats=1)
mkdir -p "$build/fuzz-artifacts"
# run <log> <libFuzzer arguments...>: the output goes to the log; a failure shows its end.
run() {
  local log=$1
  shift
  if ! "$@" >"$log" 2>&1; then
    tail -n 40 "$log"
    echo "FAILED: $*"
    exit 1
  fi
  grep -E "^#[0-9]+[[:space:]]+DONE|^Done|stat::peak_rss_mb" "$log" || true
}

for target in payload text textutil registration record recordfile; do
  bin="$build/fuzz/quarn_fuzz_$target"
  inputs=("fuzz/corpus/$target")
  [ -d "fuzz/regressions/$target" ] && inputs+=("fuzz/regressions/$target")
  prefix="$build/fuzz-artifacts/$target-"
  echo "== $target: replay"
  run "$build/fuzz-artifacts/$target-replay.log" "$bin" "${options[@]}" -artifact_prefix="$prefix" -runs=0 "${inputs[@]}"
  if [ "$seconds" -gt 0 ]; then
    work="$build/fuzz-work/$target"
    mkdir -p "$work"
    echo "== $target: search for $seconds s"
    run "$build/fuzz-artifacts/$target-search.log" "$bin" "${options[@]}" -artifact_prefix="$prefix" \
      -max_total_time="$seconds" "$work" "${inputs[@]}"
  fi
done

#!/usr/bin/env bash
# Runs every fuzz target for a while; a crash, leak or sanitizer report fails
# the run and leaves the input in the build folder's fuzz/crashes/.
# Usage: scripts/fuzz.sh BUILD_DIR SECONDS_PER_TARGET
set -uo pipefail
build=${1:-build-fuzz}
seconds=${2:-30}
out="$build/fuzz/crashes"
mkdir -p "$out"
status=0
for target in "$build"/fuzz/*Fuzzer; do
  name=$(basename "$target")
  corpus="$build/fuzz/corpus/$name"
  mkdir -p "$corpus"
  if "$target" "$corpus" -max_total_time="$seconds" -rss_limit_mb=2048 -max_len=65536 \
       -artifact_prefix="$out/$name-" -print_final_stats=0 > "$build/fuzz/$name.log" 2>&1; then
    echo "fuzz: $name ok ($(grep -c . "$build/fuzz/$name.log") log lines)"
  else
    echo "fuzz: $name FAILED; see $build/fuzz/$name.log"
    tail -30 "$build/fuzz/$name.log"
    status=1
  fi
  rm -f /tmp/tarvos-fuzz-*
done
exit $status

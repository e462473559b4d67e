#!/usr/bin/env bash
# Compares the dynamic symbols defined by the shared library with the list of
# the C API: nothing missing, nothing extra (no C++ symbols leak out).
set -euo pipefail
lib=$1
expected=$2
actual=$(nm -D --defined-only --format=posix "$lib" | awk '{print $1}' | sort -u)
want=$(grep -v '^#' "$expected" | sed '/^$/d' | sort -u)
if [ "$actual" != "$want" ]; then
  echo "exported symbols differ from $expected (< expected, > exported):"
  diff <(echo "$want") <(echo "$actual") || true
  exit 1
fi
echo "$(echo "$actual" | wc -l) symbols exported, as expected"

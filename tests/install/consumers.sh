#!/usr/bin/env bash
# Installs the build into a temporary prefix and builds two host programs
# against that copy alone: a C program through pkg-config and a CMake
# project through find_package(Tarvos). Each checks the sample report; their
# findings must be those of the installed tool, which finds its data
# directory by itself. Everything happens inside one temporary folder.
# Usage: consumers.sh BUILD_DIR SOURCE_DIR
set -euo pipefail
build=$(cd "$1" && pwd)
src=$(cd "$2" && pwd)
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
prefix=$tmp/prefix

cmake --install "$build" --prefix "$prefix" > "$tmp/install.log"
libdir=$(dirname "$(find "$prefix" -name libtarvos.so -print -quit)")
export LD_LIBRARY_PATH=$libdir
# No standards look-ups: a search server another test starts must not
# change the findings between two runs.
rm -f "$prefix/share/tarvos/Data/SearchAgent.xml"

# The sample report, one copy per run (a check writes beside its document).
python3 "$src/scripts/pack_docx.py" "$src/examples/sample_report" "$tmp/sample_report.docx"
for run in cli pkgconfig cmake; do
  mkdir -p "$tmp/$run" && cp "$tmp/sample_report.docx" "$tmp/$run/"
done

"$prefix/bin/tarvos" --version | grep -qx "tarvos $(sed -n 's/^Version: //p' "$libdir/pkgconfig/tarvos.pc")"
"$prefix/bin/tarvos" check "$tmp/cli/sample_report.docx" --format json > "$tmp/cli.json" 2> "$tmp/cli.err"
python3 "$src/tests/install/findings.py" "$tmp/cli.json" > "$tmp/cli.findings"

export PKG_CONFIG_PATH=$libdir/pkgconfig
cc -Wall -Werror "$src/examples/check_report.c" $(pkg-config --cflags --libs tarvos) -o "$tmp/check_pc"
"$tmp/check_pc" "$prefix/share/tarvos" "$tmp/pkgconfig/sample_report.docx" > "$tmp/pc.json"
python3 "$src/tests/install/findings.py" "$tmp/pc.json" > "$tmp/pc.findings"

cmake -S "$src/tests/install/cmake_consumer" -B "$tmp/consumer" -DCMAKE_PREFIX_PATH="$prefix" \
  -DEXAMPLE_SOURCE="$src/examples/check_report.c" > "$tmp/consumer.log"
cmake --build "$tmp/consumer" >> "$tmp/consumer.log"
"$tmp/consumer/check_report" "$(cat "$tmp/consumer/data_dir.txt")" "$tmp/cmake/sample_report.docx" > "$tmp/cmake.json"
python3 "$src/tests/install/findings.py" "$tmp/cmake.json" > "$tmp/cmake.findings"

diff "$tmp/cli.findings" "$tmp/pc.findings"
diff "$tmp/cli.findings" "$tmp/cmake.findings"
echo "installed tool, pkg-config and CMake consumers agree on $(wc -l < "$tmp/cli.findings") findings"

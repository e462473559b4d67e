#!/usr/bin/env bash
# Builds the Debian packages into a temporary folder, lints them when
# lintian is installed, unpacks the runtime package and checks the sample
# report with the tool it holds, which must find the packaged data itself.
# Usage: deb.sh BUILD_DIR SOURCE_DIR
set -euo pipefail
build=$(cd "$1" && pwd)
src=$(cd "$2" && pwd)
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT

cpack -G DEB --config "$build/CPackConfig.cmake" -B "$tmp/packages" > "$tmp/cpack.log" 2>&1
runtime=$(ls "$tmp"/packages/tarvos_*.deb)
ls "$tmp"/packages/libtarvos-dev_*.deb > /dev/null
if command -v lintian > /dev/null; then
  lintian --fail-on error "$tmp"/packages/*.deb
else
  echo "lintian not installed (Debian package lintian): packages not linted"
fi

dpkg-deb -x "$runtime" "$tmp/root"
dpkg-deb -f "$runtime" Depends | grep -q libime-data-language-model
version=$(dpkg-deb -f "$runtime" Version)
zcat "$tmp/root/usr/share/man/man1/tarvos.1.gz" | head -1 | grep -q "\"tarvos $version\""
export LD_LIBRARY_PATH=$tmp/root/usr/lib
rm -f "$tmp/root/usr/share/tarvos/Data/SearchAgent.xml"
python3 "$src/scripts/pack_docx.py" "$src/examples/sample_report" "$tmp/sample_report.docx"
"$tmp/root/usr/bin/tarvos" check "$tmp/sample_report.docx" --format json > "$tmp/result.json" 2> "$tmp/summary.txt"
grep -q "sample_report.docx: [1-9][0-9]* findings" "$tmp/summary.txt"
python3 "$src/tests/install/findings.py" "$tmp/result.json" > "$tmp/findings.txt"
grep -q "^1.5.1 " "$tmp/findings.txt"
echo "the packaged tool checked the sample report: $(head -1 "$tmp/summary.txt")"

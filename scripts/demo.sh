#!/usr/bin/env bash
# The demonstration run: packs the sample report of examples/ into a DOCX,
# starts the engine on the built data directory and checks the report.
# Usage: scripts/demo.sh BUILD_DIR
set -euo pipefail
build=${1:-build}
out="$build/examples"
mkdir -p "$out"
python3 scripts/pack_docx.py examples/sample_report "$out/sample_report.docx"
echo "== tarvos info (engine start on the default data directory)"
"$build/cli/tarvos" info --data "$build/data"
echo
# The standards look-ups of the audit ask the search server that
# Data/SearchAgent.xml names (port 7307 on this machine): start ours for the check.
echo "== tarvos-searchd (standards and their status, for the audit's look-ups)"
"$build/cli/tarvos-searchd" --data "$build/data" --port 7307 &
searchd=$!
trap 'kill $searchd 2>/dev/null || true' EXIT
for _ in $(seq 50); do
  (exec 3<>/dev/tcp/127.0.0.1/7307) 2>/dev/null && break
  sleep 0.1
done
echo
echo "== tarvos check $out/sample_report.docx"
"$build/cli/tarvos" check "$out/sample_report.docx" --type 1 --data "$build/data"
echo
echo "== tarvos struct (the document model the check worked on)"
"$build/cli/tarvos" struct "$out/sample_report.docx" --data "$build/data"

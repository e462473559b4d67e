#!/usr/bin/env bash
# Runs every benchmark and prints each figure beside its reference tool,
# measured in the same run. Usage: scripts/bench.sh BUILD_DIR
set -euo pipefail
build=${1:-build}
dict=/usr/lib/python3/dist-packages/jieba/dict.txt
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

echo "== engine start-up and message catalogue"
"$build/bench/tarvos_bench" --data "$build/data"

echo
echo "== dictionary (CPDAT) on $dict"
"$build/bench/tarvos_bench_dict" "$dict" "$work" | tee "$work/dict.out"
ours=$(awk '/^scan_seconds/ {print $2}' "$work/dict.out")
best=""
for _ in 1 2 3; do
  start=$(date +%s.%N)
  grep -F -o -f "$work/words.txt" "$work/text.txt" > /dev/null || true
  end=$(date +%s.%N)
  t=$(echo "$end - $start" | bc -l)
  if [ -z "$best" ] || [ "$(echo "$t < $best" | bc -l)" = 1 ]; then best=$t; fi
done
printf 'grep -F -o -f words.txt text.txt: %.4f s (best of 3)\n' "$best"
printf 'scan speed-up over grep -F: %.1fx (required: 3x)\n' "$(echo "$best / $ours" | bc -l)"

echo
echo "== keyword scanner (50,000 keywords as a keyword list) on the same files"
"$build/bench/tarvos_bench_keyscan" "$work/words.txt" "$work/text.txt" "$work" | tee "$work/keyscan.out"
ours=$(awk '/^scan_seconds/ {print $2}' "$work/keyscan.out")
printf 'keyword scan speed-up over grep -F: %.1fx (required: 3x)\n' "$(echo "$best / $ours" | bc -l)"

echo
echo "== lexical analyser against jieba (Debian python3-jieba), same texts, same run"
/usr/bin/python3 scripts/corpus_text.py ../shared/corpus/real "$work/corpus.txt"
/usr/bin/python3 bench/make_seg_text.py "$dict" 2200000 "$work/generated.txt"
for text in corpus generated; do
  echo "-- $text text: $(wc -c < "$work/$text.txt") bytes"
  "$build/bench/tarvos_bench_seg" "$build/data" "$work/$text.txt" "$work/$text.ours" | tee "$work/$text.seg"
  secs=$(awk '/^seconds/ {print $2}' "$work/$text.seg")
  /usr/bin/python3 bench/seg_compare.py "$work/$text.txt" "$work/$text.ours" "$secs" 2>/dev/null
done

echo
echo "== DOCX reading against python-docx and unzip, same file, same run"
# -I: the source folder docx/ must not pass for the python module of that name.
if ! /usr/bin/python3 -I -c 'import docx' 2>/dev/null || ! command -v unzip >/dev/null; then
  echo "installing the reference readers (python3-docx, unzip)"
  ${SUDO:-$( [ "$(id -u)" -ne 0 ] && echo sudo )} env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq python3-docx unzip > /dev/null
fi
/usr/bin/python3 scripts/make_report_docx.py "$work/report.docx"
"$build/bench/tarvos_bench_docx" "$work/report.docx" | tee "$work/docx.out"
/usr/bin/python3 bench/docx_reference.py "$work/report.docx" | tee "$work/ref.out"
ours=$(awk '/^seconds/ {print $2}' "$work/docx.out")
awk -v ours="$ours" '/^python-docx/ {printf "speed-up over python-docx: %.1fx (required 20x)\n", $2 / ours}
                     /^unzip/ {printf "time against unzip -p: %.2fx (required within 3x)\n", ours / $2}' "$work/ref.out"

echo
echo "== findings and a whole check"
"$build/bench/tarvos_bench_result" "$build/data" "$work/report.docx" "$work"

echo
echo "== the reviser: 1,000 findings applied to the same report and packed, against reading it"
"$build/bench/tarvos_bench_revise" "$build/data" "$work/report.docx" "$work"

echo
echo "== format check against the parse of the same report"
"$build/bench/tarvos_bench_format" "$build/data" "$work/report.docx" 1

echo
echo "== extraction rules over the same report: matching against segmenting, compiling"
"$build/bench/tarvos_bench_rules" "$build/data" "$work/report.docx" 1

echo
echo "== checks per second: one instance, then two threads on two instances (the corpus)"
docs=$(ls ../shared/corpus/real/zh/*.docx ../shared/corpus/real/other/*.docx 2>/dev/null || true)
if [ -n "$docs" ]; then
  # shellcheck disable=SC2086
  "$build/bench/tarvos_bench_throughput" "$build/data" "$work/throughput" 2 $docs
else
  echo "no corpus at ../shared/corpus/real: skipped"
fi

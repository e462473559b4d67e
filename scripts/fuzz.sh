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
  # The DOCX reader starts from real documents when the shared corpus is there.
  if [ "$name" = DocxFuzzer ] && [ -z "$(ls -A "$corpus")" ]; then
    for doc in ../shared/corpus/real/zh/*.docx; do
      [ -f "$doc" ] || continue
      base=$(basename "$doc" .docx)
      { printf '\000'; cat "$doc"; } > "$corpus/$base.pkg"
      { printf '\001'; unzip -p "$doc" word/document.xml 2>/dev/null | head -c 60000; } > "$corpus/$base.xml"
    done
  fi
  # The keyword lists start from the default error words and a few expressions.
  if [ "$name" = KeyScanFuzzer ] && [ -z "$(ls -A "$corpus")" ]; then
    for list in data/KeyScanner/*.txt; do
      [ -f "$list" ] || continue
      { printf '\001'; head -40 "$list"; } > "$corpus/$(basename "$list" .txt).keys"
    done
    printf '\000合同&违约~5~责任 law 2\n[New York] city 3 0\n中国 c 1 1\n!草案&合同\n' > "$corpus/expressions.keys"
  fi
  # The spelling check starts from sentences with misspellings and a dictionary.
  if [ "$name" = SpellFuzzer ] && [ -z "$(ls -A "$corpus")" ]; then
    printf '\000我们按装了新软件，经济合里，运形费用较低。' > "$corpus/sentence.txt"
    printf '\000授权代表：刘济民。“按装”[12] 金显贺．文题[J]．' > "$corpus/guarded.txt"
    { printf '\001'; head -40 data/KeyScanner/errorwords.txt | sed 's/ errorword$//'; } > "$corpus/dict.txt"
  fi
  # The rule language starts from the default rule files and their patterns.
  if [ "$name" = RuleFuzzer ] && [ -z "$(ls -A "$corpus")" ]; then
    for rules in data/Rules/*.xml; do
      base=$(basename "$rules" .xml)
      { printf '\001'; cat "$rules"; } > "$corpus/$base.items"
      grep -o '<rule>[^<]*</rule>' "$rules" | sed 's/<[/]*rule>//g' | head -20 | nl -nln | while read -r n pattern; do
        { printf '\000'; printf '%s' "$pattern"; } > "$corpus/$base-$n.pattern"
      done
    done
  fi
  # The format check starts from their bodies, read as theses (type 4).
  if [ "$name" = FormatCheckFuzzer ] && [ -z "$(ls -A "$corpus")" ]; then
    for doc in ../shared/corpus/real/zh/*.docx; do
      [ -f "$doc" ] || continue
      { printf '\004'; unzip -p "$doc" word/document.xml 2>/dev/null | head -c 60000; } > "$corpus/$(basename "$doc" .docx).xml"
    done
  fi
  if "$target" "$corpus" -max_total_time="$seconds" -rss_limit_mb=2048 -max_len=65536 \
       -artifact_prefix="$out/$name-" -print_final_stats=0 > "$build/fuzz/$name.log" 2>&1; then
    echo "fuzz: $name ok ($(grep -c . "$build/fuzz/$name.log") log lines)"
  else
    echo "fuzz: $name FAILED; see $build/fuzz/$name.log"
    tail -30 "$build/fuzz/$name.log"
    status=1
  fi
  rm -rf "$build/fuzz/work"
done
exit $status

#!/usr/bin/env python3
"""Checks every DOCX of a corpus with the tarvos tool and counts the findings.

Usage: corpus_findings.py TARVOS DATA_DIR CORPUS_DIR OUT_DIR [--type N]

Each document is copied into OUT_DIR/docs (a check writes beside the document)
and checked with --format json. Writes:
  OUT_DIR/findings.tsv   one line per finding: document, error id, paragraph id,
                         offset, found text, proposal, paragraph text (cut)
  OUT_DIR/counts.tsv     findings per error id over the corpus
and prints the counts, most frequent first.
"""
import collections
import json
import os
import shutil
import subprocess
import sys


def main():
    args = sys.argv[1:]
    report_type = "1"
    if "--type" in args:
        i = args.index("--type")
        report_type = args[i + 1]
        del args[i:i + 2]
    if len(args) != 4:
        sys.exit(__doc__)
    tarvos, data, corpus, out = args
    docs_dir = os.path.join(out, "docs")
    shutil.rmtree(docs_dir, ignore_errors=True)
    os.makedirs(docs_dir)
    counts = collections.Counter()
    rows = []
    for root, _, files in sorted(os.walk(corpus)):
        for name in sorted(files):
            if not name.endswith(".docx"):
                continue
            copy = os.path.join(docs_dir, name)
            shutil.copyfile(os.path.join(root, name), copy)
            run = subprocess.run([tarvos, "check", copy, "--format", "json", "--type", report_type, "--data", data],
                                 capture_output=True)
            if run.returncode != 0:
                print(f"{name}: check failed: {run.stderr.decode(errors='replace').strip()}", file=sys.stderr)
                continue
            result = json.loads(run.stdout.decode("utf-8", errors="replace"))
            for finding in result.get("Errors", []):
                counts[finding["errorno"]] += 1
                text = finding.get("text", "").replace("\t", " ").replace("\n", " ")[:80]
                rows.append([name, finding["errorno"], finding["paraId"], str(finding["offset"]),
                             finding.get("OrgStr", ""), finding.get("NewStr", ""), text])
    with open(os.path.join(out, "findings.tsv"), "w", encoding="utf-8") as f:
        f.write("document\terror\tparaId\toffset\tfound\tproposal\ttext\n")
        for row in rows:
            f.write("\t".join(cell.replace("\t", " ").replace("\n", " ") for cell in row) + "\n")
    with open(os.path.join(out, "counts.tsv"), "w", encoding="utf-8") as f:
        f.write("error\tcount\n")
        for error, count in sorted(counts.items(), key=lambda kv: (-kv[1], kv[0])):
            f.write(f"{error}\t{count}\n")
            print(f"{error}\t{count}")
    print(f"total\t{sum(counts.values())}")


if __name__ == "__main__":
    main()

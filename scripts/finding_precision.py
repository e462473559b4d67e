#!/usr/bin/env python3
"""Precision per error id from findings labelled by hand.

Usage: finding_precision.py LABELS BEFORE_DIR AFTER_DIR

LABELS is a TSV of "document|error|paraId|found<TAB>1 or 0<TAB>reason" lines
(1: a careful reviewer accepts the finding); BEFORE_DIR and AFTER_DIR are
output folders of corpus_findings.py. Every labelled id's findings of both
runs are matched to their labels; the table gives, per id and run, the
findings, how many are labelled, how many accepted and the precision, then
the accepted findings of the earlier run that the later one lost.
"""
import collections
import sys


def load_findings(folder):
    with open(f"{folder}/findings.tsv", encoding="utf-8") as f:
        rows = [line.rstrip("\n").split("\t") for line in f][1:]
    return ["|".join(r[:3] + [r[4]]) for r in rows]


def main():
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    labels = {}
    with open(sys.argv[1], encoding="utf-8") as f:
        for line in f:
            if not line.strip() or line.startswith("#"):
                continue
            key, label = line.rstrip("\n").split("\t")[:2]
            labels[key] = label.strip() == "1"
    ids = sorted({key.split("|")[1] for key in labels}, key=lambda s: [int(x) for x in s.split(".")])
    runs = {"before": load_findings(sys.argv[2]), "after": load_findings(sys.argv[3])}
    print(f"{'id':8} {'run':7} {'findings':>8} {'labelled':>8} {'accepted':>8} {'precision':>9}")
    for error in ids + ["all"]:
        for run, keys in runs.items():
            mine = [k for k in keys if error == "all" and k.split("|")[1] in ids or k.split("|")[1] == error]
            labelled = [k for k in mine if k in labels]
            accepted = sum(labels[k] for k in labelled)
            precision = f"{accepted / len(labelled):.2f}" if labelled else "-"
            print(f"{error:8} {run:7} {len(mine):8} {len(labelled):8} {accepted:8} {precision:>9}")
    # The same place and id in the later run keeps the fault, whatever its
    # found text now reads (a label may have joined it).
    after = {k.rsplit("|", 1)[0] for k in runs["after"]}
    lost = [k for k in runs["before"] if labels.get(k) and k.rsplit("|", 1)[0] not in after]
    print(f"accepted findings of the earlier run that the later one lost: {len(lost)}")
    for key in lost:
        print("  " + key)


if __name__ == "__main__":
    main()

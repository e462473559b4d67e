#!/usr/bin/env python3
"""Prints each finding of chosen error ids with the document around it, for
labelling by hand whether a careful reviewer would accept it.

Usage: finding_context.py FINDINGS_DIR IDS [--sample N --seed S]

FINDINGS_DIR is an output folder of corpus_findings.py (findings.tsv and the
docs/ folder holding each document's structure file <name>.json). IDS is a
comma-separated list of error-id prefixes ("1.3.,1.6,99.6,99.7"). With
--sample, N findings are drawn at random (seeded) instead of all.
Each finding gets a key "document|error|paraId|found" that a label file uses.
"""
import json
import os
import random
import sys

LEVELS = {0: "body", 13: "toc", -100: "TABLE", -102: "tcap", -200: "FIGURE", -201: "fcap", -202: "tbox",
          -300: "head", -400: "foot", -512: "formula", -500: "main"}


def level_name(level):
    if 1 <= level <= 4:
        return f"H{level}"
    return LEVELS.get(level, str(level))


def load_paragraphs(docs_dir, document):
    path = os.path.join(docs_dir, os.path.splitext(document)[0] + ".json")
    try:
        with open(path, encoding="utf-8") as f:
            return json.load(f)["Paras"]
    except (OSError, ValueError, KeyError):
        return []


def show(paras, index, mark):
    p = paras[index]
    label = p.get("numLabel", "")
    text = p["text"].replace("\n", " / ")[:90]
    return f"   {'>>' if mark else '  '} [{index}] {level_name(p['level']):7} {label + ' ' if label else ''}{text}"


def placements(paras, anchor, error):
    """The figures or tables a placement finding anchored at `anchor` may be
    about: the check anchors each at the id it remembered, that of the
    paragraph before (for a figure, the paragraph that holds the image)."""
    want = {"99.6": (-200,), "99.7": (-100,)}.get(error, (-100, -200))
    remembered, found = "00000000", []
    for i, p in enumerate(paras):
        current = p["paraId"]
        if p["level"] == -200 and i + 1 < len(paras):
            current = paras[i + 1]["paraId"]
        if p["level"] in want and remembered == anchor:
            found.append(i)
        remembered = current
    return found


def main():
    args = sys.argv[1:]
    sample, seed = None, 1
    if "--sample" in args:
        i = args.index("--sample")
        sample = int(args[i + 1])
        del args[i:i + 2]
    if "--seed" in args:
        i = args.index("--seed")
        seed = int(args[i + 1])
        del args[i:i + 2]
    if len(args) != 2:
        sys.exit(__doc__)
    folder, ids = args[0], args[1].split(",")
    with open(os.path.join(folder, "findings.tsv"), encoding="utf-8") as f:
        rows = [line.rstrip("\n").split("\t") for line in f][1:]
    rows = [r for r in rows if any(r[1] == p or (p.endswith(".") and r[1].startswith(p)) for p in ids)]
    if sample is not None and sample < len(rows):
        rows = random.Random(seed).sample(rows, sample)
    cache = {}
    for document, error, para_id, offset, found, proposal, text in rows:
        if document not in cache:
            cache[document] = load_paragraphs(os.path.join(folder, "docs"), document)
        paras = cache[document]
        print(f"== {document}|{error}|{para_id}|{found}  proposal: {proposal!r}")
        if error in ("99.6", "99.7", "1.3.12", "1.3.13"):
            places = placements(paras, para_id, error)
            for at in places[:3]:
                for i in range(max(0, at - 3), min(len(paras), at + 4)):
                    print(show(paras, i, i == at))
            if places:
                continue
        at = next((i for i, p in enumerate(paras) if p["paraId"] == para_id and p["level"] not in (-100, -200)), None)
        if at is None:
            print(f"   (paragraph {para_id} not in the list: a cell, a header, or the whole document)  {text}")
            continue
        # Placement findings are anchored before the figure or table: show what follows further.
        after = 6 if error in ("99.6", "99.7", "1.3.12", "1.3.13") else 2
        for i in range(max(0, at - 2), min(len(paras), at + after + 1)):
            print(show(paras, i, i == at))


if __name__ == "__main__":
    main()

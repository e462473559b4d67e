#!/usr/bin/env python3
"""Compares the engine's segmentation with jieba's on the same lines.

Usage: seg_compare.py TEXT_FILE OURS_FILE OURS_SECONDS
  TEXT_FILE     the input, one paragraph a line
  OURS_FILE     the engine's "word/tag" output, one line per input line
  OURS_SECONDS  the engine's segmenting time for the whole file, load excluded

Prints: word-boundary precision, recall and F1 against jieba.cut(HMM=True);
the share of tokens with agreeing boundaries that also agree on the tag with
jieba.posseg.cut (punctuation excluded: jieba tags it x, the engine w*); and
the speed of both, dictionary loading excluded on both sides.
Run it with the Python that has Debian's python3-jieba (/usr/bin/python3).
"""
import sys
import time

import jieba
import jieba.posseg


def spans(words):
    """Character spans of the non-blank words, blanks removed from the text."""
    result, pos = [], 0
    for w in words:
        w = "".join(w.split())
        if w:
            result.append((pos, pos + len(w)))
            pos += len(w)
    return result


def parse_ours(line):
    """(word, tag) pairs of a tagged line; a group "[w1 w2]/tag" is one word."""
    pairs, group = [], None
    for token in line.split(" "):
        if not token:
            continue
        if group is not None:
            group.append(token)
            if "]/" in token:
                joined = " ".join(group)
                cut = joined.rfind("]/")
                pairs.append((joined[1:cut], joined[cut + 2:]))
                group = None
            continue
        if token.startswith("[") and not token.startswith("[/") and "]/" not in token:
            group = [token]
            continue
        cut = token.rfind("/")
        word, tag = token[:cut], token[cut + 1:]
        if word.startswith("[") and word.endswith("]") and len(word) > 2:
            word = word[1:-1]
        pairs.append((word, tag))
    return pairs


def main():
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    lines = open(sys.argv[1], encoding="utf-8").read().split("\n")
    if lines and lines[-1] == "":
        lines.pop()
    ours = open(sys.argv[2], encoding="utf-8").read().split("\n")[: len(lines)]
    ours_seconds = float(sys.argv[3])
    jieba.initialize()
    jieba.posseg.dt.initialize()

    start = time.perf_counter()
    ref_cut = [list(jieba.cut(line, HMM=True)) for line in lines]
    jieba_seconds = time.perf_counter() - start
    ref_pos = [[(p.word, p.flag) for p in jieba.posseg.cut(line, HMM=True)] for line in lines]

    common = ours_total = ref_total = 0
    tag_same = tag_compared = 0
    for line_ours, cut, pos in zip(ours, ref_cut, ref_pos):
        pairs = parse_ours(line_ours)
        mine = spans(w for w, _ in pairs)
        ref = set(spans(cut))
        common += sum(1 for s in mine if s in ref)
        ours_total += len(mine)
        ref_total += len(ref)
        mine_tags = dict(zip(mine, (t for w, t in pairs if "".join(w.split()))))
        for span, (_, flag) in zip(spans(w for w, _ in pos), ((w, f) for w, f in pos if "".join(w.split()))):
            tag = mine_tags.get(span)
            if tag is None or flag == "x" or tag.startswith("w"):
                continue
            tag_compared += 1
            tag_same += tag == flag

    precision = common / ours_total if ours_total else 0
    recall = common / ref_total if ref_total else 0
    f1 = 2 * precision * recall / (precision + recall) if precision + recall else 0
    size = sum(len(l.encode("utf-8")) + 1 for l in lines)
    print("boundaries: precision %.4f recall %.4f F1 %.4f (required 0.97)" % (precision, recall, f1))
    print("tags: %.4f of %d tokens agree (required 0.93)" % (tag_same / tag_compared if tag_compared else 0, tag_compared))
    print("speed: jieba %.2f MB/s, engine %.2f MB/s, ratio %.1fx (required 20x)"
          % (size / jieba_seconds / 1048576, size / ours_seconds / 1048576, jieba_seconds / ours_seconds))


if __name__ == "__main__":
    main()

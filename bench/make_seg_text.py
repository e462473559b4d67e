#!/usr/bin/env python3
"""Generates a Chinese text of at least SIZE bytes from the words of a
"word freq tag" list, drawn by frequency, with sentence punctuation, one
sentence group a line; seeded, so every run measures the same text.

Usage: make_seg_text.py DICT_TXT SIZE OUTPUT_FILE
"""
import random
import sys


def main():
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    words, weights = [], []
    with open(sys.argv[1], encoding="utf-8") as f:
        for line in f:
            parts = line.split()
            if len(parts) >= 2 and all("\u4e00" <= c <= "\u9fd5" for c in parts[0]):
                words.append(parts[0])
                weights.append(int(parts[1]))
    rng = random.Random(20261122)
    size = int(sys.argv[2])
    written = 0
    with open(sys.argv[3], "w", encoding="utf-8") as out:
        while written < size:
            sentence = "".join(rng.choices(words, weights, k=rng.randint(6, 18)))
            line = sentence + rng.choice("，。；：、！？") + "\n"
            out.write(line)
            written += len(line.encode("utf-8"))


if __name__ == "__main__":
    main()

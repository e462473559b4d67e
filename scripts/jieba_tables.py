#!/usr/bin/env python3
"""Turns the HMM tables of Debian's jieba package into plain text for the
engine's data generator. The tables are Python literals; they are read with
ast.literal_eval, so no code of the package runs.

Usage: jieba_tables.py JIEBA_DIR OUTPUT_FILE

Output, one record a line, tab-separated:
  start  STATE  LOGP              (word-boundary model: states B M E S)
  trans  FROM   TO    LOGP
  emit   STATE  CHAR  LOGP
"""
import ast
import os
import sys


def read_table(path):
    with open(path, encoding="utf-8") as f:
        text = f.read()
    start = text.index("P=") + 2
    return ast.literal_eval(text[start:].strip())


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    base = os.path.join(sys.argv[1], "finalseg")
    start = read_table(os.path.join(base, "prob_start.py"))
    trans = read_table(os.path.join(base, "prob_trans.py"))
    emit = read_table(os.path.join(base, "prob_emit.py"))
    tmp = sys.argv[2] + ".tmp"
    with open(tmp, "w", encoding="utf-8") as out:
        for state, p in sorted(start.items()):
            out.write("start\t%s\t%r\n" % (state, p))
        for src, row in sorted(trans.items()):
            for dst, p in sorted(row.items()):
                out.write("trans\t%s\t%s\t%r\n" % (src, dst, p))
        for state, row in sorted(emit.items()):
            for char, p in sorted(row.items()):
                out.write("emit\t%s\t%s\t%r\n" % (state, char, p))
    os.replace(tmp, sys.argv[2])


if __name__ == "__main__":
    main()

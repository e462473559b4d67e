#!/usr/bin/env python3
"""Checks the default error-word list and the protected-word list.

Usage: check_errorwords.py [--corpus DIR] [--lexicon WORDS]

data/KeyScanner/errorwords.txt holds lines "WRONG-->RIGHT errorword" and
data/KeyScanner/protected.txt lines "WORD protect". Checked: the line format,
no WRONG twice, WRONG and RIGHT different, each at least two characters and
of equal length, Chinese characters only; and that no WRONG form is at
least as frequent in the lexicon word list as its RIGHT form. The word list
is gathered from real text, so it holds common misspellings too, at a small
count; a WRONG form as frequent as the right one is likely a word of its
own, and a pair of two real words used in different senses does not belong
here.
With --corpus, every WRONG form found in the DOCX files under DIR is printed
with its context, so that a person can see whether it hits correct text.
Exits 1 when a check fails.
"""
import argparse
import os
import re
import sys
import zipfile

HERE = os.path.dirname(os.path.abspath(__file__))
DATA = os.path.join(HERE, '..', 'data', 'KeyScanner')
HAN = re.compile(r'^[\u4e00-\u9fff]{2,}$')
ERROR_LINE = re.compile(r'^(\S+)-->(\S+) errorword$')
PROTECT_LINE = re.compile(r'^(\S+) protect$')


def read_lines(name):
    with open(os.path.join(DATA, name), encoding='utf-8') as f:
        return f.read().split('\n')[:-1]


def check_errorwords(lines, lexicon):
    problems, pairs = [], {}
    for n, line in enumerate(lines, 1):
        m = ERROR_LINE.match(line)
        if not m:
            problems.append(f'errorwords.txt:{n}: not "WRONG-->RIGHT errorword": {line!r}')
            continue
        wrong, right = m.groups()
        if wrong in pairs:
            problems.append(f'errorwords.txt:{n}: {wrong} listed twice')
        if wrong == right or len(wrong) != len(right) or not HAN.match(wrong) or not HAN.match(right):
            problems.append(f'errorwords.txt:{n}: {wrong}-->{right}: forms must differ, be Chinese and equally long')
        if lexicon.get(wrong, 0) >= max(1, lexicon.get(right, 0)):
            problems.append(f'errorwords.txt:{n}: {wrong} is as frequent a word as {right}')
        pairs[wrong] = right
    return problems, pairs


def check_protected(lines, pairs):
    problems, words = [], []
    for n, line in enumerate(lines, 1):
        m = PROTECT_LINE.match(line)
        if not m or not HAN.match(m.group(1)):
            problems.append(f'protected.txt:{n}: not "WORD protect" with a Chinese word: {line!r}')
            continue
        words.append(m.group(1))
        if not any(wrong in m.group(1) for wrong in pairs):
            problems.append(f'protected.txt:{n}: {m.group(1)} holds no error word: nothing to protect')
    return problems, words


def corpus_texts(corpus):
    for root, _, files in sorted(os.walk(corpus)):
        for name in sorted(files):
            if name.endswith('.docx'):
                try:
                    with zipfile.ZipFile(os.path.join(root, name)) as z:
                        xml = z.read('word/document.xml').decode('utf-8', 'replace')
                except (zipfile.BadZipFile, KeyError, OSError):
                    continue
                yield name, ''.join(re.findall(r'<w:t(?: [^>]*)?>([^<]*)</w:t>', xml))


def report_corpus_hits(corpus, pairs, protected):
    hits = 0
    for name, text in corpus_texts(corpus):
        for wrong in pairs:
            for m in re.finditer(re.escape(wrong), text):
                around = text[max(0, m.start() - 20):m.end() + 20]
                if any(p in around and wrong in p for p in protected):
                    continue
                hits += 1
                print(f'{name}: {wrong}-->{pairs[wrong]}: ...{around}...')
    print(f'{hits} error words in the corpus')


def main():
    ap = argparse.ArgumentParser(description=__doc__.split('\n')[0])
    ap.add_argument('--corpus')
    ap.add_argument('--lexicon', default='/usr/lib/python3/dist-packages/jieba/dict.txt')
    args = ap.parse_args()
    lexicon = {}
    if os.path.exists(args.lexicon):
        with open(args.lexicon, encoding='utf-8') as f:
            for line in f:
                fields = line.split()
                if len(fields) >= 2:
                    lexicon[fields[0]] = int(fields[1])
    problems, pairs = check_errorwords(read_lines('errorwords.txt'), lexicon)
    more, protected = check_protected(read_lines('protected.txt'), pairs)
    problems += more
    for p in problems:
        print(p)
    print(f'{len(pairs)} error words, {len(protected)} protected words, {len(problems)} problems')
    if args.corpus:
        report_corpus_hits(args.corpus, pairs, protected)
    return 1 if problems else 0


if __name__ == '__main__':
    sys.exit(main())

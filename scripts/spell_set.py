#!/usr/bin/env python3
"""Builds the spelling-check evaluation sets from real documents.

Usage: spell_set.py CORPUS_DIR DATA_DIR OUT_DIR [--seed N] [--lexicon WORDS]

Every Chinese sentence of 8 to 60 characters in the DOCX files under
CORPUS_DIR is a candidate. Sentences are dealt alternately into a tuning set
and a test set (so the margins are tuned on sentences the reported figures
never see). In each set half the sentences stay untouched and in the other
half one character of a word of the lexicon is replaced by a common character
of the same syllable (in any tone) or a similar shape (from DATA_DIR/Data/Spell), chosen so
that the changed word is no longer a lexicon word.

Writes OUT_DIR/tune.tsv and OUT_DIR/test.tsv with lines
  KIND<TAB>SENTENCE<TAB>OFFSET<TAB>WRITTEN<TAB>RIGHT
KIND is "clean" or "error"; for an error, OFFSET is the byte offset of the
replaced character, WRITTEN the character now there and RIGHT the original.
"""
import argparse
import os
import random
import re
import zipfile

HAN = re.compile(r'[\u4e00-\u9fff]')
SENTENCE_END = re.compile(r'(?<=[。！？；])')


def docx_paragraphs(path):
    try:
        with zipfile.ZipFile(path) as z:
            xml = z.read('word/document.xml').decode('utf-8', 'replace')
    except (zipfile.BadZipFile, KeyError, OSError):
        return []
    paragraphs = []
    for para in re.findall(r'<w:p[ >].*?</w:p>', xml, re.S):
        text = ''.join(re.findall(r'<w:t(?: [^>]*)?>([^<]*)</w:t>', para))
        paragraphs.append(text.replace('&amp;', '&').replace('&lt;', '<').replace('&gt;', '>'))
    return paragraphs


def sentences(corpus):
    seen = set()
    for root, _, files in sorted(os.walk(corpus)):
        for name in sorted(files):
            if not name.endswith('.docx'):
                continue
            for para in docx_paragraphs(os.path.join(root, name)):
                for s in SENTENCE_END.split(para):
                    s = s.strip()
                    han = len(HAN.findall(s))
                    if 8 <= han <= 60 and han >= 0.7 * len(s) and s not in seen:
                        seen.add(s)
                        yield s


def load_lexicon(path):
    words = {}
    with open(path, encoding='utf-8') as f:
        for line in f:
            parts = line.split()
            if len(parts) >= 2:
                words[parts[0]] = int(parts[1])
    return words


def load_confusions(spell_dir):
    """Per character: common characters of the same syllable (any tone) and look-alikes."""
    by_plain, plain_of = {}, {}
    with open(os.path.join(spell_dir, 'sound.txt'), encoding='utf-8') as f:
        for line in f:
            ch, _toned, plain, freq = line.rstrip('\n').split('\t')
            plain_of[ch] = plain
            by_plain.setdefault(plain, []).append((ch, int(freq)))
    shapes = {}
    with open(os.path.join(spell_dir, 'shape.txt'), encoding='utf-8') as f:
        for line in f:
            group = [c for c in line.split('#')[0].strip() if HAN.match(c)]
            for c in group:
                shapes.setdefault(c, set()).update(x for x in group if x != c)
    confusions = {}
    for ch, plain in plain_of.items():
        same = [c for c, freq in by_plain[plain] if c != ch and freq >= 1000]
        confusions[ch] = same + sorted(shapes.get(ch, ()))
    for ch, like in shapes.items():
        confusions.setdefault(ch, sorted(like))
    return confusions


def inject(sentence, lexicon, confusions, rng):
    """One replaced character inside a lexicon word of 2-4 characters, or None."""
    spans = []
    for i in range(len(sentence)):
        for n in (4, 3, 2):
            w = sentence[i:i + n]
            if len(w) == n and all(HAN.match(c) for c in w) and lexicon.get(w, 0) >= 50:
                spans.append((i, w))
                break
    rng.shuffle(spans)
    for start, word in spans:
        k = rng.randrange(len(word))
        options = [c for c in confusions.get(word[k], []) if (word[:k] + c + word[k + 1:]) not in lexicon]
        if options:
            c = rng.choice(options)
            pos = start + k
            changed = sentence[:pos] + c + sentence[pos + 1:]
            return changed, len(sentence[:pos].encode('utf-8')), c, sentence[pos]
    return None


def main():
    ap = argparse.ArgumentParser(description=__doc__.split('\n')[0])
    ap.add_argument('corpus')
    ap.add_argument('data')
    ap.add_argument('out')
    ap.add_argument('--seed', type=int, default=7)
    ap.add_argument('--lexicon', default='/usr/lib/python3/dist-packages/jieba/dict.txt',
                    help='the word list the lexicon was built from ("word freq tag" lines)')
    args = ap.parse_args()
    rng = random.Random(args.seed)
    lexicon = load_lexicon(args.lexicon)
    confusions = load_confusions(os.path.join(args.data, 'Data', 'Spell'))
    os.makedirs(args.out, exist_ok=True)
    sets = {'tune': [], 'test': []}
    for n, s in enumerate(sentences(args.corpus)):
        name = 'tune' if n % 2 == 0 else 'test'
        rows = sets[name]
        if (n // 2) % 2 == 0:
            rows.append(('clean', s, '', '', ''))
            continue
        injected = inject(s, lexicon, confusions, rng)
        if injected:
            changed, offset, written, right = injected
            rows.append(('error', changed, str(offset), written, right))
    for name, rows in sets.items():
        with open(os.path.join(args.out, name + '.tsv'), 'w', encoding='utf-8') as f:
            for row in rows:
                f.write('\t'.join(row) + '\n')
        print(name, sum(r[0] == 'clean' for r in rows), 'clean,', sum(r[0] == 'error' for r in rows), 'with an error')


if __name__ == '__main__':
    main()

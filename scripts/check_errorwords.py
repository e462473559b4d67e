#!/usr/bin/env python3
"""Checks the default error-word list and the protected-word list.

Usage: check_errorwords.py [--corpus DIR] [--lexicon WORDS]

data/KeyScanner/errorwords.txt holds lines "WRONG-->RIGHT errorword" and
data/KeyScanner/protected.txt lines "WORD protect". Checked: UTF-8 without
BOM, LF line ends, a final newline; the line format; no WRONG twice; WRONG
and RIGHT different, each at least two Chinese characters and equally long;
every protected word holds some WRONG form.

Each WRONG form that is itself a word of the lexicon (by default the jieba
word list, first column) is suspicious: a pair of two real words used in
different senses does not belong in the list. Such a form is reported and
the check fails, unless it is named in KNOWN_MISSPELLINGS below.

With --corpus, every WRONG form found in the DOCX files under DIR is printed
with 20 characters of context on each side, so that a person can see
whether it hits correct text. Hits inside a protected word are not counted.
Exits 1 when a check fails, 0 when both files are clean.
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

# WRONG forms that the lexicon lists although they are misspellings. The
# jieba word list was gathered from real text, so it keeps frequent
# misspellings of idioms and common words, nearly all at the smallest counts
# (2 or 3). Each form below was checked by hand: it is no standard word or
# idiom in any sense, and its RIGHT form is the only standard spelling.
# A new lexicon hit must be checked the same way before it is added here.
KNOWN_MISSPELLINGS = set((
    '再接再励 按步就班 走头无路 甘败下风 谈笑风声 鬼鬼崇崇 金壁辉煌 旁证博引 '
    '震聋发聩 美仑美奂 一张一驰 既往不究 悬梁刺骨 沤心沥血 渡假 峻工 '
    '幅射 布署 松驰 寒喧 脉膊 追朔 针炙 粗旷 '
    '气慨 编缉 防碍 九宵 渲泄 膨涨 水笼头 哀声叹气 '
    '暗然失色 闭关自首 兵慌马乱 不加思索 翻来复去 分道扬镖 风驰电击 高瞻远嘱 '
    '鬼计多端 好高鹜远 合盘托出 轰堂大笑 竭泽而鱼 金榜提名 精萃 举步为艰 '
    '雷历风行 名列前矛 披星带月 迫不急待 人情事故 如法泡制 如雷灌耳 盛气临人 '
    '食不裹腹 随声附合 贪脏枉法 挺而走险 同仇敌慨 委屈求全 无精打彩 兴高彩烈 '
    '真知卓见 直接了当 姿意妄为 坐无虚席 暴燥 璀灿 纷至踏来 鬼斧神功 '
    '画龙点晴 黄梁美梦 金璧辉煌 老奸巨滑 明火执杖 如愿以尝 图穷匕现 众口烁金 '
    '必竟 辨论 承上起下 担搁 锻练 鼓惑 关健 规距 '
    '化装品 焦燥 金钢石 决窍 狂燥 陷井 抱残守阙 不知所错 '
    '初出茅芦 翻天复地 集思广义 两败具伤 物极必返 心甘情原 辩认 竟争力 '
    '再接再历 画蛇填足 死灰复然 黄梁一梦 磬竹难书 事过景迁 娇揉造作 厉精图治 '
    '饮鸠止渴 趋之若骛 中西合壁 额首称庆 蓬壁生辉 遗笑大方 鳞次节比 阀值 '
    '侯选人 气侯 时侯 问侯 装璜 堪测 距阵 冶练 '
    '提练 噪杂 烦燥 浮燥 斟琢 浩翰 严竣 桀傲不驯 '
    '防讯 资询 庄嫁 弊帚自珍 愤概 廖若晨星 摇控 通辑 '
    '决择 决别 震憾 憾动 协迫 班驳 瞻养 颠复 '
    '振耳欲聋 婉惜 博斗 拼博 嗽口 悔人不倦 珊珊来迟 搔扰 '
    '膺品 '
).split())


def read_lines(name, problems):
    path = os.path.join(DATA, name)
    with open(path, 'rb') as f:
        raw = f.read()
    if raw.startswith(b'\xef\xbb\xbf'):
        problems.append(f'{name}: starts with a byte order mark')
        raw = raw[3:]
    if b'\r' in raw:
        problems.append(f'{name}: holds carriage returns; use LF line ends')
    if raw and not raw.endswith(b'\n'):
        problems.append(f'{name}: last line has no newline')
    try:
        text = raw.decode('utf-8')
    except UnicodeDecodeError as e:
        problems.append(f'{name}: not UTF-8: {e}')
        text = raw.decode('utf-8', 'replace')
    lines = text.replace('\r', '').split('\n')
    if lines and lines[-1] == '':
        lines.pop()
    return lines


def check_errorwords(lines, lexicon):
    problems, pairs, suspicious = [], {}, []
    for n, line in enumerate(lines, 1):
        m = ERROR_LINE.match(line)
        if not m:
            problems.append(f'errorwords.txt:{n}: not "WRONG-->RIGHT errorword": {line!r}')
            continue
        wrong, right = m.groups()
        if wrong in pairs:
            problems.append(f'errorwords.txt:{n}: {wrong} listed twice')
        if wrong == right:
            problems.append(f'errorwords.txt:{n}: {wrong}: WRONG and RIGHT are the same')
        if not HAN.match(wrong) or not HAN.match(right):
            problems.append(f'errorwords.txt:{n}: {wrong}-->{right}: both sides must be two or more Chinese characters')
        elif len(wrong) != len(right):
            problems.append(f'errorwords.txt:{n}: {wrong}-->{right}: sides differ in length')
        if wrong in lexicon and wrong not in KNOWN_MISSPELLINGS:
            suspicious.append(f'errorwords.txt:{n}: {wrong} is a lexicon word '
                              f'(count {lexicon[wrong]}, {right}: {lexicon.get(right, 0)}); '
                              f'remove the line or check it and add it to KNOWN_MISSPELLINGS')
        pairs[wrong] = right
    for word in sorted(KNOWN_MISSPELLINGS - set(pairs)):
        problems.append(f'check_errorwords.py: KNOWN_MISSPELLINGS names {word}, which the list no longer holds')
    return problems + suspicious, pairs


def check_protected(lines, pairs):
    problems, words = [], []
    for n, line in enumerate(lines, 1):
        m = PROTECT_LINE.match(line)
        if not m or not HAN.match(m.group(1)):
            problems.append(f'protected.txt:{n}: not "WORD protect" with a Chinese word of two or more characters: {line!r}')
            continue
        word = m.group(1)
        if word in words:
            problems.append(f'protected.txt:{n}: {word} listed twice')
        words.append(word)
        if not any(wrong in word for wrong in pairs):
            problems.append(f'protected.txt:{n}: {word} holds no error word: nothing to protect')
        if word in pairs:
            problems.append(f'protected.txt:{n}: {word} is also an error word')
    return problems, words


def corpus_texts(corpus):
    for root, dirs, files in os.walk(corpus):
        dirs.sort()
        for name in sorted(files):
            if not name.lower().endswith('.docx'):
                continue
            try:
                with zipfile.ZipFile(os.path.join(root, name)) as z:
                    xml = z.read('word/document.xml').decode('utf-8', 'replace')
            except (zipfile.BadZipFile, KeyError, OSError):
                continue
            xml = re.sub(r'</w:p>', '\n', xml)
            yield name, re.sub(r'<[^>]+>', '', xml)


def protected_at(text, start, wrong, protected):
    """True when the hit of wrong at start lies inside a protected word."""
    for word in protected:
        offset = word.find(wrong)
        while offset >= 0:
            if text.startswith(word, start - offset):
                return True
            offset = word.find(wrong, offset + 1)
    return False


def report_corpus_hits(corpus, pairs, protected):
    counts = {}
    for name, text in corpus_texts(corpus):
        for wrong in pairs:
            for m in re.finditer(re.escape(wrong), text):
                if protected_at(text, m.start(), wrong, protected):
                    continue
                counts[wrong] = counts.get(wrong, 0) + 1
                around = text[max(0, m.start() - 20):m.end() + 20].replace('\n', ' ')
                print(f'{name}: {wrong}-->{pairs[wrong]}: ...{around}...')
    for wrong, count in sorted(counts.items(), key=lambda kv: -kv[1]):
        print(f'{count:5d}  {wrong}-->{pairs[wrong]}')
    print(f'{sum(counts.values())} error words in the corpus')


def main():
    ap = argparse.ArgumentParser(description=__doc__.split('\n')[0])
    ap.add_argument('--corpus', help='directory searched for .docx files')
    ap.add_argument('--lexicon', default='/usr/lib/python3/dist-packages/jieba/dict.txt',
                    help='word list, one word per line in the first column')
    args = ap.parse_args()
    lexicon = {}
    if os.path.exists(args.lexicon):
        with open(args.lexicon, encoding='utf-8') as f:
            for line in f:
                fields = line.split()
                if fields:
                    lexicon[fields[0]] = int(fields[1]) if len(fields) > 1 and fields[1].isdigit() else 0
    else:
        print(f'lexicon {args.lexicon} not found: lexicon check skipped')
    problems = []
    error_lines = read_lines('errorwords.txt', problems)
    protect_lines = read_lines('protected.txt', problems)
    more, pairs = check_errorwords(error_lines, lexicon)
    problems += more
    more, protected = check_protected(protect_lines, pairs)
    problems += more
    for p in problems:
        print(p)
    print(f'{len(pairs)} error words, {len(protected)} protected words, {len(problems)} problems')
    if args.corpus:
        report_corpus_hits(args.corpus, pairs, protected)
    return 1 if problems else 0


if __name__ == '__main__':
    sys.exit(main())

#!/usr/bin/env python3
"""Writes the paragraph texts of every DOCX under a folder, one paragraph a
line, for the segmentation benchmark. A plain reading of word/document.xml:
the text runs (w:t) of each paragraph (w:p), joined.

Usage: corpus_text.py FOLDER OUTPUT_FILE
"""
import os
import re
import sys
import zipfile

PARA = re.compile(r"<w:p[ >].*?</w:p>", re.S)
TEXT = re.compile(r"<w:t(?: [^>]*)?>([^<]*)</w:t>")
ENTITIES = {"&lt;": "<", "&gt;": ">", "&amp;": "&", "&quot;": '"', "&apos;": "'"}


def paragraphs(path):
    try:
        with zipfile.ZipFile(path) as z:
            xml = z.read("word/document.xml").decode("utf-8", "replace")
    except (zipfile.BadZipFile, KeyError):
        return
    for p in PARA.finditer(xml):
        text = "".join(TEXT.findall(p.group(0)))
        text = re.sub(r"&(lt|gt|amp|quot|apos);", lambda m: ENTITIES[m.group(0)], text)
        if text.strip():
            yield text.replace("\n", " ")


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    with open(sys.argv[2], "w", encoding="utf-8") as out:
        for root, _, files in os.walk(sys.argv[1]):
            for name in sorted(files):
                if name.lower().endswith(".docx"):
                    for line in paragraphs(os.path.join(root, name)):
                        out.write(line + "\n")


if __name__ == "__main__":
    main()

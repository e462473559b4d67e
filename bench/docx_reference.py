#!/usr/bin/env python3
"""Times the reference readers of a DOCX, for comparison with the engine:
python-docx opening the file and collecting every paragraph text, table
cells included (best of 3, in process), and `unzip -p FILE word/document.xml`
(best of 5, as a process). Prints one "name seconds" line each.

Usage: docx_reference.py FILE.docx
"""
import subprocess
import sys
import time

import docx


def python_docx(path):
    best = 1e9
    for _ in range(3):
        start = time.perf_counter()
        document = docx.Document(path)
        texts = [p.text for p in document.paragraphs]
        for table in document.tables:
            for row in table.rows:
                for cell in row.cells:
                    texts.extend(p.text for p in cell.paragraphs)
        best = min(best, time.perf_counter() - start)
    return best


def unzip(path):
    best = 1e9
    for _ in range(5):
        start = time.perf_counter()
        subprocess.run(["unzip", "-p", path, "word/document.xml"], stdout=subprocess.DEVNULL, check=True)
        best = min(best, time.perf_counter() - start)
    return best


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    print("python-docx %.6f" % python_docx(sys.argv[1]))
    print("unzip %.6f" % unzip(sys.argv[1]))

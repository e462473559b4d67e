#!/usr/bin/env python3
"""Packs an unpacked DOCX folder (such as examples/sample_report) into a DOCX.

Usage: pack_docx.py FOLDER OUT.docx
"""
import os
import sys
import zipfile

folder, out = sys.argv[1], sys.argv[2]
with zipfile.ZipFile(out, "w", zipfile.ZIP_DEFLATED) as z:
    for root, _, files in sorted(os.walk(folder)):
        for name in sorted(files):
            path = os.path.join(root, name)
            z.write(path, os.path.relpath(path, folder))

#!/usr/bin/env python3
"""Prints the findings of a check's JSON result, one "error paraId offset"
line each, sorted, so results of the same document can be compared."""
import json
import sys

def rows(value):
    if isinstance(value, dict):
        if 'errorno' in value and 'paraId' in value:
            yield f"{value['errorno']} {value['paraId']} {value.get('offset', '')}"
        for v in value.values():
            yield from rows(v)
    elif isinstance(value, list):
        for v in value:
            yield from rows(v)

text = open(sys.argv[1], encoding='utf-8').read()
found = sorted(rows(json.loads(text[text.index('{'):])))
if not found:
    sys.exit(f'{sys.argv[1]}: no findings')
print('\n'.join(found))

#!/usr/bin/env python3
"""Generates the case tables of the kernels from the case tables of the library.

Usage: tools/generate_case_rows.py src/string/case_tables.cpp > src/string/kernels/case_rows.cpp

Where X, Y and A give the property word of one code unit in three steps, these give what is added to
any of the 64 code units of a row: one step for the row, and its 64 differences side by side. Rows
without a mapping share row 0; equal rows are stored once.
"""
import re
import sys

from generate_case_tables import HAS_LOWER, HAS_UPPER, print_array, print_source


def read_array(source, name):
    body = re.search(rf'{name}\[\d+\] = {{([^}}]*)}}', source).group(1)
    return [int(v) for v in re.findall(r'-?\d+', body)]


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    with open(sys.argv[1], encoding='ascii') as file:
        source = file.read()
    x, y, a = (read_array(source, name) for name in 'XYA')

    def deltas(code):
        word = a[y[x[code >> 6] | (code & 63)]]
        delta = word >> 22
        return (delta if word & HAS_LOWER else 0, -delta if word & HAS_UPPER else 0)

    rows = {((0, 0),) * 64: 0}
    row_of = [rows.setdefault(tuple(deltas(start + i) for i in range(64)), len(rows))
              for start in range(0, 0x10000, 64)]
    assert len(rows) <= 256

    def print_arrays():
        print_array('Zel8u kRowOf[1024]', row_of, 2, 32)
        for direction, name in enumerate(('kToLower', 'kToUpper')):
            print()
            flat = [delta[direction] & 0xFFFF for row in rows for delta in row]
            print_array(f'Zel16u {name}[{len(rows)} * kRowLength]', flat, 4, 16)

    print_source('tools/generate_case_rows.py from case_tables.cpp',
                 'string/kernels/case_rows.h', 'case_rows', print_arrays)


if __name__ == '__main__':
    main()

#!/usr/bin/env python3
"""Generates the case tables of the 16-bit string functions.

Usage: tools/generate_case_tables.py UnicodeData.txt > src/string/case_tables.cpp

The input is the UnicodeData.txt of Unicode 2.0.14. The tables cover the 65536 code units in three
levels: X names the block of 64 entries in Y that a code unit lies in, Y the property word in A.
Equal blocks and equal words are stored once, in the order of their first use.

Property word, from the top:

  31..22  case delta, signed: lowercase minus uppercase
      21  has a lowercase form, code unit + delta
      20  has an uppercase form, code unit - delta
  19..0   properties that the case functions do not read:
      19  unused
      18  white space: separating controls, and separators that allow a line break
  17..16  identifier class: 0 none, 1 start, 2 part only, 3 ignorable
  15..12  unused
  11..10  numeric kind: 0 none, 1 an integer of 0..31, 2 a Latin letter as a digit above 9,
          3 any other number
   9..5   numeric offset: kind 1 has the value (c + offset) & 31, kind 2 has 10 more than that
   4..0   general category: position in CATEGORIES
"""
import sys

CATEGORIES = (
    'Cn Lu Ll Lt Lm Lo Mn Me Mc Nd Nl No Zs Zl Zp Cc Cf Co Cs '
    'Pd Ps Pe Pc Po Sm Sc Sk So').split()

# Mappings above this code unit, and pairs further apart than the delta can say, are left out.
LAST_MAPPED = 0xFF5A
DELTAS = range(-512, 512)

HAS_LOWER = 1 << 21
HAS_UPPER = 1 << 20
WHITE_SPACE = 1 << 18
IDENTIFIER_START, IDENTIFIER_PART, IDENTIFIER_IGNORABLE = 1 << 16, 2 << 16, 3 << 16
SMALL_NUMBER, LETTER_DIGIT, OTHER_NUMBER = 1 << 10, 2 << 10, 3 << 10

SEPARATING_CONTROLS = (*range(0x09, 0x0E), *range(0x1C, 0x20))
NO_BREAK_SPACES = (0x00A0, 0x2007)
LATIN_LETTERS = frozenset(
    start + i for start in (0x41, 0x61, 0xFF21, 0xFF41) for i in range(26))


def read_unicode_data(path):
    """Returns {code unit: fields}, ranges expanded."""
    rows = {}
    with open(path, encoding='ascii') as file:
        for line in file:
            fields = line.rstrip('\n').split(';')
            code = int(fields[0], 16)
            if fields[1].endswith(', First>'):
                first = code
            elif fields[1].endswith(', Last>'):
                rows.update((c, fields) for c in range(first, code + 1))
            else:
                rows[code] = fields
    return rows


def case_bits(code, fields):
    upper, lower = fields[12], fields[13]
    deltas = set()
    bits = 0
    if code > LAST_MAPPED:
        return 0
    if lower and int(lower, 16) - code in DELTAS:
        deltas.add(int(lower, 16) - code)
        bits |= HAS_LOWER
    if upper and code - int(upper, 16) in DELTAS:
        deltas.add(code - int(upper, 16))
        bits |= HAS_UPPER
    if not deltas:
        return 0
    # A titlecase letter stands halfway between its two forms, so one delta serves both.
    (delta,) = deltas
    return bits | (delta & 0x3FF) << 22


def numeric_bits(code, value):
    if code in LATIN_LETTERS:
        # Every first letter, capital or small, full width or not, is 1 above a multiple of 32.
        return LETTER_DIGIT | (-1 & 31) << 5
    if value.isdigit() and int(value) < 32:
        return SMALL_NUMBER | ((int(value) - code) & 31) << 5
    return OTHER_NUMBER if value else 0


def identifier_bits(code, category):
    if category[0] == 'L' or category == 'Nl':
        return IDENTIFIER_START
    if category in ('Nd', 'Mn', 'Mc', 'Pc'):
        return IDENTIFIER_PART
    if category == 'Cf' or category == 'Cc' and code not in SEPARATING_CONTROLS:
        return IDENTIFIER_IGNORABLE
    return 0


def white_space_bit(code, category):
    separator = category[0] == 'Z' and code not in NO_BREAK_SPACES
    return WHITE_SPACE if separator or code in SEPARATING_CONTROLS else 0


def property_word(code, fields):
    if fields is None:
        return 0
    category = fields[2]
    return (case_bits(code, fields) | white_space_bit(code, category) |
            identifier_bits(code, category) | numeric_bits(code, fields[8]) |
            CATEGORIES.index(category))


def build(rows):
    """Returns the lists X, Y and A."""
    words, blocks = {}, {}
    block_starts = []
    for start in range(0, 0x10000, 64):
        block = tuple(words.setdefault(property_word(c, rows.get(c)), len(words))
                      for c in range(start, start + 64))
        block_starts.append(blocks.setdefault(block, 64 * len(blocks)))
    entries = [entry for block in blocks for entry in block]
    return block_starts, entries, list(words)


def print_array(declaration, values, width, per_line=None):
    print(f'const {declaration} = {{')
    per_line = per_line or 95 // (width + 2)
    for i in range(0, len(values), per_line):
        print('    ' + ', '.join(f'{v:{width}}' for v in values[i:i + per_line]) + ',')
    print('};')


def print_source(origin, header, namespace, print_arrays):
    print(f'// Written by {origin}; do not edit.')
    print(f'#include "{header}"')
    print()
    print('// clang-format off')
    print(f'namespace zel::{namespace} {{')
    print()
    print_arrays()
    print()
    print(f'}}  // namespace zel::{namespace}')
    print('// clang-format on')


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    x, y, a = build(read_unicode_data(sys.argv[1]))
    if len(a) > 128:
        sys.exit(f'{len(a)} property words do not fit the table')
    a += [0] * (128 - len(a))
    signed = [word - (1 << 32) if word >> 31 else word for word in a]

    def print_arrays():
        print_array('Zel16u X[1024]', x, 4)
        print()
        print_array(f'Zel8u Y[{len(y)}]', y, 3)
        print()
        print_array('int A[128]', signed, 11)

    print_source('tools/generate_case_tables.py from Unicode 2.0.14',
                 'string/case_tables.h', 'case_tables', print_arrays)


if __name__ == '__main__':
    main()

#!/usr/bin/env python3
"""Keeps the README's table of figures: one line a job, out of the benchmarks' own numbers.

Usage: headline.py [--check] README DIRECTORY

DIRECTORY holds strings.csv and regex.csv as the last full runs wrote them. Rewrites what stands in the
README between the lines <!-- figures --> and <!-- /figures -->; with --check only tells, by its exit
code, whether that is what the numbers say.
"""

import os
import re
import sys
from collections import Counter

from report import LIBRARY, escaped, geometric_mean, ratio_text, read_rows

# Every family belongs to just one job.
JOBS = {
    "strings": [
        ("find a byte or unit", r"Find(Rev)?C \d"),
        ("find one of a set", r"Find(Rev)?CAny "),
        ("find a string", r"Find(Rev)? \d"),
        ("compare", r"(Compare|Equal) "),
        ("compare ignoring case", r"CompareIgnoreCase"),
        ("change case, replace", r"(Upper|Lower)case|Replace"),
        ("copy, move, clear", r"Copy|Move|Zero"),
        ("insert, remove, join", r"Insert|Remove|Concat"),
        ("split", r"Split"),
        ("trim", r"Trim"),
        ("hash", r"Hash"),
        ("UTF-8 to UTF-16 and back", r"ConvertUTF"),
    ],
    "regex": [
        ("all matches: literals", r"one literal|alternation of literals"),
        ("all matches: classes and runs", r"class |plain runs|class sequences|fixed shapes|small text"),
        ("all matches: lines, quoted strings", r"lines|whole lines|quoted"),
        ("all matches: e-mail, key=value, URL", r"e-mail"),
        ("all matches: back-references, look-around", r"back-references|look-around"),
        ("all matches: nested and hopeless patterns", r"nested|hopeless"),
        ("all matches: Unicode", r"Unicode"),
        ("first match in a short subject", r"validate|captures"),
        ("compile", r"compile"),
        ("replace all", r"replace-all"),
        ("pattern sets on short lines", r"pattern sets"),
    ],
}
BEGIN, END = "<!-- figures -->\n", "<!-- /figures -->\n"


def line(job, rows):
    ratios = [row.ratio for row in rows]
    peers = Counter(row.best(("package", "loop")) for row in rows)
    names = ", ".join(name for name, _ in peers.most_common(2))
    return (f"| {job} | {len(rows)} | **{ratio_text(geometric_mean(ratios))}** | "
            f"{ratio_text(min(ratios))} | {escaped(names)} |")


def table(directory):
    lines = ["| job | rows | times as fast as the best peer, geometric mean | in the worst row | mostly against |",
             "|---|---:|---:|---:|---|"]
    for suite, jobs in JOBS.items():
        rows = [row for row in read_rows(os.path.join(directory, suite + ".csv"))
                if row.ratio and not row.best(("package", "loop")).startswith(LIBRARY)]
        for job, pattern in jobs:
            members = [row for row in rows if re.match(pattern, row.family)]
            rows = [row for row in rows if row not in members]
            if members:
                lines.append(line(job, members))
        if rows:
            sys.exit(f"no job for {sorted({row.family for row in rows})}")
    return "\n".join(lines) + "\n"


def main():
    check = sys.argv[1] == "--check"
    readme, directory = sys.argv[-2:]
    with open(readme, encoding="utf-8") as file:
        text = file.read()
    head, rest = text.split(BEGIN)
    tail = rest.split(END)[1]
    renewed = head + BEGIN + table(directory) + END + tail
    if check:
        sys.exit(0 if renewed == text else f"{readme} does not say what {directory} says")
    with open(readme, "w", encoding="utf-8") as file:
        file.write(renewed)


if __name__ == "__main__":
    main()

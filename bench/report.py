#!/usr/bin/env python3
"""Turns the measurements of one benchmark run into a Markdown table and SVG plots.

Usage: report.py SUITE CSV DIRECTORY COMMAND PEERS

SUITE is strings or regex, CSV what bench_strings or bench_regex wrote, COMMAND what the reader types
to repeat the run, PEERS the names and versions of the peers in a line. Writes
SUITE.csv (a copy), SUITE.md and SUITE-*.svg into DIRECTORY. The plots need gnuplot.
"""

import csv
import math
import os
import re
import shutil
import subprocess
import sys
from collections import defaultdict

LIBRARY = "zelchmx"
LIBRARY_COLOUR = "#d62728"
COLOURS = {
    LIBRARY: LIBRARY_COLOUR, "loop -O2": "#888888", "loop -O3 native": "#444444",
    "PCRE2": "#1f77b4", "PCRE2 JIT": "#000000", "RE2": "#2ca02c", "Oniguruma": "#bcbd22",
    "Boost.Regex": "#9467bd", "std::regex": "#8c564b", "Hyperscan": "#ff7f0e",
    "worst row": "#888888", "geometric mean": LIBRARY_COLOUR,
}
OTHER_COLOURS = ["#1f77b4", "#2ca02c", "#9467bd", "#8c564b", "#e377c2", "#17becf"]


class Row:
    """One row: its contestants' times, and how the library stands beside them."""

    def __init__(self, records):
        first = records[0]
        self.family, self.variant, self.size = first["family"], first["variant"], first["size"]
        self.bytes = float(first["bytes"])
        self.must_ratio, self.must_ns = float(first["must_ratio"]), float(first["must_ns"])
        self.must_peer = first["must_peer"]
        self.times = {r["contestant"]: float(r["median_ns"]) for r in records}
        self.times_library = {r["contestant"]: float(r["times_library"]) for r in records}
        self.kinds = {r["contestant"]: r["kind"] for r in records}
        self.ours = self.times.get(LIBRARY)

    def best(self, kinds):
        """The fastest peer of the kinds, or None."""
        peers = [name for name in self.times if self.kinds[name] in kinds]
        return min(peers, key=self.times_library.get, default=None)

    def ratio_to(self, peer):
        return self.times_library.get(peer) or None

    @property
    def ratio(self):
        return self.ratio_to(self.best(("package", "loop")))

    @property
    def package_ratio(self):
        return self.ratio_to(self.best(("package",)))

    @property
    def must_text(self):
        if self.must_ns:
            return f"{self.must_ns:g} ns"
        if not self.must_ratio:
            return ""
        return f"{self.must_ratio:g}" + (f" of {self.must_peer}" if self.must_peer else "")

    @property
    def met(self):
        """Whether the library reaches what is asked of it; None when nothing is."""
        if self.must_ns:
            return self.ours <= self.must_ns
        if not self.must_ratio:
            return None
        ratio = self.ratio_to(self.must_peer) if self.must_peer else self.ratio
        return None if ratio is None else ratio >= self.must_ratio

    @property
    def name(self):
        return ", ".join(part for part in (self.family, self.variant, self.size) if part)


def geometric_mean(values):
    values = [v for v in values if v]
    return math.exp(sum(map(math.log, values)) / len(values)) if values else None


def number(value):
    """Three significant digits."""
    if value is None:
        return ""
    digits = max(0, 2 - int(math.floor(math.log10(value)))) if value > 0 else 0
    return f"{value:.{min(digits, 3)}f}"


def ratio_text(value):
    if value is None:
        return ""
    return f"{value:.2f}" if value < 10 else f"{value:.0f}"


def read_rows(path):
    grouped = defaultdict(list)
    with open(path, newline="", encoding="utf-8") as file:
        for record in csv.DictReader(file):
            grouped[record["family"], record["variant"], record["size"]].append(record)
    return [Row(records) for records in grouped.values()]


def in_order(rows):
    """All contestants of the rows in the order in which they first appear, the library last."""
    names = dict.fromkeys(name for row in rows for name in row.times if name != LIBRARY)
    return [*names, LIBRARY]


def speed_or_time(row, name):
    """Throughput for long inputs, time a call for short ones."""
    time = row.times.get(name)
    if time is None:
        return ""
    if row.bytes > 1000:
        return number(row.bytes / time)
    return number(time) + " ns"


def escaped(text):
    return text.replace("|", "\\|")


def table(rows):
    """One table for rows of one family: contestants side by side."""
    names = in_order(rows)
    variants = any(row.variant for row in rows)
    head = (["input"] if variants else []) + ["size"] + names + ["ratio", "must", ""]
    lines = ["| " + " | ".join(map(escaped, head)) + " |",
             "|" + "---|" * (1 + variants) + "---:|" * (len(names) + 2) + "---|"]
    for row in rows:
        best = row.best(("package", "loop"))
        cells = ([row.variant] if variants else []) + [row.size]
        for name in names:
            cell = speed_or_time(row, name)
            cells.append(f"**{cell}**" if name == best and cell else cell)
        met = row.met
        cells += [ratio_text(row.ratio), row.must_text,
                  "" if met is None else "met" if met else "missed"]
        lines.append("| " + " | ".join(map(escaped, cells)) + " |")
    return "\n".join(lines)


def summary(rows, families):
    asked = [row for row in rows if row.met is not None]
    losses = [row for row in rows if row.ratio and row.ratio < 1]
    with_package = [row for row in rows if row.package_ratio]
    lines = [
        f"- {len(rows)} rows; geometric mean of the ratio to the best peer of each row, hand-written "
        f"loops included: **{ratio_text(geometric_mean(r.ratio for r in rows))}**",
        f"- {len(with_package)} rows with a packaged peer; geometric mean of the ratio to the best "
        f"of those: **{ratio_text(geometric_mean(r.package_ratio for r in with_package))}**",
        f"- {len(losses)} rows lost to the best peer",
        f"- {sum(r.met for r in asked)} of {len(asked)} rows that have a target reach it",
        "",
        "| family | rows | geometric mean | worst | targets met |",
        "|---|---:|---:|---:|---:|",
    ]
    for family, members in families.items():
        ratios = [r.ratio for r in members if r.ratio]
        met = [r.met for r in members if r.met is not None]
        lines.append(f"| {escaped(family)} | {len(members)} | {ratio_text(geometric_mean(ratios))} | "
                     f"{ratio_text(min(ratios, default=None))} | "
                     f"{f'{sum(met)} of {len(met)}' if met else ''} |")
    return "\n".join(lines)


def losses(rows):
    lost = sorted((row for row in rows if row.ratio and row.ratio < 1), key=lambda row: row.ratio)
    if not lost:
        return "None."
    lines = ["| row | best peer | its figure | the library's | ratio |", "|---|---|---:|---:|---:|"]
    for row in lost:
        best = row.best(("package", "loop"))
        lines.append(f"| {escaped(row.name)} | {best} | {speed_or_time(row, best)} | "
                     f"{speed_or_time(row, LIBRARY)} | {ratio_text(row.ratio)} |")
    return "\n".join(lines)


def machine():
    def output(*command):
        try:
            return subprocess.run(command, capture_output=True, text=True, check=True).stdout
        except (OSError, subprocess.CalledProcessError):
            return ""

    with open("/proc/cpuinfo", encoding="utf-8") as file:
        cpu = file.read()
    model = re.search(r"model name\s*: (.*)", cpu)
    flags = re.search(r"flags\s*: (.*)", cpu)
    wide = [f for f in ("sse4_2", "avx2", "avx512bw", "avx512vbmi", "avx512_vbmi2")
            if flags and f in flags.group(1).split()]
    caches = " / ".join(output("getconf", name).strip() or "?" for name in
                        ("LEVEL1_DCACHE_SIZE", "LEVEL2_CACHE_SIZE", "LEVEL3_CACHE_SIZE"))
    return [
        f"processor: {model.group(1) if model else 'unknown'}, {os.cpu_count()} cores, "
        f"L1d / L2 / L3 {caches} bytes, {' '.join(wide)}",
        f"compiler: {(output('c++', '--version') or 'unknown').splitlines()[0]}",
        f"C library: {(output('ldd', '--version') or 'unknown').splitlines()[0]}",
    ]


EXPLAINED = {
    "strings": """Each row is one job on one input. Figures are GB/s of input, or nanoseconds a call where the input
is short; `1..64 B` is a mix of random lengths at random alignments. The best peer is bold; xxHash computes
another hash and is shown as a ceiling only. *ratio* is the best peer's time divided by the library's,
taken within each round: above 1 the library is faster.""",
    "regex": """Each row is one pattern on one text. Figures are GB/s of text, or nanoseconds a subject (a pattern,
for compilation) where there is no long text. The best peer is bold. *ratio* is the best peer's time
divided by the library's, taken within each round: above 1 the library is faster. An engine is missing where it has no such
pattern, and Hyperscan, which reports every end of every match, takes part only where its answer is that
of the others.""",
}


def markdown(suite, rows, command, peers, plots):
    families = defaultdict(list)
    for row in rows:
        families[row.family].append(row)
    parts = [
        f"# Benchmark: {suite}",
        f"Written by `{command}`; do not edit. The figures and the ratios are medians of the rounds of one "
        "run, in which the contestants of a row take turns in random order. Every contestant's answer was "
        "compared before it was timed.",
        EXPLAINED[suite],
        "\n".join("- " + line for line in machine() + ([f"peers: {peers}"] if peers else [])),
        "## Summary\n\n" + summary(rows, families),
        "## Losses\n\n" + losses(rows),
        "\n\n".join(f"![{title}]({file})" for title, file in plots),
    ]
    parts += [f"## {family}\n\n{table(members)}" for family, members in families.items()]
    return "\n\n".join(part for part in parts if part) + "\n"


# ---- Plots --------------------------------------------------------------------------------------

def quoted(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


def colours(names):
    others = [name for name in names if name not in COLOURS]
    return COLOURS | {name: OTHER_COLOURS[i % len(OTHER_COLOURS)] for i, name in enumerate(others)}


def gnuplot(script):
    subprocess.run(["gnuplot"], input=script, text=True, check=True)


def size_plot(path, panels):
    """Throughput over size, one panel a family, one line a contestant."""
    names = in_order([row for rows in panels.values() for row in rows])
    colour = colours(names)
    columns = 3
    lines = -(-len(panels) // columns)
    script = [f"set terminal svg size 1200,{340 * lines} dynamic font 'sans,11' background '#ffffff'",
              f"set output {quoted(path)}", f"set multiplot layout {lines},{columns}",
              "set logscale xy 10", "set format x '10^{%L}'", "set xlabel 'bytes'", "set ylabel 'GB/s'",
              "set grid", "set xrange [5:1.2e8]", "set key below font ',9' samplen 1.5"]
    for family, rows in panels.items():
        rows = sorted((r for r in rows if not r.size.startswith("1..")), key=lambda r: r.bytes)
        data, curves = [], []
        for name in in_order(rows):
            points = [(r.bytes, r.bytes / r.times[name]) for r in rows if name in r.times]
            if not points:
                continue
            block = f"$d{len(data)}"
            data.append(block + " << EOD\n" + "\n".join(f"{x} {y}" for x, y in points) + "\nEOD")
            width = 3 if name == LIBRARY else 1.5
            curves.append(f"{block} with linespoints lw {width} pt 7 ps 0.4 lc rgb {quoted(colour[name])} "
                          f"title {quoted(name)} noenhanced")
        script += data + [f"set title {quoted(family)} noenhanced", "plot " + ", ".join(curves)]
    gnuplot("\n".join(script + ["unset multiplot", ""]))


def dot_plot(path, title, axis, labels, series):
    """One line of dots a label: series maps a name to its values, None where it has none."""
    colour = colours(series)
    height = 110 + 20 * len(labels)
    ticks = ", ".join(f"{quoted(label)} {len(labels) - i}" for i, label in enumerate(labels))
    script = [f"set terminal svg size 1000,{height} dynamic font 'sans,11' background '#ffffff'",
              f"set output {quoted(path)}", f"set title {quoted(title)}", "set logscale x 10",
              f"set xlabel {quoted(axis)}", f"set yrange [0.3:{len(labels) + 0.7}]",
              f"set ytics ({ticks}) noenhanced", "set grid", "set key outside top horizontal",
              "set lmargin 42"] + (["set arrow from 1,graph 0 to 1,graph 1 nohead lt 1 lc rgb '#000000'"]
                                   if axis.startswith("ratio") else [])
    data, dots = [], []
    for i, (name, values) in enumerate(series.items()):
        points = [f"{value} {len(labels) - k}" for k, value in enumerate(values) if value]
        data.append(f"$d{i} << EOD\n" + "\n".join(points) + "\nEOD")
        size = 1.1 if name == LIBRARY else 0.7
        dots.append(f"$d{i} with points pt 7 ps {size} lc rgb {quoted(colour[name])} "
                    f"title {quoted(name)} noenhanced")
    gnuplot("\n".join(script + data + ["plot " + ", ".join(dots), ""]))


def ratio_plot(directory, suite, rows, label):
    grouped = defaultdict(list)
    for row in rows:
        if row.ratio:
            grouped[label(row)].append(row.ratio)
    labels = list(grouped)
    file = f"{suite}-ratio.svg"
    dot_plot(os.path.join(directory, file), "Best peer's time / zelchmx's time",
             "ratio, above 1 zelchmx is faster", labels,
             {"worst row": [min(grouped[k]) for k in labels],
              "geometric mean": [geometric_mean(grouped[k]) for k in labels]})
    return ("Ratio to the best peer", file)


def strings_plots(directory, rows):
    chosen = [("FindC 8u", ""), ("FindCAny 8u", "16 members"), ("Find 8u", "rare needle"),
              ("Compare 8u", ""), ("UppercaseLatin 8u", ""), ("Lowercase 16u", "Cyrillic"),
              ("HashSJ2 8u", ""), ("ConvertUTF 8u16u", "CJK"), ("Copy 8u", "")]
    panels = {}
    for family, variant in chosen:
        members = [r for r in rows if r.family == family and r.variant == variant]
        if len(members) > 2:
            panels[f"{family}, {variant}" if variant else family] = members
    plots = [ratio_plot(directory, "strings", rows, lambda row: row.family)]
    if panels:
        size_plot(os.path.join(directory, "strings-sizes.svg"), panels)
        plots.append(("Throughput over size", "strings-sizes.svg"))
    return plots


def regex_plots(directory, rows):
    plots = [ratio_plot(directory, "regex", rows, lambda row: f"{row.family}: {row.variant}")]
    for size, title, axis, value in (
            ("find-all", "Find-all", "GB/s", lambda r, n: r.bytes / r.times[n]),
            ("first match", "First match in short subjects", "ns a subject", lambda r, n: r.times[n]),
            ("", "Compilation", "ns a pattern", lambda r, n: r.times[n])):
        members = [r for r in rows if r.size == size]
        if not members:
            continue
        file = f"regex-{title.split()[0].lower()}.svg"
        series = {name: [value(r, name) if name in r.times else None for r in members]
                  for name in in_order(members)}
        dot_plot(os.path.join(directory, file), title, axis,
                 [f"{r.family}: {r.variant}" for r in members], series)
        plots.append((title, file))
    return plots


def main():
    suite, path, directory, command, peers = sys.argv[1:6]
    os.makedirs(directory, exist_ok=True)
    rows = read_rows(path)
    if not rows:
        sys.exit(f"no rows in {path}")
    copy = os.path.join(directory, suite + ".csv")
    if os.path.abspath(path) != os.path.abspath(copy):
        shutil.copyfile(path, copy)
    plots = []
    if shutil.which("gnuplot"):
        plots = (strings_plots if suite == "strings" else regex_plots)(directory, rows)
    with open(os.path.join(directory, suite + ".md"), "w", encoding="utf-8") as file:
        file.write(markdown(suite, rows, command, peers, plots))


if __name__ == "__main__":
    main()

#!/usr/bin/env python3
"""Makes the texts of the regex benchmarks from documents that Debian packages install.

Usage: corpus.py DIRECTORY

Each text is a few megabytes, the same on every machine with the same package versions:

  prose.txt     English manual pages, markup removed, ASCII
  code.txt      the headers of the C++ standard library
  packages.txt  the package index, or the status of the installed packages
  words.txt     the word list, one word a line
  log.txt       log lines: fixed formats filled with words of the prose in a fixed order
  utf8.txt      manual pages in German, French, Russian, Japanese and Chinese
  lines.txt     lines of exactly 180 bytes for the pattern sets, cut from log and prose
"""

import glob
import gzip
import os
import random
import re
import subprocess
import sys

SIZE = 4_000_000


def read(path):
    opener = gzip.open if path.endswith(".gz") else open
    with opener(path, "rb") as file:
        return file.read()


def without_markup(page):
    """The text of a manual page: no comments, no requests, no font changes."""
    lines = []
    for line in page.split("\n"):
        if line.startswith((".\\\"", "'\\\"")):
            continue
        line = re.sub(r"^[.'][A-Za-z]+ ?", "", line)
        line = re.sub(r"\\f\[?[A-Za-z]+\]?|\\[&/,%|^]", "", line)
        line = line.replace("\\-", "-").replace("\\(bu", "*").replace("\\e", "\\")
        lines.append(line)
    return re.sub(r"\n{3,}", "\n\n", "\n".join(lines))


def ascii_only(data):
    return bytes(b for b in data if b == 9 or b == 10 or 32 <= b < 127)


def manual_pages(*names):
    """The manual pages of Debian packages, in mixed order rather than by the alphabet."""
    listing = subprocess.run(["dpkg", "-L", *names], capture_output=True, text=True, check=False)
    paths = sorted(set(re.findall(r"^/usr/share/man/\S+\.gz$", listing.stdout, re.M)))
    random.Random(1).shuffle(paths)
    for path in paths:
        text = without_markup(read(path).decode("utf-8", "ignore")) if os.path.isfile(path) else ""
        if len(text) > 2000:
            yield text


def up_to(size, pieces):
    text = b""
    for piece in pieces:
        text += piece
        if len(text) >= size:
            break
    end = text.rfind(b"\n", 0, size) + 1
    return text[: end or len(text)]


def prose():
    pages = manual_pages("manpages", "manpages-dev")
    return up_to(SIZE, (ascii_only(page.encode()) + b"\n" for page in pages))


def code():
    paths = sorted(glob.glob("/usr/include/c++/*/**/*.h", recursive=True))
    return up_to(SIZE, (ascii_only(read(path)) + b"\n" for path in paths))


def packages():
    index = subprocess.run(["apt-cache", "dumpavail"], capture_output=True, check=False).stdout
    if len(index) < SIZE:
        index = read("/var/lib/dpkg/status")
    return up_to(SIZE, [ascii_only(index)])


def utf8():
    languages = [manual_pages(f"manpages-{name}") for name in ("de", "fr", "ru", "ja", "zh")]

    def in_turn():
        while languages:
            for pages in list(languages):
                page = next(pages, None)
                if page is None:
                    languages.remove(pages)
                else:
                    yield page[:20000].encode() + b"\n"

    return up_to(SIZE, in_turn())


class LogWriter:
    """Log lines of a handful of formats; every field is drawn from one seeded generator."""

    LEVELS = ["INFO"] * 12 + ["DEBUG"] * 6 + ["WARN"] * 2 + ["ERROR"]
    STATUS = [200] * 12 + [301, 304, 404, 404, 403, 500]

    def __init__(self, prose_text):
        self.random = random.Random(2)
        words = re.findall(r"[a-z]{3,12}", prose_text.decode())
        self.words = words[:200_000]

    def pick(self, choices):
        return choices[self.random.randrange(len(choices))]

    def word(self):
        return self.pick(self.words)

    def phrase(self, low, high):
        return " ".join(self.word() for _ in range(self.random.randint(low, high)))

    def stamp(self):
        r = self.random
        return "2026-%02d-%02d %02d:%02d:%02d,%03d" % (
            r.randint(1, 12), r.randint(1, 28), r.randint(0, 23), r.randint(0, 59),
            r.randint(0, 59), r.randint(0, 999))

    def address(self):
        return ".".join(str(self.random.randint(1, 254)) for _ in range(4))

    def email(self):
        return f"{self.word()}.{self.word()}@{self.word()}.example.{self.pick(['org', 'com', 'net'])}"

    def url(self):
        return f"http{self.pick(['', 's'])}://{self.word()}.example.org/{self.word()}/{self.word()}" \
               f"?{self.word()}={self.random.randint(1, 9999)}"

    def uuid(self):
        digits = "%032x" % self.random.getrandbits(128)
        return "-".join([digits[:8], digits[8:12], digits[12:16], digits[16:20], digits[20:]])

    def line(self):
        r = self.random
        head = f"{self.stamp()} {self.pick(self.LEVELS)} [{self.word()}-{r.randint(1, 16)}] "
        kind = r.randrange(10)
        if kind < 3:
            tail = f"GET {self.url()} from {self.address()} status={self.pick(self.STATUS)} " \
                   f"time={r.randint(1, 5000)}ms"
        elif kind < 5:
            tail = f'user={self.word()} session={self.uuid()} action="{self.phrase(2, 6)}"'
        elif kind < 6:
            tail = f"mail to <{self.email()}> queued as {r.getrandbits(40):010X}: {self.phrase(3, 9)}"
        elif kind < 7:
            tail = f"package {self.word()} upgraded from {r.randint(0, 9)}.{r.randint(0, 30)}." \
                   f"{r.randint(0, 99)} to {r.randint(1, 9)}.{r.randint(0, 30)}.{r.randint(0, 99)}"
        elif kind < 8:
            tail = f"fault at 0x{r.getrandbits(48):012x} in {self.word()}: {self.phrase(4, 10)}"
        else:
            tail = self.phrase(6, 16)
        return (head + tail + "\n").encode()

    def lines(self):
        while True:
            yield self.line()


def set_lines(log_text, prose_text):
    """Lines of 180 bytes, nine of prose to one of the log."""
    flat_prose = re.sub(rb"\s+", b" ", prose_text)
    flat_log = log_text.replace(b"\n", b" ")
    lines = []
    for i in range(6000):
        source, at = (flat_log, i * 180) if i % 10 == 0 else (flat_prose, i * 180)
        lines.append(source[at:at + 180] + b"\n")
    return b"".join(line for line in lines if len(line) == 181)


def main():
    directory = sys.argv[1]
    os.makedirs(directory, exist_ok=True)
    prose_text = prose()
    log_text = up_to(SIZE, LogWriter(prose_text).lines())
    texts = {
        "prose.txt": prose_text,
        "code.txt": code(),
        "packages.txt": packages(),
        "words.txt": ascii_only(read("/usr/share/dict/words")),
        "log.txt": log_text,
        "utf8.txt": utf8(),
        "lines.txt": set_lines(log_text, prose_text),
    }
    short = [name for name, text in texts.items() if len(text) < 500_000]
    if short:
        sys.exit("too little text for " + ", ".join(short) + "; are the manual pages installed?")
    for name, text in texts.items():
        with open(os.path.join(directory, name), "wb") as file:
            file.write(text)
        print(f"{name} {len(text)} bytes")


main()

"""The stores that are measured: what the maker is told, and how large each one becomes."""

import json
import subprocess
from collections import namedtuple

MIB = 1 << 20
FORMATS = ("unicode", "ansi", "unicode4k")
ENCODINGS = ("none", "permute", "cyclic")
USUAL_ENCODING = {"unicode": "permute", "ansi": "permute", "unicode4k": "none"}
MOST_OF_ANSI = 2000  # MiB
ROWS_OF_ANSI = 65535  # the row index of a table counts in two bytes

# `items` is None where the size is asked for; else the store has so many messages, whatever its size.
Case = namedtuple("Case", "options items about")

CASES = {
    "mails": Case([], None, "mails of 2 to 200 KB, a quarter of them with files"),
    "small": Case(["--small"], None, "mails of 2 KB"),
    "files": Case(["--files", "100"], None, "mails of 2 to 200 KB, each with files"),
    "large-files": Case(["--attachment", "8000000"], None, "mails with a file of 8 MB each"),
    "old": Case(["--old", "100"], None, "as many old versions as mails, in pages and blocks that are free"),
    "strewn": Case(["--strewn"], None, "mails of 2 to 200 KB, their blocks and pages in no order"),
    "nodes": Case(["--tiny"], 1_000_000, "1,000,000 mails of one block"),
    "folders": Case(["--tiny", "--per-folder", "1"], 100_000, "100,000 folders of one mail each"),
    "rows": Case(["--tiny", "--one-folder"], 1_000_000, "1,000,000 mails in one folder"),
}

# `more` are options of the maker beside those of the case.
Store = namedtuple("Store", "case format encoding megabytes items more", defaults=((),))


def stores(cases, formats, encodings, sizes, percent, more=()):
    """All stores of that choice. `encodings` of None: each format's usual one."""
    chosen = []
    for case in cases:
        items = CASES[case].items and max(CASES[case].items * percent // 100, 1)
        for form in formats:
            if items and form == "ansi" and case == "rows":
                items = min(items, ROWS_OF_ANSI)
            for encoding in encodings or [USUAL_ENCODING[form]]:
                for size in [0] if items else sizes:
                    if form != "ansi" or size <= MOST_OF_ANSI:
                        chosen.append(Store(case, form, encoding, size, items, tuple(more)))
    return chosen


def kind_of(store):
    return ", ".join((" ".join((store.case, *store.more)), store.format, store.encoding))


def name_of(store):
    return f"{kind_of(store)}, " + (f"{store.items} mails" if store.items else f"{store.megabytes} MiB")


def make(maker, store, path):
    """What the store holds, as the maker says: folders, messages, attachments, oldVersions."""
    options = [*CASES[store.case].options, *store.more, "--format", store.format, "--encoding", store.encoding]
    if store.items:
        options += ["--items", str(store.items)]
    made = subprocess.run([maker, *options, str(store.megabytes), path], check=True, stdout=subprocess.PIPE)
    return json.loads(made.stdout)

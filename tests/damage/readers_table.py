#!/usr/bin/env python3
"""readers_table.py [SEED] - what comes out of damaged stores, case by case, with this program and with other readers.

Prints a table: of the items that a program gets out of the whole stores, how many come out of the damaged copies with
the same content, and, after a plus sign, how many items come out besides: changed, in part, twice, deleted ones. What
this program writes is read by pffexport, so that all are counted alike. VELMORA_CONVERT is the program."""

import collections
import hashlib
import pathlib
import re
import subprocess
import sys
import tempfile

import damaged_stores

# What a store computes for itself, and what readpst writes otherwise in each run.
COMPUTED = re.compile(rb"^(Size|Modification time):\t.*$|^DTSTAMP:.*$|boundary-LibPST-iamunique-\d+", re.MULTILINE)
ITEM = re.compile(r"(?!Folder)[A-Z][A-Za-z ]*\d{5}")  # a folder that is recovered is empty, and is no item


def digest(folder, files):
    said = hashlib.sha256()
    for path in sorted(files):
        said.update(f"{path.relative_to(folder).as_posix()}\n".encode("utf-8", "surrogateescape"))
        said.update(COMPUTED.sub(b"", path.read_bytes()))
    return said.hexdigest()


def run(*words):
    subprocess.run(words, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=damaged_stores.SECONDS)


def pffexport(mode):
    def read(store, work):
        run("pffexport", "-q", "-f", "all", "-m", mode, "-t", work / "export", store)
        items = [path for path in work.glob("export.*/**/*") if path.is_dir() and ITEM.fullmatch(path.name) and
                 "Attachments" not in path.relative_to(work).parts]
        return [digest(item, [path for path in item.rglob("*") if path.is_file()]) for item in items]
    return read


def readpst(store, work):
    """An item is a file with a number, with its attachments as files of that number beside it."""
    out = work / "read"
    out.mkdir(parents=True)
    run("readpst", "-S", "-j0", "-D", "-q", "-o", out, store)
    items = collections.defaultdict(list)
    for path in out.rglob("*"):
        number = re.match(r"\d+", path.name)
        if path.is_file() and number:
            items[path.parent, number[0]].append(path)
    return [hashlib.sha256(b"".join(sorted(COMPUTED.sub(b"", path.read_bytes()) for path in files))).hexdigest()
            for files in items.values()]


def velmora(*options):
    def read(store, work):
        _, made = damaged_stores.convert(store, work / "converted", *options)
        return pffexport("items")(made, work) if made else []
    return read


PROGRAMS = {
    "field by field": velmora(), "with Smart Scan": velmora("--smart"), "complete": velmora("--complete"),
    "complete, deleted and hidden": velmora("--complete", "--deleted", "--hidden"),
    "pffexport": pffexport("items"), "pffexport -m all": pffexport("all"), "readpst": readpst,
}


def items(program, store):
    with tempfile.TemporaryDirectory() as name:
        try:
            return collections.Counter(program(store, pathlib.Path(name)))
        except subprocess.TimeoutExpired:
            return collections.Counter()


def main():
    seed = sys.argv[1] if len(sys.argv) > 1 else "7"
    same, others = collections.Counter(), collections.Counter()
    for store in damaged_stores.whole_stores():
        whole = {name: items(program, store) for name, program in PROGRAMS.items()}
        with tempfile.TemporaryDirectory() as name:
            for case, copy in damaged_stores.damage(store, pathlib.Path(name), seed).items():
                for program, read in PROGRAMS.items():
                    found = items(read, copy)
                    kept = (found & whole[program]).total()
                    same[case, program] += kept
                    others[case, program] += found.total() - kept
    print("| damage |", " | ".join(PROGRAMS), "|")
    print("|---|" + "---:|" * len(PROGRAMS))
    for case in damaged_stores.cases():
        cells = [f"{same[case, name]}" + (f" + {others[case, name]}" if others[case, name] else "") for name in PROGRAMS]
        print(f"| {case} |", " | ".join(cells), "|")


if __name__ == "__main__":
    main()

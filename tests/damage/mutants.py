#!/usr/bin/env python3
"""mutants.py COUNT SEED - converts COUNT damaged copies of small stores, in turn field by field, the same with Smart
Scan, and whole with --verify.

Each copy has one to four changes: flipped bits, sectors of zeros or noise, fields that hold a number on which readers
trip, cuts, stretches of one store put into another. One in eight does not begin where the file does besides: its front
is missing, something else is ahead of it, or another store ahead of it or behind it. The same SEED and number give the same copy; --only N runs one
again, --keep FOLDER keeps those that fail. Fails where a run ends by a signal, by a sanitizer or with an exit code that
does not exist, takes more than 15 seconds of processor time or, without sanitizers, more than 512 MB; and where the checker finds an error
in the new store, which is asked for every copy whose number --check divides.

Stores: forged ones of each format (VELMORA_FORGE_WHOLE, VELMORA_FORGE_DEMO) and, if they are there, the small ones
beside the sources. VELMORA_MANY_RUNS runs the program, with or without sanitizers."""

import argparse
import collections
import os
import pathlib
import random
import shutil
import signal
import subprocess
import sys
import tempfile

import damaged_stores

MODES = ((), ("--smart",), ("--complete", "--verify"), ("--complete", "--hidden", "--deleted", "--verify"))
CODES = (0, 3, 65, 73)
SECONDS = 15
MEGABYTES = 512
LARGEST = 1 << 20
SANITIZER = 99
NUMBERS = (0, 1, 0x7F, 0x80, 0xFF, 0x7FFF, 0x8000, 0xFFE8, 0xFFFF, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 1 << 40, 1 << 63)


def seeds(folder):
    made = [folder / "demo.ost"]
    subprocess.run([os.environ["VELMORA_FORGE_DEMO"], "--sound", made[0]], check=True)
    for form in ("ansi", "unicode", "unicode4k"):
        made.append(folder / f"{form}.pst")
        subprocess.run([os.environ["VELMORA_FORGE_WHOLE"], "everything", form, made[-1]], check=True)
    beside = [path for path in damaged_stores.whole_stores() if path.stat().st_size <= LARGEST]
    return [path.read_bytes() for path in made + beside]


def flip_bits(data, rnd, _):
    for _ in range(rnd.choice((1, 1, 8, 64))):
        data[rnd.randrange(len(data))] ^= 1 << rnd.randrange(8)


def spoil_sectors(data, rnd, _):
    for _ in range(rnd.choice((1, 1, 4, 16))):
        at = rnd.randrange(len(data) // 512) * 512
        data[at:at + 512] = bytes(512) if rnd.randrange(2) else rnd.randbytes(512)


def put_numbers(data, rnd, _):
    for _ in range(rnd.choice((1, 2, 16))):
        width = rnd.choice((1, 2, 4, 8))
        at = rnd.randrange(len(data) - 8) // 2 * 2
        data[at:at + width] = (rnd.choice(NUMBERS) & ((1 << 8 * width) - 1)).to_bytes(width, "little")


def cut(data, rnd, _):
    at, length = rnd.randrange(len(data)), rnd.choice((1, 64, 512, 5000, len(data)))
    if len(data) - length > 1024:
        del data[at:at + length]


def splice(data, rnd, others):
    other = rnd.choice(others)
    length = rnd.choice((64, 512, 4096, 65536))
    source = rnd.randrange(max(1, len(other) - length)) // 64 * 64
    at = rnd.randrange(len(data)) // 64 * 64
    piece = other[source:source + length]
    data[at:at + (len(piece) if rnd.randrange(2) else 0)] = piece


def lose_front(data, rnd, _):
    del data[:rnd.choice((1, 512, 4096, rnd.randrange(len(data) - 1024)))]


def put_ahead(data, rnd, _):
    length = rnd.choice((512, 4096, 65536, rnd.randrange(1, 20000)))
    data[:0] = rnd.choice((bytes, rnd.randbytes))(length)


def join(data, rnd, others):
    other = rnd.choice(others) + rnd.randbytes(rnd.choice((0, 512, rnd.randrange(1, 2000))))
    at = rnd.choice((0, len(data)))
    data[at:at] = other


PLACES = (lose_front, put_ahead, join)
DISPLACED = 8
KINDS = (flip_bits, spoil_sectors, put_numbers, cut, splice)


def mutant(seed, number, originals):
    rnd = random.Random(f"{seed}:{number}")
    data = bytearray(rnd.choice(originals))
    kinds = rnd.choices(KINDS, k=rnd.randint(1, 4))
    rest = random.Random(f"{seed}:{number}:place")
    if rest.randrange(DISPLACED) == 0:
        kinds.append(rest.choice(PLACES))
    for kind in kinds:
        kind(data, rest if kind in PLACES else rnd, originals)
    return data, MODES[number % len(MODES)], [kind.__name__ for kind in kinds]


class Program:
    """The program, up once for all runs"""

    def __init__(self, config):
        self.child = subprocess.Popen(
            [os.environ["VELMORA_MANY_RUNS"]], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
            env={**os.environ, "XDG_CONFIG_HOME": str(config), "SOURCE_DATE_EPOCH": damaged_stores.EPOCH,
                 "ASAN_OPTIONS": f"exitcode={SANITIZER}", "UBSAN_OPTIONS": f"halt_on_error=1:exitcode={SANITIZER}"})

    def run(self, source, out, options):
        """Exit code (None: it did not end in time; below zero: a signal), seconds, megabytes, what it said"""
        said = out.parent / "said"
        line = [said, SECONDS, *options, "--quiet", "--no-progress", source, out]
        self.child.stdin.write("\t".join(map(str, line)) + "\n")
        self.child.stdin.flush()
        code, seconds, kilobytes = self.child.stdout.readline().split()
        ended = None if int(code) in (-signal.SIGPROF, -signal.SIGALRM) else int(code)
        return ended, float(seconds), int(kilobytes) / 1024, said.read_text("utf-8", "replace")


def is_sanitized():
    return b"__asan_init" in pathlib.Path(os.environ["VELMORA_MANY_RUNS"]).read_bytes()


def check(program, source, work, options, asked):
    """What is wrong with one run, and its figures"""
    out = work / "out"
    out.mkdir()
    code, seconds, megabytes, said = program.run(source, out, options)
    wrong = []
    if code is None:
        wrong.append(f"no end after {SECONDS} s")
    elif code not in CODES:
        wrong.append(f"exit code {code}: {said[-2000:]}")
    if megabytes > MEGABYTES and not is_sanitized():
        wrong.append(f"{megabytes:.0f} MB")
    made = sorted(out.glob("*/*.pst"))
    if asked and made:
        checked = subprocess.run([sys.executable, damaged_stores.tool("pstcheck.py"), made[0]], capture_output=True,
                                 text=True)
        if checked.returncode:
            wrong.append("the checker: " + checked.stdout[-2000:])
    return wrong, code, seconds, megabytes, bool(asked and made)


def main():
    ap = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    ap.add_argument("count", type=int)
    ap.add_argument("seed")
    ap.add_argument("--check", type=int, default=20)
    ap.add_argument("--only", type=int)
    ap.add_argument("--keep", type=pathlib.Path)
    a = ap.parse_args()
    has_checker = damaged_stores.tool("pstcheck.py").is_file()
    codes, failed, checked, slowest, largest = collections.Counter(), 0, 0, 0.0, 0.0
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        originals = seeds(folder)
        program = Program(folder / "config")
        for number in range(a.count) if a.only is None else [a.only]:
            data, options, kinds = mutant(a.seed, number, originals)
            work = folder / "work"
            work.mkdir()
            source = work / "mutant.pst"
            source.write_bytes(data)
            wrong, code, seconds, megabytes, looked = check(program, source, work, options, has_checker and number % a.check == 0)
            codes[code] += 1
            checked += looked
            slowest, largest = max(slowest, seconds), max(largest, megabytes)
            for what in wrong:
                print(f"mutant {number} of seed {a.seed} ({' '.join(kinds)}), {' '.join(options)}: {what}", flush=True)
            failed += bool(wrong)
            if wrong and a.keep:
                a.keep.mkdir(exist_ok=True)
                shutil.copy(source, a.keep / f"{a.seed}-{number}.pst")
            shutil.rmtree(work)
    ends = ", ".join(f"{count} with {code}" for code, count in sorted(codes.items(), key=str))
    print(f"{sum(codes.values())} mutants of {len(originals)} stores, seed {a.seed}"
          f"{', under sanitizers' if is_sanitized() else ''}: {failed} failed; ended {ends}; the slowest {slowest:.1f} s, "
          f"the largest {largest:.0f} MB; {checked} new stores checked")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())

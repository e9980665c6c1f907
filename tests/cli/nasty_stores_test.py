"""Stores that were made to do harm: the program ends, says what is lost, and stays within its memory.

    nasty_stores_test.py [PERCENT [NAME or OPTION...]]   prints the figures of each store, at that part of its full size
"""

import json
import os
import pathlib
import subprocess
import sys
import tempfile
import time
import unittest

PROGRAM = os.environ.get("VELMORA_CONVERT", "velmora-convert")
FORGE = os.environ.get("VELMORA_FORGE_NASTY", "velmora-forge-nasty")
SANITIZED = b"__asan_init" in pathlib.Path(PROGRAM).read_bytes() if os.path.exists(PROGRAM) else False

PERCENT = 1
LONGEST = 60  # seconds, of a build without optimisation; a reader that believes these stores takes hours or days
MEMORY = 512 << 20  # all that the program may map
MODES = ((), ("--smart",), ("--complete", "--hidden", "--verify"))
NOTHING_TO_LOSE = {"trailers-of-one-id"}  # memory that runs out would show as a loss
# What a list of all losses, or of the rows of all folders, would take shows from a tenth of their full size on.
GROWING = {"folders-of-one-long-name", "lists-of-missing-attachments"}


def names():
    return subprocess.run([FORGE], capture_output=True, text=True, check=True).stdout.split()


# A sanitizer maps terabytes that it never touches. The shell stands between, since a process tells the peak of the
# one that it was made from as its own.
SHELL = ["sh", "-c", ("" if SANITIZED else f"ulimit -v {MEMORY >> 10}; ") + '"$@"; exit $?', "sh"]


def convert(name, percent, work, *options):
    source, report, out = work / f"{name}.ost", work / "report.json", work / "out"
    subprocess.run([FORGE, name, source, str(percent)], check=True)
    report.unlink(missing_ok=True)
    out.mkdir()
    begin = time.monotonic()
    ended = subprocess.run(
        [*SHELL, PROGRAM, "--no-progress", "--report", report, *options, source, out],
        capture_output=True, text=True, errors="replace", timeout=LONGEST * (5 if name in NOTHING_TO_LOSE else max(percent // 10, 1)),
        env={**os.environ, "XDG_CONFIG_HOME": str(work / "config")})
    seconds = time.monotonic() - begin
    written = sum(file.stat().st_size for file in out.rglob("*") if file.is_file())
    told = json.loads(report.read_text("utf-8")) if report.exists() and report.stat().st_size else {}
    return ended, told, seconds, source.stat().st_size, written


def lost(told):
    """What a report lists of losses, in either schema."""
    return told.get("losses", told.get("lost", []))


def items(told):
    counts = told.get("items", {}).values()
    return sum(one if isinstance(one, int) else one["whole"] + one["partial"] for one in counts)


class NastyStores(unittest.TestCase):
    def test_the_program_ends_in_time_within_its_memory_and_tells_what_is_lost(self):
        for name in names():
            for mode in MODES:
                if name in NOTHING_TO_LOSE and (mode or SANITIZED):
                    continue  # large; what it is about is the index of one scan, and no limit holds a sanitizer
                with self.subTest(store=name, mode=mode), tempfile.TemporaryDirectory() as work:
                    percent = 10 * PERCENT if name in GROWING and "--complete" in mode else PERCENT
                    ended, told, _, size, written = convert(name, percent, pathlib.Path(work), *mode)
                    self.assertIn(ended.returncode, (0,) if name in NOTHING_TO_LOSE else (0, 3), ended.stderr)
                    self.assertEqual(ended.returncode == 3, bool(lost(told)))
                    self.assertLess(written, max(600 * size, 40 << 20))


def print_figures(percent, chosen):
    modes = tuple(name for name in chosen if name.startswith("--"))
    chosen = [name for name in chosen if name not in modes]
    print(f"{'store':30} {'MiB':>6} {'seconds':>8} {'peak MiB':>9} {'new MiB':>8} {'items':>8} {'lost':>8} exit")
    for name in chosen or names():
        with tempfile.TemporaryDirectory() as work:
            ended, told, seconds, size, written = convert(name, percent, pathlib.Path(work), *modes)
            print(f"{name:30} {size / 2**20:6.1f} {seconds:8.2f} {told.get('peakRssKiB', 0) / 1024:9.1f} "
                  f"{written / 2**20:8.1f} {items(told):8} {len(lost(told)):8} "
                  f"{ended.returncode} {ended.stderr.strip()[-200:]}", flush=True)


if __name__ == "__main__":
    if len(sys.argv) > 1 and sys.argv[1].isdigit():
        print_figures(int(sys.argv[1]), sys.argv[2:])
    else:
        unittest.main()

"""Large whole stores come across with --complete, within the memory that the program may take.

    complete_large_stores_test.py PERCENT [NAME[:FORMAT]...]   the same at that part of the full size: a property of 200
                                                               MiB, an attachment of 1 GiB, 300,000 mails in a folder,
                                                               50,000 folders, a store of 8 GB
"""

import json
import os
import pathlib
import subprocess
import sys
import tempfile
import time
import unittest

import stores

FORGE = os.environ.get("VELMORA_FORGE_WHOLE", "velmora-forge-whole")
FORMATS = ("ansi", "unicode", "unicode4k")
LARGE = ("long-property", "large-attachment", "many-mails", "many-folders", "many-files")
PERCENT = 1
LARGEST_FOR_DIFF = 300 << 20  # the reader by others holds what it compares in memory
SANITIZED = os.path.exists(stores.PROGRAM) and b"__asan_init" in pathlib.Path(stores.PROGRAM).read_bytes()


def copy(name, form, percent, work):
    source = work / f"{name}.{'ost' if form == 'unicode4k' else 'pst'}"
    subprocess.run([FORGE, name, form, source, str(percent)], check=True)
    report, out = work / "report.json", work / "out"
    out.mkdir()
    begin = time.monotonic()
    ended = subprocess.run([stores.PROGRAM, "--complete", "--verify", "--quiet", "--report", report, source, out],
                           capture_output=True, text=True, errors="replace",
                           env={**os.environ, "XDG_CONFIG_HOME": str(work / "config")})
    seconds = time.monotonic() - begin
    return source, ended, json.loads(report.read_text("utf-8")), seconds


def what_is_wrong(source, ended, report):
    """In words; empty where the copy is whole by its own account and by what others read."""
    if ended.returncode != 0:
        return f"exit code {ended.returncode}: {ended.stderr.strip()[-300:]}"
    for item_class, counts in report["items"].items():
        if counts["whole"] != counts["live"] or counts["live"] == 0:
            return f"{item_class}: {counts}"
    if not report["items"]:
        return "no items at all"
    tool = stores.aid("VELMORA_TOOLS", "tools") / "storediff.py"
    if tool.is_file() and source.stat().st_size <= LARGEST_FOR_DIFF:
        told = subprocess.run([sys.executable, tool, "--no-fai", source, report["destination"]], capture_output=True,
                              text=True, errors="replace")
        if told.returncode != 0 or " 0 not from the source" not in told.stdout:
            return told.stdout[-1000:] + told.stderr[-300:]
    return ""


class CompleteLargeStores(unittest.TestCase):
    def test_they_come_across_whole(self):
        for name in LARGE:
            for form in FORMATS:
                with self.subTest(store=name, format=form), tempfile.TemporaryDirectory() as work:
                    source, ended, report, _ = copy(name, form, PERCENT, pathlib.Path(work))
                    self.assertEqual(what_is_wrong(source, ended, report), "")
                    if not SANITIZED:
                        self.assertLess(report["peakRssKiB"], 64 << 10)


def print_figures(percent, chosen):
    print(f"{'store':28} {'MB':>6} {'seconds':>8} {'peak MiB':>9} {'items':>8} {'folders':>8}  wrong")
    for name in chosen or LARGE:
        name, _, only = name.partition(":")
        for form in (only,) if only else FORMATS:
            with tempfile.TemporaryDirectory() as work:
                source, ended, report, seconds = copy(name, form, percent, pathlib.Path(work))
                items = sum(counts["whole"] for counts in report["items"].values())
                print(f"{name + ' ' + form:28} {source.stat().st_size >> 20:6} {seconds:8.2f} "
                      f"{report['peakRssKiB'] / 1024:9.1f} {items:8} {report['folders']:8}  "
                      f"{what_is_wrong(source, ended, report)}", flush=True)


if __name__ == "__main__":
    if len(sys.argv) > 1 and sys.argv[1].isdigit():
        print_figures(int(sys.argv[1]), sys.argv[2:])
    else:
        unittest.main()

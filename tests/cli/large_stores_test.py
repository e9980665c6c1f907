"""Large sound stores come across whole: every folder, body and attachment of the new store is what a reader by
others finds in the source.

    large_stores_test.py SIZE_MB [NAME...]   compares stores of that size and prints what was found; there the strict
                                             checker reads them: it takes minutes where pffexport takes hours
"""

import collections
import hashlib
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

import stores

PROGRAM = os.environ.get("VELMORA_CONVERT", "velmora-convert")
MAKE_STORE = os.environ.get("VELMORA_MAKE_STORE", "velmora-make-store")
TOP = "Top of Personal Folders"
BODIES = ("0x1000", "0x1013")  # as plain text, as HTML
LARGEST_FILE = 1021 * 8176  # of one list of blocks; content above that is not converted, by rule

# What the maker is told: options, and the size in MB at which a test builds it. In the small mails one was lost
# while the first record of an id counted, whatever its block.
STORES = {
    "small mails": (["--small"], 14),
    "large attachments": (["--attachment", str(LARGEST_FILE)], 20),
    "folders": (["--small", "--per-folder", "1"], 8),
    "mails": ([], 10),
}

# The reader by others writes some small files for each mail; in memory that takes a tenth of the time.
FAST = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None

Mail = collections.namedtuple("Mail", "folder bodies files")  # bodies and files by name and digest


def contents(store, work):
    """What pffexport finds below the top: the folders, and the mails in them."""
    subprocess.run(["pffexport", "-q", "-f", "all", "-m", "items", "-t", work / "pff", store], check=True,
                   stdout=subprocess.DEVNULL)
    export = work / "pff.export"
    folders, mails = set(), []
    for path, names, _ in os.walk(export / TOP):
        here = pathlib.Path(path)
        if re.fullmatch(r"Message[0-9]{5}", here.name):
            names.clear()
            mails.append(Mail(str(here.parent.relative_to(export)), digests(here.glob("Message.*")),
                              digests((here / "Attachments").glob("*"))))
        else:
            folders.add(str(here.relative_to(export)))
    shutil.rmtree(export)
    return folders, mails


def dumped(store, _):
    """The same, as the strict checker dumps it; a mail's name is its subject."""
    tool = stores.aid("VELMORA_TOOLS", "tools") / "pstcheck.py"
    folders, mails = set(), []
    with subprocess.Popen([sys.executable, tool, "--dump", store], stdout=subprocess.PIPE) as dump:
        for line in dump.stdout:
            found = json.loads(line)
            path = "/".join(found.get("path", []))
            if path.split("/")[0] != TOP:
                continue
            if found["kind"] == "folder":
                folders.add(path)
            elif found["kind"] == "message":
                subject = found["subject"]
                bodies = ((subject, name, digest(found["props"][name])) for name in BODIES if name in found["props"])
                files = ((a["name"], a["size"], a["sha256"]) for a in found.get("attachments", []))
                mails.append(Mail(path, tuple(bodies), tuple(sorted(files))))
    if dump.returncode:
        raise RuntimeError(f"the checker ended with {dump.returncode}")
    return folders, mails


def digest(value):
    return hashlib.sha256(json.dumps(value, sort_keys=True).encode()).digest()


def digests(files):
    return tuple(sorted((f.name, hashlib.sha256(f.read_bytes()).hexdigest()) for f in files))


def differences(source, new):
    """Folders and mails of the source that are not in the new store as they were, and mails that are there on top.
    A new store has some empty folders of its own; of a mail's bodies one comes across."""
    left = collections.Counter(new[1])
    lost = []
    for mail in source[1]:
        carried = [m for m in (mail._replace(bodies=(body,)) for body in mail.bodies) if left[m] > 0]
        if carried:
            left[carried[0]] -= 1
        else:
            lost.append(mail)
    return sorted(source[0] - new[0]), lost, list(+left)


def compare(name, megabytes, work, read=contents):
    """Makes a store, converts it and reads both."""
    options, _ = STORES[name]
    source, report = work / "source.pst", work / "report.json"
    (work / "out").mkdir()
    made = json.loads(subprocess.run([MAKE_STORE, *options, str(megabytes), source], check=True, capture_output=True).stdout)
    begin = time.monotonic()
    ended = subprocess.run([PROGRAM, "--quiet", "--report", report, source, work / "out"], capture_output=True, text=True,
                           env={**os.environ, "XDG_CONFIG_HOME": str(work / "config")})
    seconds = time.monotonic() - begin
    destination = pathlib.Path(json.loads(report.read_text("utf-8"))["destination"])
    return made, ended, seconds, read(source, work), read(destination, work)


class LargeStores(unittest.TestCase):
    def setUp(self):
        self.assertIsNotNone(shutil.which("pffexport"), "pffexport is needed")

    def test_every_folder_body_and_attachment_comes_across_unchanged(self):
        for name, (_, megabytes) in STORES.items():
            with self.subTest(store=name), tempfile.TemporaryDirectory(dir=FAST) as work:
                made, ended, _, source, new = compare(name, megabytes, pathlib.Path(work))
                self.assertEqual(ended.returncode, 0, ended.stderr)
                self.assertEqual({**made, "oldVersions": 0}, {**counts(source), "oldVersions": 0}, "the reader by others finds all that was forged")
                self.assertEqual(differences(source, new), ([], [], []))


def counts(found):
    """As the maker counts: without the top folder and Deleted Items."""
    folders, mails = found
    return {"folders": len(folders) - 2, "messages": len(mails), "attachments": sum(len(m.files) for m in mails)}


def print_figures(megabytes, chosen):
    print(f"{'store':20} {'MB':>6} {'seconds':>8} {'folders':>8} {'mails':>8} {'files':>8}  differing: folders, mails, mails "
          "on top")
    for name in chosen or STORES:
        with tempfile.TemporaryDirectory() as work:
            made, ended, seconds, source, new = compare(name, megabytes, pathlib.Path(work), dumped)
            found = "" if made == counts(source) else " (the reader by others misses some)"
            print(f"{name:20} {megabytes:6} {seconds:8.2f} {made['folders']:8} {made['messages']:8} "
                  f"{made['attachments']:8}  {', '.join(str(len(d)) for d in differences(source, new))}, exit code "
                  f"{ended.returncode}{found}", flush=True)


if __name__ == "__main__":
    if len(sys.argv) > 1 and sys.argv[1].isdigit():
        print_figures(int(sys.argv[1]), sys.argv[2:])
    else:
        unittest.main()

"""Damaged copies of the whole stores beside the sources, and what a program gets out of them. For the scripts of this
folder: what is a store, how it is damaged and how the result is counted is said by the tools beside the sources."""

import collections
import json
import os
import pathlib
import shutil
import subprocess
import sys

SOURCE = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(SOURCE / "tests" / "cli"))
import stores  # noqa: E402

EPOCH = "1700000000"
SECONDS = 60


def tool(name):
    return stores.aid("VELMORA_TOOLS", "tools") / name


def need_tools():
    """Ends a test that cannot be made without the tools, as ctest takes it for skipped."""
    if not tool("pstcheck.py").is_file():
        print("skipped: no tools at", tool("."), "(set VELMORA_TOOLS)")
        sys.exit(stores.SKIPPED)


def whole_stores():
    """The stores beside the sources that are whole; those of the folder "forged" there are damaged."""
    return [path for group, path in stores.all_stores() if group == "stores"]


def cases():
    listed = subprocess.run([sys.executable, tool("damage.py"), "--list"], check=True, capture_output=True, text=True)
    return listed.stdout.split()


def damage(store, folder, seed):
    """Damaged copies of a store, one for each case: name of the case to file."""
    subprocess.run([sys.executable, tool("damage.py"), "--seed", str(seed), store, folder], check=True)
    return {case: folder / (case + store.suffix) for case in cases()}


def convert(source, work, *options):
    """One conversion into the folder `work`, which is emptied before. Gives exit code and the new store; nothing where
    none was made."""
    shutil.rmtree(work, ignore_errors=True)
    work.mkdir(parents=True)
    ended = subprocess.run([stores.PROGRAM, *options, "--quiet", "--no-progress", source, work], capture_output=True,
                           text=True, errors="replace", timeout=SECONDS,
                           env={**os.environ, "XDG_CONFIG_HOME": str(work / "config"), "SOURCE_DATE_EPOCH": EPOCH})
    made = sorted(work.glob("*/*.pst"))
    return ended.returncode, made[0] if made else None


def score(original, damaged, made):
    """What of the messages that are still there came back: the counts of salvagescore.py."""
    told = subprocess.run([sys.executable, tool("salvagescore.py"), "--json", original, damaged, made or os.devnull],
                          capture_output=True, text=True)
    if told.returncode not in (0, 1):
        raise AssertionError(told.stdout + told.stderr)
    return collections.Counter(json.loads(told.stdout))

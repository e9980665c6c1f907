#!/usr/bin/env python3
"""full_disk.py [EVERY] - conversions on a disk that is full from a given write on: every tenth one, or every EVERYth.

The program has to say so, with its exit code, and what it leaves, if anything, opens and holds nothing but whole
messages of the source, each in its folder: after a full disk without any fault at all, after a write that failed for
another reason with the last commit. VELMORA_CONVERT, VELMORA_MAKE_STORE and VELMORA_FULL_DISK are the programs and the
library that stands between them and the system."""

import collections
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

import damaged_stores
import kills
import stores

MODES = ((), ("--complete",))


def convert(source, out, options, told, **more):
    out.mkdir()
    return subprocess.run([stores.PROGRAM, *options, "--quiet", "--no-progress", source, out], capture_output=True,
                          text=True, timeout=60,
                          env={**os.environ, "XDG_CONFIG_HOME": str(out.parent / "config"),
                               "LD_PRELOAD": os.environ["VELMORA_FULL_DISK"], "VELMORA_WRITES": str(told), **more})


def faults(store, is_sealed):
    if not is_sealed:
        return kills.faults(store)
    checked = subprocess.run([sys.executable, damaged_stores.tool("pstcheck.py"), store], capture_output=True, text=True)
    return checked.stdout.splitlines() if checked.returncode else []


def main():
    damaged_stores.need_tools()
    every = int(sys.argv[1]) if len(sys.argv) > 1 else 10
    failed = 0
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        source, out, told = folder / "source.pst", folder / "out", folder / "writes"
        subprocess.run([os.environ["VELMORA_MAKE_STORE"], "3", source], check=True, stdout=subprocess.DEVNULL)
        for options in MODES:
            for which, how in (("no file grows", {}), ("no file is written to", {"VELMORA_FULL_FOR_ALL": "1"})):
                convert(source, out, options, told)
                shutil.rmtree(out)
                writes = int(told.read_text().split()[0])
                codes, held = collections.Counter(), []
                for at in range(1, writes + 1, every):
                    ended = convert(source, out, options, told, VELMORA_FULL_AT=str(at), **how)
                    made = [path for path in out.glob("*/*.pst") if path.stat().st_size > 0]
                    is_refused = int(told.read_text().split()[1]) > 0  # the last writes need no more room
                    wrong = []
                    if ended.returncode not in ((73, 74) if is_refused else (0,)):
                        wrong.append(f"exit code {ended.returncode}: {ended.stderr}")
                    if made:
                        wrong += faults(made[0], not how)
                        score = damaged_stores.score(source, source, made[0])
                        if score["folder"] < score["found"] or score["extra"] or \
                                (options and score["whole"] < score["found"]):
                            wrong.append(f"not whole, not of the source or elsewhere: {dict(score)}")
                        held.append(score["found"])
                    codes[ended.returncode] += 1
                    failed += bool(wrong)
                    for what in wrong[:5]:
                        print(f"write {at}, {' '.join(options)}, {which}: {what}", flush=True)
                    shutil.rmtree(out)
                ends = ", ".join(f"{count} with {code}" for code, count in sorted(codes.items()))
                print(f"{' '.join(options) or 'fields'}, {which} from every {every}th of {writes} writes on: {ends}; "
                      f"{len(held)} left a store, with {min(held)} to {max(held)} messages", flush=True)
    print(f"{failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())

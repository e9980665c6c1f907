#!/usr/bin/env python3
"""kills.py COUNT SEED - kills conversions at random instants, and looks at what they leave.

What is left, if anything was committed, opens, has no fault that a reader could trip over, and holds nothing but whole
messages of the source, each in its folder. VELMORA_CONVERT and VELMORA_MAKE_STORE are the programs."""

import collections
import os
import pathlib
import random
import re
import shutil
import subprocess
import sys
import tempfile
import time

import damaged_stores
import stores

MODES = ((), ("--complete",))
# Space that was taken after the commit is in no map yet, and blocks of items in the making are not referred to: what
# tells of that does not count.
FAULT = re.compile(r"(N01|N21|N22|N30|A05|H05|H06|B\d\d|L\d\d) ")


def start(source, out, options):
    return subprocess.Popen([stores.PROGRAM, *options, "--quiet", "--no-progress", source, out],
                            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                            env={**os.environ, "XDG_CONFIG_HOME": str(out.parent / "config")})


def faults(store):
    told = subprocess.run([sys.executable, damaged_stores.tool("pstcheck.py"), "--no-messaging", store],
                          capture_output=True, text=True).stdout
    return [line for line in told.splitlines() if FAULT.match(line)]


def main():
    damaged_stores.need_tools()
    count, rnd = int(sys.argv[1]), random.Random(sys.argv[2])
    ends, failed, held = collections.Counter(), 0, []
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        source = folder / "source.pst"
        subprocess.run([os.environ["VELMORA_MAKE_STORE"], "6", source], check=True, stdout=subprocess.DEVNULL)
        lasts = {}
        for options in MODES:
            out = folder / "whole"
            out.mkdir()
            started = time.monotonic()
            start(source, out, options).wait()
            lasts[options] = time.monotonic() - started
            shutil.rmtree(out)
        for number in range(count):
            options = MODES[number % len(MODES)]
            out = folder / "out"
            out.mkdir()
            child = start(source, out, options)
            time.sleep(rnd.random() * lasts[options] * 1.05)
            child.kill()
            ended = child.wait() >= 0
            made = [path for path in out.glob("*/*.pst") if path.stat().st_size > 0]
            if ended or not made:
                ends["had ended already" if ended else "had no store yet"] += 1
            else:
                score = damaged_stores.score(source, source, made[0])
                wrong = faults(made[0])
                if options and score["whole"] < score["found"]:
                    wrong.append(f"{score['found'] - score['whole']} messages in part")
                if score["folder"] < score["found"] or score["extra"]:
                    wrong.append(f"messages not of the source or elsewhere: {dict(score)}")
                held.append(score["found"])
                ends["left a store"] += 1
                failed += bool(wrong)
                for what in wrong[:5]:
                    print(f"kill {number} of seed {sys.argv[2]}, {' '.join(options)}: {what}", flush=True)
            shutil.rmtree(out)
    print(f"{count} kills, seed {sys.argv[2]}: {failed} failed; " +
          ", ".join(f"{n} {what}" for what, n in ends.items()) +
          f"; the stores left hold {min(held)} to {max(held)} messages of {score['messages']}")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())

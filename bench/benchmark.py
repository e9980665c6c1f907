#!/usr/bin/env python3
"""Times velmora-convert, readpst and pffexport on the same stores and prints a table in Markdown."""

import argparse
import json
import os
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

TIME = "/usr/bin/time"
MIB = 1 << 20


def count_converted(out):
    """Messages by the report of the program itself."""
    return sum(json.loads((out / "report.json").read_text())["items"].values())


def count_readpst(out):
    """Each message is a file named by its number; its attachments begin with that number and a hyphen."""
    return sum(name.isdigit() for _, _, files in os.walk(out) for name in files)


def count_pffexport(out):
    return sum("OutlookHeaders.txt" in files for _, _, files in os.walk(out))


# Name, command line, and how many messages came out. {} is the store, out an empty folder that is the current one.
PROGRAMS = [
    ("velmora-convert", ["velmora-convert", "--quiet", "--report", "report.json", "{}", "converted"], count_converted),
    ("readpst -S -j0 -D", ["readpst", "-q", "-S", "-j0", "-D", "-o", ".", "{}"], count_readpst),
    ("pffexport -m items", ["pffexport", "-q", "-m", "items", "-t", "out", "{}"], count_pffexport),
]


def find(program, build):
    built = next((p for p in build.resolve().rglob(program) if p.is_file() and os.access(p, os.X_OK)), None)
    return str(built) if built else shutil.which(program)


def drop_from_cache(path):
    with open(path, "rb") as file:
        os.posix_fadvise(file.fileno(), 0, 0, os.POSIX_FADV_DONTNEED)


def read_into_cache(path):
    with open(path, "rb") as file:
        while file.read(MIB):
            pass


def measure(command, store, work, cold):
    """One run: seconds, KiB of memory at the peak, exit code, and the folder with what came out."""
    out = Path(tempfile.mkdtemp(dir=work))
    (out / "converted").mkdir()
    # What others still have to write must not be written during the run.
    os.sync()
    (drop_from_cache if cold else read_into_cache)(store)
    # Python's own memory would count if it started the program itself.
    line = [TIME, "-q", "-f", "%e %M", "-o", str(work / "times")] + [str(store) if w == "{}" else w for w in command]
    code = subprocess.run(line, cwd=out, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode
    seconds, memory = (work / "times").read_text().split()[-2:]
    return float(seconds), int(memory), code, out


def make_store(maker, size, small, work):
    store = work / f"store-{size}.pst"
    made = subprocess.run([maker, str(size), str(store)] + (["--small"] if small else []), check=True, capture_output=True)
    return store, json.loads(made.stdout)["messages"]


def benchmark(name, command, count, store, wanted, arguments, work):
    """The row of one program: the run of median time."""
    runs = []
    for _ in range(arguments.runs):
        seconds, memory, code, out = measure(command, store, work, arguments.cold)
        try:
            found = str(count(out))
        except (OSError, ValueError, KeyError) as error:
            found = f"none ({type(error).__name__})"
        shutil.rmtree(out)
        runs.append((seconds, memory, code, found))
    seconds, memory, code, found = sorted(runs)[len(runs) // 2]
    note = "" if code == 0 else f", exit code {code}"
    speed = store.stat().st_size / MIB / max(seconds, 0.01)
    return f"{name} | {seconds:.2f} | {speed:.0f} | {memory / 1024:.1f} | {found} of {wanted}{note} |"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", type=Path, required=True, help="folder of the built programs")
    parser.add_argument("--sizes", default="10,100,1024", help="sizes of the stores in MiB")
    parser.add_argument("--runs", type=int, default=1, help="runs of each program; the one of median time counts")
    parser.add_argument("--work", type=Path, help="folder for stores and output; the system's temporary one otherwise")
    parser.add_argument("--small", action="store_true", help="stores of mails of 2 KB in place of 2 to 200 KB")
    parser.add_argument("--cold", action="store_true", help="the store is not in the file cache at the start of a run")
    arguments = parser.parse_args()
    if not os.access(TIME, os.X_OK):
        sys.exit(f"{TIME} is missing (Debian package time)")
    maker = find("velmora-make-store", arguments.build)
    if maker is None:
        sys.exit("velmora-make-store is not built")

    with tempfile.TemporaryDirectory(dir=arguments.work) as folder:
        work = Path(folder)
        print("| store | program | seconds | MiB/s | peak RSS MiB | messages |")
        print("|---|---|---:|---:|---:|---|")
        for size in arguments.sizes.split(","):
            store, wanted = make_store(maker, int(size), arguments.small, work)
            label = f"{store.stat().st_size / MIB:.0f} MiB"
            for name, command, count in PROGRAMS:
                path = find(command[0], arguments.build)
                if path is None:
                    print(f"| {label} | {name} | not installed | | | |")
                    continue
                row = benchmark(name, [path] + command[1:], count, store, wanted, arguments, work)
                print(f"| {label} | {row}", flush=True)
            store.unlink()


if __name__ == "__main__":
    main()

"""The programs that are measured, and one run of each."""

import json
import os
import pathlib
import shutil
import subprocess
import time
from collections import namedtuple

TIME = "/usr/bin/time"

# `words` of the command, in which {store} and {out} stand for the source and for an empty folder; `count` tells how many
# messages came out, None where that means nothing.
Program = namedtuple("Program", "name words count")
Run = namedtuple("Run", "seconds processor_seconds peak_kib code")


def count_reported(out):
    """By the program's own report, of which the two conversions write each their form."""
    items = json.loads((out / "report.json").read_text("utf-8"))["items"].values()
    return sum(n if isinstance(n, int) else n["whole"] + n["partial"] for n in items)


def count_numbered(out):
    """Each message is a file named by its number; its attachments begin with that number and a hyphen."""
    return sum(name.isdigit() for _, _, names in os.walk(out) for name in names)


def count_headers(out):
    return sum("OutlookHeaders.txt" in names for _, _, names in os.walk(out))


def all_programs(build):
    """Those that are there, by name; and the names of those that are not, with the reason."""
    convert, floor = build / "src/cli/velmora-convert", build / "bench/velmora-floor"
    conversion = [str(convert), "--quiet", "--no-progress", "--report", "{out}/report.json"]
    programs = [
        Program("fields", [*conversion, "{store}", "{out}"], count_reported),
        Program("fields --dry-run", [*conversion, "--dry-run", "{store}", "{out}"], None),
        Program("complete", [*conversion, "--complete", "{store}", "{out}"], count_reported),
        Program("complete --verify", [*conversion, "--complete", "--verify", "{store}", "{out}"], count_reported),
        *(Program(f"complete --jobs {n}", [*conversion, "--complete", "--jobs", str(n), "{store}", "{out}"],
                  count_reported) for n in (1, 2, 4)),
        Program("readpst -S -j0", ["readpst", "-q", "-S", "-j0", "-D", "-o", "{out}", "{store}"], count_numbered),
        Program("pffexport", ["pffexport", "-q", "-m", "items", "-t", "{out}/items", "{store}"], count_headers),
        Program("cp", ["cp", "{store}", "{out}/copy"], None),
        Program("cat", ["sh", "-c", "cat '{store}' >/dev/null"], None),
        Program("floor", [str(floor), "{store}", "{out}/blocks"], None),
        Program("floor --by-bytes", [str(floor), "--by-bytes", "{store}", "{out}/blocks"], None),
    ]
    help_text = subprocess.run([convert, "--help"], capture_output=True, text=True).stdout if convert.is_file() else ""
    there, missing = {}, {}
    for program in programs:
        if shutil.which(program.words[0]) is None:
            missing[program.name] = f"{program.words[0]} is not there"
        elif "--jobs" in program.words and "--jobs" not in help_text:
            missing[program.name] = "this build has no option --jobs"
        else:
            there[program.name] = program
    return there, missing


def command_of(program, store, out):
    return [word.format(store=store, out=out) for word in program.words]


def environment(work):
    """Settings of whoever measures do not count."""
    return {**os.environ, "XDG_CONFIG_HOME": str(work / "config")}


def drop_from_cache(path):
    with open(path, "rb") as file:
        os.posix_fadvise(file.fileno(), 0, 0, os.POSIX_FADV_DONTNEED)


def read_into_cache(path):
    with open(path, "rb") as file:
        while file.read(1 << 20):
            pass


def measure(program, store, work, cold=False, count=False):
    """One run, and the number of messages that came out if that is asked for and means something."""
    out = pathlib.Path(work) / "out"
    out.mkdir()
    try:
        # What others still have to write must not be written during the run.
        os.sync()
        (drop_from_cache if cold else read_into_cache)(store)
        # The memory of this script would count if it started the program itself.
        figures = work / "figures"
        begin = time.perf_counter()
        code = subprocess.run([TIME, "-q", "-f", "%U %S %M", "-o", figures, *command_of(program, store, out)],
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, env=environment(work)).returncode
        seconds = time.perf_counter() - begin
        user, system, peak = figures.read_text().split()[-3:]
        messages = None
        if count and program.count:
            try:
                messages = program.count(out)
            except (OSError, ValueError, KeyError):
                messages = 0
        return Run(seconds, float(user) + float(system), int(peak), code), messages
    finally:
        shutil.rmtree(out)

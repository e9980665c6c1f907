"""Counts how often a program reads or writes elsewhere than where it left off: on a disk that turns, each costs as much
as a megabyte."""

import re
import shutil
import subprocess

from programs import command_of, environment

# A call as strace prints it, in one line or, where another thread came between, in two.
WHOLE = re.compile(r"^(?P<pid>\d+) +(?P<call>pread64|pwrite64)\(\d+<(?P<path>.*?)>, .*, (?P<at>-?\d+)\) += (?P<n>\d+)$")
BEGIN = re.compile(r"^(?P<pid>\d+) +(?P<call>pread64|pwrite64)\(\d+<(?P<path>.*?)>, (?P<rest>.*) <unfinished \.\.\.>$")
END = re.compile(r"^(?P<pid>\d+) +<\.\.\. (?P<call>pread64|pwrite64) resumed>(?P<rest>.*)\) += (?P<n>\d+)$")


class Head:
    """Follows the accesses to one file."""

    def __init__(self):
        self.calls = self.bytes = self.seeks = self.distance = 0
        self.next = 0

    def move(self, offset, length):
        self.calls += 1
        self.bytes += length
        if offset != self.next:
            self.seeks += 1
            self.distance += abs(offset - self.next)
        self.next = offset + length


def accesses(lines):
    """Path, call, offset and length of each access, in the order in which they ended."""
    begun = {}
    for line in lines:
        line = line.rstrip("\n")
        if found := WHOLE.match(line):
            yield found["path"], found["call"], int(found["at"]), int(found["n"])
        elif found := BEGIN.match(line):
            begun[found["pid"]] = found["path"], found["rest"]
        elif (found := END.match(line)) and found["pid"] in begun:  # else of a file without a name
            path, rest = begun.pop(found["pid"])
            yield path, found["call"], int((rest + found["rest"]).rsplit(",", 1)[1]), int(found["n"])


def heads(lines, store):
    """The head over the source as it is read, and the sum of those over the files that are written."""
    reading, written = Head(), {}
    for path, call, offset, length in accesses(lines):
        if call == "pread64" and path == str(store):
            reading.move(offset, length)
        elif call == "pwrite64":
            written.setdefault(path, Head()).move(offset, length)
    writing = Head()
    for head in written.values():
        writing.calls += head.calls
        writing.bytes += head.bytes
        writing.seeks += head.seeks
        writing.distance += head.distance
    return reading, writing


def count_seeks(program, store, work):
    """Of one run. The program must read by pread, as this one does; others show no reads at all."""
    out, log = work / "out", work / "calls"
    out.mkdir()
    try:
        subprocess.run(["strace", "-f", "-y", "-s", "0", "-o", log, "-e", "trace=pread64,pwrite64",
                        *command_of(program, store.resolve(), out)],
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, env=environment(work), check=False)
        with open(log, encoding="utf-8", errors="replace") as lines:
            return heads(lines, store.resolve())
    finally:
        shutil.rmtree(out)
        log.unlink(missing_ok=True)

"""What the tests over whole stores share: where the stores are, one run of the program, and the contents of
a new store as its trace tells them."""

import collections
import json
import os
import pathlib
import subprocess
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "aids"))
from aids import SKIPPED, SOURCE, aid  # noqa: E402,F401

PROGRAM = os.environ.get("VELMORA_CONVERT", "velmora-convert")


def main():
    """Runs the tests of the calling script; without the stores there is nothing to run them on."""
    if not aid("VELMORA_STORES", "stores").is_dir():
        print("skipped: no stores at", aid("VELMORA_STORES", "stores"), "(set VELMORA_STORES)")
        sys.exit(SKIPPED)
    unittest.main()


def all_stores():
    """Every store with the name of its group: the folder that its expected results stand in."""
    root = aid("VELMORA_STORES", "stores")
    for folder, group in ((root, "stores"), (root / "forged", "forged")):
        for path in sorted(folder.glob("*.[op]st")):
            yield group, path


def convert(source, work, *options):
    """One run into the folder `work`. Gives exit code, report, trace and what it said on standard error."""
    report, trace, out = work / "report.json", work / "trace.jsonl", work / "out"
    for old in (report, trace):
        old.unlink(missing_ok=True)
    out.mkdir(exist_ok=True)
    ended = subprocess.run(
        [PROGRAM, "--quiet", "--report", report, "--trace", trace, *options, source, out],
        capture_output=True, text=True, errors="replace",
        env={**os.environ, "XDG_CONFIG_HOME": str(work / "config")})
    return ended.returncode, json.loads(report.read_text("utf-8")), operations(trace), ended.stderr


def operations(path):
    return [json.loads(line) for line in path.read_text("utf-8").splitlines()]


Item = collections.namedtuple("Item", "folder message_class subject attachments")


def contents(trace):
    """The folders below the top, by path, and the items that stand in them at the end."""
    root = trace[0]["parent"]
    folders = [("Deleted Items",)]
    items, standing = {}, []
    for o in trace:
        op = o["op"]
        if op == "AddFolder":
            folders.append((*path_below(root, o["parent"]), o["name"]))
        elif op == "AddItem":
            items[o["id"]] = {"folder": path_below(root, o["folder"]), "class": o["class"], "subject": "", "files": []}
        elif op == "Put" and o["field"] == "Subject":
            items[o["id"]]["subject"] = o["value"]
        elif op in ("AddAttachment", "AddPicture"):
            items[o["id"]]["files"].append(o.get("sha256", "embedded"))
        elif op == "Save" and o["id"] not in standing:
            standing.append(o["id"])
        elif op == "Delete":
            standing.remove(o["id"])
    return folders, [Item(i["folder"], i["class"], plain_subject(i["subject"]), sorted(i["files"]))
                     for i in (items[n] for n in standing)]


def path_below(root, path):
    rest = path[len(root):]
    return tuple(rest[1:].split("\\")) if rest else ()


def plain_subject(text):
    """Without the two characters in front that tell the length of a prefix such as "Re: "."""
    return text[2:] if text.startswith("\x01") else text

#!/usr/bin/env python3
"""evidence_check.py PROGRAM [--seed N] [--case NAME...] - how much of real stores is told from bytes alone.

Makes damaged copies of each store (damage.py of the tools), lets PROGRAM (velmora-evidence) judge them, and compares the live
and doubtful nodes with the node tree of the whole store: id, data, sub-nodes and parent. Says for each case how many are
right, missing (the store has them, the judgement has not) and wrong (otherwise than the store has them, or not in it;
"unsure" are those of them that the judgement itself calls doubtful); and of the blocks how many of the live ones are found, and how many live ones are called freed.

--floors FILE compares the figures with those of a file that --write FILE has made, and ends with 1 where one is worse."""
import argparse
import collections
import glob
import json
import os
import pathlib
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "aids"))
import aids  # noqa: E402

STORES = str(aids.aid("VELMORA_STORES", "stores"))
TOOLS = str(aids.aid("VELMORA_TOOLS", "tools"))


def judged(program, path):
    """nodes with their standing, blocks with what is said of them, and which trees are exact"""
    words = [line.split() for line in
             subprocess.run([program, "--blocks", path], check=True, capture_output=True, text=True).stdout.splitlines()]
    nodes = {w[2]: (w[1], tuple(w[3:6])) for w in words if w[0] == "node" and w[1] in ("live", "doubtful")}
    blocks = {int(w[5], 16): (w[1], w[2], int(w[6], 16)) for w in words if w[0] == "block"}
    return nodes, blocks, next(w[1:] for w in words if w[0] == "exact")


def truth(tools, path):
    sys.path.insert(0, tools)
    import pstcheck
    store = pstcheck.Store(path)
    store.load()
    if not store.nbt or not store.bbt or store.tree_errors:
        raise ValueError(path + " is not whole")
    nodes = {"%x" % nid: ("%x" % (data & ~1), "%x" % (sub & ~1), "%x" % parent)
             for nid, (data, sub, parent) in ((nid, entry[:3]) for nid, entry in store.nbt.items())}
    return nodes, {bid & ~1: (ib, cb, store.block_span(cb)) for bid, (ib, cb, refs) in store.bbt.items() if refs > 1}


def main():
    ap = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    ap.add_argument("program")
    ap.add_argument("--seed", default="7")
    ap.add_argument("--case", nargs="*")
    ap.add_argument("--verbose", action="store_true")
    ap.add_argument("--floors")
    ap.add_argument("--write")
    a = ap.parse_args()
    if not os.path.isdir(STORES) or not os.path.isdir(TOOLS):
        print("no folders of stores and tools beside the sources; VELMORA_STORES and VELMORA_TOOLS name them")
        return aids.SKIPPED
    sums = collections.OrderedDict()
    for path in sorted(p for p in glob.glob(os.path.join(STORES, "*")) if p.endswith((".pst", ".ost"))):
        nodes, blocks = truth(TOOLS, path)
        with tempfile.TemporaryDirectory() as folder:
            damage = [sys.executable, os.path.join(TOOLS, "damage.py"), path, folder, "--seed", a.seed]
            subprocess.run(damage + (["--case"] + a.case if a.case else []), check=True)
            listed = subprocess.run(damage[:2] + ["--list"], check=True, capture_output=True, text=True).stdout.split()
            for case in listed:
                copy = os.path.join(folder, case + os.path.splitext(path)[1])
                if not os.path.exists(copy):
                    continue
                found, theirs, exact = judged(a.program, copy)
                right = sum(nodes.get(nid) == entry for nid, (_, entry) in found.items())
                wrong = sum(nodes.get(nid) != entry for nid, (by, entry) in found.items() if by == "live")
                row = {"nodes": len(nodes), "right": right, "missing": len(nodes.keys() - found.keys()),
                       "wrong": wrong, "unsure": len(found) - right - wrong,
                       "exact": int(exact[0]), "exact_blocks": int(exact[1]), "stores": 1, "blocks": len(blocks),
                       "found_blocks": sum(bid in theirs and theirs[bid][1] in ("proven", "moved") for bid in blocks),
                       "called_freed": sum(theirs.get(bid, ("",))[0] == "freed" for bid in blocks)}
                total = sums.setdefault(case, collections.Counter())
                total.update(row)
                if a.verbose and row["right"] != row["nodes"]:
                    print(os.path.basename(path), case, row)
    print("%-22s %6s %6s %7s %6s %6s  %-6s %-6s %7s %7s %6s" % (
        "case", "nodes", "right", "missing", "wrong", "unsure", "exact", "blocks", "blocks", "found", "freed"))
    for case, t in sums.items():
        print("%-22s %6d %6d %7d %6d %6d  %d of %d %d of %d %7d %7d %6d" % (
            case, t["nodes"], t["right"], t["missing"], t["wrong"], t["unsure"], t["exact"], t["stores"], t["exact_blocks"], t["stores"],
            t["blocks"], t["found_blocks"], t["called_freed"]))
    if a.write:
        with open(a.write, "w") as out:
            json.dump({case: dict(t) for case, t in sums.items()}, out, indent=1)
    if not a.floors:
        return 0
    worse = 0
    for case, floor in json.load(open(a.floors)).items():
        t = sums[case]
        if t["right"] < floor["right"] or t["wrong"] > floor["wrong"] or t["found_blocks"] < floor["found_blocks"]:
            print("worse than it was:", case, file=sys.stderr)
            worse = 1
    return worse


if __name__ == "__main__":
    sys.exit(main())

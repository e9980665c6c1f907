#!/usr/bin/env python3
"""salvage_check.py PROGRAM [--seed N] [--case NAME...] - which messages of damaged
stores are known again.

Makes damaged copies of each store (damage.py of the tools, and two without any tree page, old ones too), lets PROGRAM
(velmora-evidence --lost) find their nodes, and compares the messages with the node tree of the whole store. A message is intact when each byte of its blocks is where it was; it
is found when a node leads to the same data and the same list of sub-nodes. Copies share blocks, so ids do not count, but
each node counts once. "too much" are nodes that lead to the data of no live message, "too many" those beyond one for
each live message with that data, "hurt" the messages of which a block is damaged, found in some form: by their id, or
by their data where nothing is left of their list. Ends with 1 if an intact message is missing, or more than --misplaced are in a wrong folder."""
import argparse
import collections
import glob
import os
import pathlib
import random
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "aids"))
import aids  # noqa: E402

STORES = str(aids.aid("VELMORA_STORES", "stores"))
TOOLS = str(aids.aid("VELMORA_TOOLS", "tools"))

MESSAGE, FOLDERS = 4, (2, 3)


def type_of(nid):
    return nid & 31


def found_by(program, path):
    """(data, sub, parent) by node id, and the parents of the folders; what was found later counts"""
    nodes, folders, rows = {}, {}, set()
    out = subprocess.run([program, "--lost", path], check=True, capture_output=True, text=True).stdout
    for word in (line.split() for line in out.splitlines()):
        if word[0] == "node" and word[1] in ("live", "doubtful", "found"):
            nid, data, sub, parent = (int(w, 16) for w in word[2:6])
            nodes[nid] = (data & ~1, sub & ~1, parent)
            if type_of(nid) in FOLDERS:
                folders[nid] = parent
        elif word[0] == "gone":
            del nodes[int(word[1], 16)]
        elif word[0] == "folder":
            folders[int(word[1], 16)] = int(word[2], 16)
        elif word[0] == "row":
            rows.add(int(word[1], 16))
    return nodes, folders, rows


def without_pages(whole, types):
    """the file without any page of the trees, old ones too"""
    import pstcheck
    data = bytearray(open(whole, "rb").read())
    size, at = (4096, 4072) if data[10] == 36 else (512, 496 if data[10] >= 20 else 500)
    at_sum = at + (8 if at == 500 else 4)
    for page in range(0, len(data) - size + 1, size):
        sum_told = int.from_bytes(data[page + at_sum:page + at_sum + 4], "little")
        if data[page + at] in types and sum_told == pstcheck.crc_pst(bytes(data[page:page + at])):
            data[page:page + size] = bytes(size)
    return data


OF_OUR_OWN = {"all_node_pages": (0x81,), "all_pages": (0x80, 0x81)}


class Truth:
    def __init__(self, path):
        import pstcheck
        import salvagescore
        store = pstcheck.Store(path)
        store.load()
        self.store = store
        self.bytes = open(path, "rb").read()
        extents = salvagescore.Extents(store)
        self.nodes = {nid: (data & ~1, sub & ~1, parent) for nid, (data, sub, parent) in store.nbt.items()}
        self.extents = {nid: extents.node(nid) for nid in self.nodes if type_of(nid) == MESSAGE}

    def is_intact(self, nid, damaged):
        return all(damaged[at:at + size] == self.bytes[at:at + size] for at, size in self.extents[nid])


def damaged_copies(truth, path, seed, wanted):
    """each case and its content: one at a time, as a large store has no room for all"""
    import damage
    with open(path, "rb") as whole:
        yield from damage.cases(truth.store, whole.read(), random.Random(seed))
    for case, types in OF_OUR_OWN.items():
        if wanted(case):
            yield case, without_pages(path, types)


def score(truth, program, path, damaged, verbose):
    nodes, folders, rows = found_by(program, path)
    messages = [nid for nid in truth.nodes if type_of(nid) == MESSAGE]
    pairs = collections.Counter(entry[:2] for nid, entry in nodes.items() if type_of(nid) == MESSAGE)
    places = collections.Counter(entry for nid, entry in nodes.items() if type_of(nid) == MESSAGE)
    contexts = collections.Counter(entry[0] for nid, entry in nodes.items() if type_of(nid) == MESSAGE)
    live = collections.Counter(truth.nodes[nid][0] for nid in messages)
    row = collections.Counter(too_much=sum(n for data, n in contexts.items() if data not in live),
                              too_many=sum(max(contexts[data] - n, 0) for data, n in live.items()))
    for nid in messages:
        entry = truth.nodes[nid]
        if not truth.is_intact(nid, damaged):
            row["hurt"] += 1
            row["hurt_found"] += nid in nodes or contexts[entry[0]] > 0
            row["hurt_by_row"] += nid in rows and nid not in nodes and contexts[entry[0]] == 0
            pairs[entry[:2]] -= pairs[entry[:2]] > 0
            contexts[entry[0]] -= contexts[entry[0]] > 0
            continue
        row["intact"] += 1
        row["same_id"] += nodes.get(nid, ())[:2] == entry[:2]
        row["found"] += pairs[entry[:2]] > 0
        row["in_folder"] += places[entry] > 0
        if verbose and (pairs[entry[:2]] <= 0 or places[entry] <= 0):
            print("   %s %x %x/%x in %x: %s" % ("misplaced" if pairs[entry[:2]] > 0 else "missing", nid, *entry,
                                               ["%x" % v for v in nodes.get(nid, ())]))
        pairs[entry[:2]] -= 1
        contexts[entry[0]] -= contexts[entry[0]] > 0
        places[entry] -= 1
    for nid in (nid for nid in truth.nodes if type_of(nid) in FOLDERS):
        row["folders"] += 1
        row["folders_found"] += nid in folders
        row["parents"] += folders.get(nid) == truth.nodes[nid][2]
    row["folders_too_much"] = len(folders.keys() - truth.nodes.keys())
    return row


def main():
    ap = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    ap.add_argument("program")
    ap.add_argument("--seed", default="7")
    ap.add_argument("--case", nargs="*", default=[])
    ap.add_argument("--misplaced", type=int, default=0)
    ap.add_argument("--too-much", type=int, default=0)
    ap.add_argument("--verbose", action="store_true")
    a = ap.parse_args()
    if not os.path.isdir(STORES) or not os.path.isdir(TOOLS):
        print("no folders of stores and tools beside the sources; VELMORA_STORES and VELMORA_TOOLS name them")
        return aids.SKIPPED
    sys.path.insert(0, TOOLS)
    sys.setrecursionlimit(4000)
    sums = {}
    wanted = (lambda case: case in a.case) if a.case else (lambda case: True)
    for path in sorted(p for p in glob.glob(os.path.join(STORES, "*")) if p.endswith((".pst", ".ost"))):
        truth = Truth(path)
        for case, content in damaged_copies(truth, path, int(a.seed), wanted):
            sums.setdefault(case, collections.Counter())
            if not wanted(case):
                continue
            with tempfile.NamedTemporaryFile(suffix=os.path.splitext(path)[1]) as copy:
                copy.write(content)
                copy.flush()
                row = score(truth, a.program, copy.name, content, a.verbose)
            if a.verbose:
                print(os.path.basename(path), case, dict(row), flush=True)
            sums[case].update(row)
    print("%-22s %6s %6s %7s %9s | %8s %8s | %11s | %s" % ("case", "intact", "found", "same id", "in folder", "too much",
                                                          "too many", "hurt: found", "folders: found, placed, too much"))
    for case, t in sums.items():
        if t:
            print("%-22s %6d %6d %7d %9d | %8d %8d | %4d: %2d + %-2d | %4d: %4d %4d %4d" % (
                case, t["intact"], t["found"], t["same_id"], t["in_folder"], t["too_much"], t["too_many"], t["hurt"],
                t["hurt_found"], t["hurt_by_row"], t["folders"], t["folders_found"], t["parents"], t["folders_too_much"]))
    missing = sum(t["intact"] - t["found"] for t in sums.values())
    misplaced = sum(t["found"] - t["in_folder"] for t in sums.values())
    too_much = sum(t["too_much"] + t["too_many"] for t in sums.values())
    print("%d intact messages missing, %d in another folder, %d too much" % (missing, misplaced, too_much))
    return 0 if missing == 0 and misplaced <= a.misplaced and too_much <= a.too_much else 1


if __name__ == "__main__":
    sys.exit(main())

"""Every known store, converted for real: the new store is sound, and readers by others find in it what the
run says that it wrote."""

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
import unittest

import stores

TOP = "Top of Personal Folders"


class NewStores(unittest.TestCase):
    maxDiff = 4000

    def setUp(self):
        for program in ("pffexport", "readpst"):
            self.assertIsNotNone(shutil.which(program), f"{program} is needed")

    def test_every_store(self):
        compared = 0
        self.kinds_seen = set()
        for group, source in stores.all_stores():
            for options in ((), ("--smart",)) if group == "stores" else ((),):
                with self.subTest(store=source.name, options=options), tempfile.TemporaryDirectory() as name:
                    work = pathlib.Path(name)
                    code, report, trace, said = stores.convert(source, work, *options)
                    self.assertIn(code, (65,) if report["refusal"] else (0, 3), said)
                    self.compare(work, report, trace)
                    compared += 1
        self.assertGreater(compared, 0)
        self.assertLessEqual({*KINDS.values(), "Meeting"}, self.kinds_seen, "each kind was among them")

    def compare(self, work, report, trace):
        store = pathlib.Path(report["destination"])
        folders, items = stores.contents(trace)
        self.assertEqual(sorted(p.name for p in store.parent.iterdir()), [store.name], "and nothing beside it")
        self.check_tool(store, folders, items)
        self.check_pffexport(work, store, folders, items)
        self.check_kinds(work, report)
        self.check_readpst(work, store, folders, items)

    def check_tool(self, store, folders, items):
        """The strict checker, where it is there: no error, no warning, and the same contents."""
        tool = stores.aid("VELMORA_TOOLS", "tools") / "pstcheck.py"
        if not tool.is_file():
            return
        checked = subprocess.run([sys.executable, tool, "--strict", store], capture_output=True, text=True)
        self.assertEqual(checked.returncode, 0, checked.stdout)
        dump = subprocess.run([sys.executable, tool, "--dump", store], capture_output=True, check=True).stdout
        found_folders, found_items = [], []
        for line in dump.decode("utf-8", "surrogatepass").splitlines():
            o = json.loads(line)
            if not o.get("path") or o["path"][0] != TOP:
                continue
            if o["kind"] == "folder" and o["path"][1:]:
                found_folders.append(tuple(o["path"][1:]))
            elif o["kind"] == "message":
                files = [a.get("sha256") or ("embedded" if "embedded" in a else EMPTY) for a in o.get("attachments", [])]
                found_items.append((tuple(o["path"][1:]), o["class"], stores.plain_subject(o["subject"]),
                                    sorted(files)))
        self.assertEqual(sorted(folders), sorted(found_folders))
        self.assertEqual(sorted(map(tuple, items)), sorted(found_items))

    def check_pffexport(self, work, store, folders, items):
        target = work / "pff"
        done = subprocess.run(["pffexport", "-q", "-m", "items", "-t", target, store], capture_output=True)
        self.assertEqual(done.returncode, 0, done.stderr)
        (work / "pff.said").write_bytes(done.stdout + done.stderr)
        top = work / "pff.export" / TOP
        counts = collections.Counter()
        for path, names, _ in os.walk(top):
            kinds = [n for n in names if re.fullmatch(r"[A-Z][A-Za-z ]*[0-9]{5}", n)]
            here = pathlib.Path(path).relative_to(top).parts
            if here and not is_item(here):
                counts[here] = len(kinds)
        self.assertEqual(sorted(tuple(map(file_name, f)) for f in folders), sorted(counts))
        exported = [i for i in items if PFFEXPORT_KNOWS.fullmatch(i.message_class)]
        wanted = collections.Counter(tuple(map(file_name, i.folder)) for i in exported)
        top_items = wanted.pop((), 0)
        self.assertEqual(wanted, +counts)
        self.assertEqual(top_items, len([n for n in os.listdir(top) if is_item((n,))]))
        self.check_files(exported, [p for p in top.rglob("Attachments/*") if p.is_file()])
        subjects = [subject_of(p) for p in top.rglob("Message*/OutlookHeaders.txt") if not is_item(p.parts[:-2])]
        self.assertEqual(sorted(subjects), sorted(plain(i.subject) for i in exported if i.message_class == "IPM.Note"))

    def check_kinds(self, work, report):
        """As many items of each kind as the report says, embedded ones among them. Where pffexport skips a class,
        the class stands for the kind."""
        wanted = collections.Counter()
        for message_class, count in report["items"].items():
            wanted[kind_of(message_class)] += count
        found = collections.Counter(SKIPPED.findall((work / "pff.said").read_text("utf-8", "replace")))
        for path in (work / "pff.export").rglob("*"):
            item = ITEM.fullmatch(path.name)
            if item and path.is_dir() and item[1] != "Attachment":
                found[item[1]] += 1
        self.assertEqual(wanted, found)
        self.kinds_seen |= set(found)

    def check_files(self, items, files):
        """Every attached file of an item, its bytes unchanged; files of embedded messages come on top."""
        found = collections.Counter(hashlib.sha256(p.read_bytes()).hexdigest() for p in files)
        wanted = collections.Counter(f for i in items for f in i.attachments if f not in ("embedded", EMPTY))
        self.assertEqual(+(wanted - found), collections.Counter())

    def check_readpst(self, work, store, folders, items):
        target = work / "rp"
        target.mkdir()
        done = subprocess.run(["readpst", "-j0", "-D", "-S", "-o", target, store], capture_output=True, text=True,
                              errors="replace")
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        seen = 0
        for line in done.stdout.splitlines():
            counted = re.fullmatch(r'\t"(.*)" - (\d+) items done, (\d+) items skipped\.', line)
            if counted:
                seen += int(counted[2]) + int(counted[3])
        # It counts each folder as an item of the folder above, the top's own among them.
        self.assertEqual(seen, len(items) + len(folders), done.stdout)


# It leaves items of other classes out without a word.
PFFEXPORT_KNOWS = re.compile(r"IPM\.(Note|Contact|DistList|Task|Appointment|Schedule\.Meeting\..*|Activity|StickyNote)")

# It names its folder of an item for the item's kind.
KINDS = {
    "IPM.Note": "Message", "IPM.Contact": "Contact", "IPM.DistList": "DistributionList", "IPM.Task": "Task",
    "IPM.Appointment": "Appointment", "IPM.Activity": "Activity", "IPM.StickyNote": "Note",
}
ITEM = re.compile(r"([A-Z][A-Za-z]*?)[0-9]{5}")
SKIPPED = re.compile(r"^Skipped item \d+ out of \d+ of type: (.*)\.$", re.MULTILINE)

EMPTY = hashlib.sha256(b"").hexdigest()


def kind_of(message_class):
    return "Meeting" if message_class.startswith("IPM.Schedule.Meeting.") else KINDS.get(message_class, message_class)


def is_item(parts):
    return any(re.fullmatch(r"[A-Z][A-Za-z ]*[0-9]{5}", part) for part in parts)


def file_name(name):
    """A folder's name as pffexport makes it fit for a file system."""
    return re.sub(r'[\x00-\x1f!#$%&*+/:;<=>?@\\^`{|}~\x7f"\']', "_", name)


def plain(text):
    return re.sub(r"\s+", " ", text).strip()


def subject_of(path):
    for line in path.read_text("utf-8", "replace").splitlines():
        if line.startswith("Subject:"):
            return plain(line[len("Subject:"):])
    return ""


if __name__ == "__main__":
    stores.main()

"""Whole stores, copied with --complete: readers by others find in the new store what they find in the source."""

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

FORGE_DEMO = os.environ.get("VELMORA_FORGE_DEMO", "velmora-forge-demo")
FORGE_WHOLE = os.environ.get("VELMORA_FORGE_WHOLE", "velmora-forge-whole")
MAKE_STORE = os.environ.get("VELMORA_MAKE_STORE", "velmora-make-store")
TOP = "Top of Personal Folders"
EPOCH = "1700000000"

# Values that are rewritten, since they hold entry ids of the store that they stand in: members of a distribution list,
# the contact that a contact is linked to, the folder that a shortcut shows.
ENTRY_IDS = {"{00062004-0000-0000-C000-000000000046}:0x8055", "{00062008-0000-0000-C000-000000000046}:0x85BD", "0x684C"}
# HTML that an old program stored as 8-bit text has the same bytes as a binary value, but not the same type.
HTML = "0x1013"

# Computed by each store for itself. A message of an offline store may have no time of its last change; in the new store
# all have one.
COMPUTED = re.compile(rb"^Size:\t.*$", re.MULTILINE)
COMPUTED_OF_OFFLINE = re.compile(rb"^(Size|Modification time):\t.*\n", re.MULTILINE)


def whole_stores():
    """The stores beside the sources that are whole; those of the folder "forged" there are damaged."""
    return [path for group, path in stores.all_stores() if group == "stores"]


def forged_stores(folder):
    made = [folder / "demo.ost", folder / "mails.pst"]
    subprocess.run([FORGE_DEMO, "--sound", made[0]], check=True)
    subprocess.run([MAKE_STORE, "--small", "3", made[1]], check=True, stdout=subprocess.DEVNULL)
    for form in ("ansi", "unicode", "unicode4k"):
        made.append(folder / f"everything-{form}.{'ost' if form == 'unicode4k' else 'pst'}")
        subprocess.run([FORGE_WHOLE, "everything", form, made[-1]], check=True)
    return made


def convert(source, work, *options):
    """One copy into the folder `work`. Gives exit code, report, and what it said on standard error."""
    report, out = work / "report.json", work / "out"
    report.unlink(missing_ok=True)
    shutil.rmtree(out, ignore_errors=True)
    out.mkdir(parents=True)
    ended = subprocess.run([stores.PROGRAM, "--complete", *options, "--quiet", "--report", report, source, out],
                           capture_output=True, text=True, errors="replace",
                           env={**os.environ, "XDG_CONFIG_HOME": str(work / "config"), "SOURCE_DATE_EPOCH": EPOCH})
    return ended.returncode, json.loads(report.read_text("utf-8")), ended.stderr


class CompleteStores(unittest.TestCase):
    maxDiff = 4000

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.sources = whole_stores() + forged_stores(pathlib.Path(cls.folder.name))

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def setUp(self):
        for program in ("pffexport", "readpst"):
            self.assertIsNotNone(shutil.which(program), f"{program} is needed")

    def each(self, check, *modes):
        """Copies each store in each mode and has it checked: source, options, report, new store, folder for more."""
        for source in self.sources:
            for options in modes:
                with self.subTest(store=source.name, options=options), tempfile.TemporaryDirectory() as name:
                    work = pathlib.Path(name)
                    code, report, said = convert(source, work, *options)
                    self.assertEqual((code, said), (0, ""))
                    check(source, options, report, pathlib.Path(report["destination"]), work)

    def tool(self, name):
        path = stores.aid("VELMORA_TOOLS", "tools") / name
        self.assertTrue(path.is_file(), "the folder of tools is needed")
        return path

    def test_nothing_is_lost_changed_moved_or_there_twice(self):
        self.each(self.check_objects, ("--verify",), ("--hidden", "--verify"))

    def check_objects(self, source, options, report, new, _):
        shown = () if "--hidden" in options else ("--no-fai",)
        told = subprocess.run([sys.executable, self.tool("storediff.py"), "--json", *shown, source, new],
                              capture_output=True, text=True)
        self.assertIn(told.returncode, (0, 1), told.stderr)
        found = json.loads(told.stdout)
        self.assertEqual(found["missing_items"], [])
        self.assertEqual(found["extra_items"], 0, "not from the source")
        self.assertEqual(found["folders_changed"], [])
        # A folder outside of what people see comes along where it holds something, and then stands where they do.
        self.assertEqual([path for path, _ in found["folders_lost"] if not path.startswith("//")], [])
        self.assertEqual([line for line in found["detail"] if not MOVED_INTO_SIGHT.match(line)], [])
        for kind, counts in found["kinds"].items():
            for what in ("lost", "rlost", "alost"):
                self.assertEqual(counts[what], {}, (kind, what))
            self.assertLessEqual(set(counts["changed"]), ENTRY_IDS | ({HTML} if report["format"] == "ansi" else set()))
            for what in ("missing", "recips_lost", "atts_lost", "atts_changed", "embedded_lost", "body_lost"):
                self.assertEqual(counts[what], 0, (kind, what))
        self.check_account(report)

    def check_account(self, report):
        """The account tells of every item that it is whole, and gives each node one fate."""
        for item_class, counts in report["items"].items():
            self.assertEqual((counts["whole"], counts["partial"], counts["lost"]), (counts["live"], 0, 0), item_class)
        self.assertEqual((report["losses"], report["lossesNotListed"]), ([], 0))
        self.assertGreaterEqual(sum(report["nodes"].values()), report["evidence"]["liveNodes"])
        for fate in ("partial", "unreadable", "deleted, written"):
            self.assertEqual(report["nodes"][fate], 0, fate)

    def test_the_checker_finds_nothing(self):
        self.each(self.check_soundness, (), ("--hidden",))

    def check_soundness(self, _, __, ___, new, ____):
        checked = subprocess.run([sys.executable, self.tool("pstcheck.py"), "--strict", new], capture_output=True,
                                 text=True)
        self.assertEqual(checked.returncode, 0, checked.stdout)

    def test_pffexport_writes_the_same_files(self):
        self.each(self.check_export, ())

    def check_export(self, source, _, report, new, work):
        before, after = pff_export(source, work / "before"), pff_export(new, work / "after")
        old_top, new_top = top_of(before), after / TOP
        computed = COMPUTED_OF_OFFLINE if report["format"] == "unicode4k" else COMPUTED
        expected = files_below(old_top, computed)
        for folder in new_top.iterdir():  # from outside of what people see
            outside = [path for path in before.rglob(folder.name) if old_top not in path.parents]
            if not (old_top / folder.name).exists() and outside:
                expected[folder.name] = None
                expected.update({f"{folder.name}/{name}": said for name, said in files_below(outside[0], computed).items()})
        found = files_below(new_top, computed)
        if report["format"] == "ansi":  # it prints texts of 8 bits, names of folders too, in a code page of its own
            expected, found = without_texts(expected), without_texts(found)
        self.assertEqual(sorted(expected), sorted(found))
        for name in expected:
            self.assertEqual(expected[name], found[name], name)

    def test_readpst_lists_the_same_folders_and_items(self):
        self.each(self.check_list, ("--hidden",))  # it counts the hidden ones too

    def check_list(self, source, _, report, new, work):
        before, after = read_pst(source, work / "before"), read_pst(new, work / "after")
        if report["format"] == "ansi":  # whose names it prints in their code page
            before, after = (collections.Counter(count for _, count in found.elements()) for found in (before, after))
        self.assertEqual(+(before - after), collections.Counter())
        # It lists what is below the top alone; in the new store that is also what came from beside the top.
        beside = {path.name for path in pff_export(source, work / "pff").rglob("*") if path.is_dir()}
        self.assertEqual([line for line in after - before if line[0] not in beside], [])

    def test_a_copy_of_a_copy_has_the_same_bytes(self):
        self.each(self.check_copy_of_copy, (), ("--hidden",))

    def check_copy_of_copy(self, source, options, _, new, work):
        again = work / "again"
        again.mkdir()
        first = again / f"{source.stem}.pst"  # its own name is part of a store
        shutil.move(new, first)
        code, report, said = convert(first, again, *options)
        self.assertEqual((code, said), (0, ""))
        second = pathlib.Path(report["destination"])
        self.assertEqual(second.name, new.name)
        self.assertEqual(digest(first), digest(second))


MOVED_INTO_SIGHT = re.compile(r"other folder: //.*: //(?:.*/)?(?P<name>[^/]+) -> /(?P=name)$")


def digest(path):
    return hashlib.sha256(path.read_bytes()).hexdigest()


def pff_export(store, target):
    target.mkdir()
    done = subprocess.run(["pffexport", "-q", "-f", "all", "-m", "items", "-t", target / "pff", store],
                          capture_output=True)
    if done.returncode:
        raise AssertionError(done.stderr)
    return target / "pff.export"


def top_of(export):
    """Of the folders below the root the one with the largest tree; an offline store has it one level deeper."""
    folders = [path for path in (*export.iterdir(), *export.glob("*/IPM_SUBTREE")) if path.is_dir()]
    offline = [path for path in folders if path.name == "IPM_SUBTREE" and any(path.iterdir())]
    return offline[0] if offline else max(folders, key=lambda path: sum(1 for _ in path.rglob("*")))


def files_below(folder, computed):
    """Path below the folder to content, without what each store computes for itself; None for a folder."""
    found = {}
    for path in folder.rglob("*"):
        found[str(path.relative_to(folder))] = computed.sub(b"", path.read_bytes()) if path.is_file() else None
    return found


def without_texts(files):
    """The same by how deep the folders lie, and of the files those alone that were attached."""
    found = {}
    for name, said in files.items():
        folders, item, rest = re.fullmatch(r"(.*?)((?:[A-Z][A-Za-z]*[0-9]{5}(?:/.*)?)?)()", name, re.DOTALL).groups()
        attached = re.search(r"/Attachments/[^/]+$", name) is not None
        found.setdefault((folders.count("/"), item), []).append(said if attached else None)
    return {name: sorted(said, key=str) for name, said in found.items()}


def read_pst(store, target):
    """How often readpst tells of a folder of that name and number of items, folders counted as items."""
    target.mkdir()
    done = subprocess.run(["readpst", "-j0", "-D", "-S", "-o", target, store], capture_output=True, text=True,
                          errors="replace")
    if done.returncode:
        raise AssertionError(done.stdout + done.stderr)
    lines = re.findall(r'^\t"(.*)" - (\d+) items done, (\d+) items skipped\.$', done.stdout, re.MULTILINE)
    # The last one is the top, which has the name of the store.
    return collections.Counter((name, sum(map(int, counts))) for name, *counts in lines[:-1])


if __name__ == "__main__":
    stores.main()

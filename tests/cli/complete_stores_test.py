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

# Computed by each store for itself.
SIZES = re.compile(rb"^Size:\t.*$", re.MULTILINE)


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
        self.tools = stores.aid("VELMORA_TOOLS", "tools")

    def copies(self, *modes):
        """Each store, copied in each mode: source, options, report, new store, folder for more."""
        for source in self.sources:
            for options in modes:
                with self.subTest(store=source.name, options=options), tempfile.TemporaryDirectory() as name:
                    work = pathlib.Path(name)
                    code, report, said = convert(source, work, *options)
                    self.assertEqual((code, said), (0, ""))
                    yield source, options, report, pathlib.Path(report["destination"]), work

    def test_nothing_is_lost_changed_moved_or_there_twice(self):
        self.assertTrue((self.tools / "storediff.py").is_file(), "the folder of tools is needed")
        for source, options, report, new, _ in self.copies(("--verify",), ("--hidden", "--verify")):
            shown = () if "--hidden" in options else ("--no-fai",)
            told = subprocess.run([sys.executable, self.tools / "storediff.py", "--json", *shown, source, new],
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
                self.assertEqual(counts["lost"], {}, kind)
                self.assertEqual(counts["rlost"], {}, kind)
                self.assertEqual(counts["alost"], {}, kind)
                self.assertLessEqual(set(counts["changed"]), ENTRY_IDS | ({HTML} if report["format"] == "ansi" else set()))
                for what in ("missing", "recips_lost", "atts_lost", "atts_changed", "embedded_lost", "body_lost"):
                    self.assertEqual(counts[what], 0, (kind, what))
            self.check_account(report)

    def check_account(self, report):
        """The account tells of every item that it is whole, and gives each node one fate."""
        for item_class, counts in report["items"].items():
            self.assertEqual((counts["whole"], counts["partial"], counts["lost"]), (counts["live"], 0, 0), item_class)
        self.assertEqual((report["losses"], report["lossesNotListed"]), ([], 0))
        self.assertGreaterEqual(sum(report["nodes"].values()), report["evidence"]["treeNodes"])
        for fate in ("partial", "unreadable", "deleted, written"):
            self.assertEqual(report["nodes"][fate], 0, fate)

    def test_the_checker_finds_no_error(self):
        tool = self.tools / "pstcheck.py"
        self.assertTrue(tool.is_file(), "the folder of tools is needed")
        for _, _, _, new, _ in self.copies((), ("--hidden",)):
            checked = subprocess.run([sys.executable, tool, "--strict", new], capture_output=True, text=True)
            self.assertEqual(checked.returncode, 0, checked.stdout)

    def test_pffexport_writes_the_same_files(self):
        for source, _, report, new, work in self.copies(()):
            before, after = pff_export(source, work / "before"), pff_export(new, work / "after")
            old_top, new_top = top_of(before), after / TOP
            self.assertEqual(top_of(after), new_top)
            expected = files_below(old_top)
            for folder in new_top.iterdir():  # from outside of what people see
                if not (old_top / folder.name).exists():
                    outside = [path for path in before.rglob(folder.name) if old_top not in path.parents]
                    self.assertTrue(outside, folder)
                    expected.update({f"{folder.name}/{name}": said for name, said in files_below(outside[0]).items()})
            found = files_below(new_top)
            self.assertEqual(sorted(expected), sorted(found))
            if report["format"] == "unicode":
                for name, said in expected.items():
                    self.assertEqual(said, found[name], name)
            else:  # the texts of other stores are printed in another way: what is attached has to be the same
                attached = lambda files: {n: s for n, s in files.items() if "/Attachments/" in n and not is_printed(n)}
                self.assertEqual(attached(expected), attached(found))

    def test_readpst_lists_the_same_folders_and_items(self):
        for source, _, _, new, work in self.copies(()):
            before, after = read_pst(source, work / "before"), read_pst(new, work / "after")
            self.assertEqual(after - before, collections.Counter())
            # Folders of no items outside of what people see are not copied.
            self.assertEqual({line: n for line, n in (before - after).items() if line[1] > 0}, {})

    def test_a_copy_of_a_copy_has_the_same_bytes(self):
        for source, options, _, new, work in self.copies((), ("--hidden",)):
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


def files_below(folder):
    """Path below the folder to content, without the sizes that a store computes for itself; None for a folder."""
    found = {}
    for path in folder.rglob("*"):
        found[str(path.relative_to(folder))] = SIZES.sub(b"", path.read_bytes()) if path.is_file() else None
    return found


def is_printed(name):
    """Whether pffexport made the file itself, of the properties of an item."""
    return re.search(r"/[A-Za-z]+[0-9]{5}/[^/]+$", name) is not None


def read_pst(store, target):
    """How often readpst tells of a folder of that name and number of items, folders counted as items."""
    target.mkdir()
    done = subprocess.run(["readpst", "-j0", "-D", "-S", "-o", target, store], capture_output=True, text=True,
                          errors="replace")
    if done.returncode:
        raise AssertionError(done.stdout + done.stderr)
    lines = re.findall(r'^\t"(.*)" - (\d+) items done, (\d+) items skipped\.$', done.stdout, re.MULTILINE)
    folders = collections.Counter((name, sum(map(int, counts))) for name, *counts in lines)
    return folders


if __name__ == "__main__":
    stores.main()

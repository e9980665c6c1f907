"""The script that measures makes every store that it names, sound for this program and for a checker by others, and
counts and prints what its programs did. VELMORA_BUILD is the folder of the built programs."""

import contextlib
import io
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path[:0] = [str(ROOT / "bench"), str(ROOT / "tests/aids")]
import cases  # noqa: E402
import plot  # noqa: E402
import programs  # noqa: E402
import seeks  # noqa: E402
import table  # noqa: E402
from aids import aid  # noqa: E402

BUILD = pathlib.Path(os.environ.get("VELMORA_BUILD", ROOT / "build/quick")).resolve()
CONVERT, FLOOR = BUILD / "src/cli/velmora-convert", BUILD / "bench/velmora-floor"
MAKER = BUILD / "bench/velmora-make-store"
ENCODING_IN_HEADER, ENCODING_IN_ANSI_HEADER = 0x201, 0x1CD
CHECKER = aid("VELMORA_TOOLS", "tools") / "pstcheck.py"


def traces():
    """Whether this machine lets a program be traced."""
    return shutil.which("strace") and subprocess.run(["strace", "-o", os.devnull, "true"], capture_output=True).returncode == 0


class Scratch(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.work = pathlib.Path(folder.name)

    def run_script(self, *words):
        ended = subprocess.run([ROOT / "bench/run", "--build", BUILD, "--work", self.work, *words], text=True,
                               capture_output=True)
        self.assertEqual(ended.returncode, 0, ended.stderr)
        return ended.stdout


class Stores(Scratch):
    def make(self, store):
        path = self.work / "store.pst"
        return path, cases.make(MAKER, store, path)

    def copy(self, path):
        """The report of a complete conversion of the store."""
        out = self.work / "out"
        out.mkdir()
        ended = subprocess.run([CONVERT, "--complete", "--quiet", "--report", out / "report.json", path, out],
                               env=programs.environment(self.work), capture_output=True, text=True)
        self.assertEqual(ended.returncode, 0, ended.stderr)
        report = json.loads((out / "report.json").read_text("utf-8"))
        shutil.rmtree(out)
        return report

    def check(self, path, store, made):
        """As others read it: strictly where they can, else by what they list."""
        if not CHECKER.is_file():
            self.skipTest(f"no checker at {CHECKER}; VELMORA_TOOLS names its folder")
        strict = store.format == "unicode"
        checked = subprocess.run([sys.executable, CHECKER, "--strict" if strict else "--dump", path], text=True,
                                 capture_output=True)
        self.assertEqual(checked.returncode, 0, checked.stdout[-2000:] + checked.stderr[-500:])
        if not strict:
            kinds = [json.loads(line)["kind"] for line in checked.stdout.splitlines()]
            self.assertEqual(kinds.count("message"), made["messages"])

    def all_are_sound(self, chosen):
        for store in chosen:
            with self.subTest(store=cases.name_of(store)):
                path, made = self.make(store)
                if store.items:
                    self.assertEqual(made["messages"], store.items)
                else:
                    self.assertGreaterEqual(path.stat().st_size, store.megabytes * cases.MIB)
                report = self.copy(path)
                self.assertEqual(report["format"], store.format)
                place = ENCODING_IN_ANSI_HEADER if store.format == "ansi" else ENCODING_IN_HEADER
                self.assertEqual(cases.ENCODINGS[path.read_bytes()[place]], store.encoding)
                self.assertEqual(report["items"]["IPM.Note"]["whole"], made["messages"])
                self.assertEqual(report["items"]["IPM.Note"]["live"], made["messages"])
                read = json.loads(subprocess.run([FLOOR, path, self.work / "blocks"], check=True,
                                                 capture_output=True).stdout)
                self.assertGreater(read["blocks"], made["messages"])
                self.assertGreaterEqual((self.work / "blocks").stat().st_size, read["bytes"])
                self.check(path, store, made)

    def test_every_case_is_made_in_every_format(self):
        tiny = [s._replace(items=s.items and 100) for s in cases.stores(cases.CASES, cases.FORMATS, None, [1], 100)]
        self.assertEqual(len(tiny), len(cases.CASES) * len(cases.FORMATS))
        self.all_are_sound(tiny)

    def test_mails_are_made_in_every_encoding(self):
        self.all_are_sound(cases.stores(["mails"], cases.FORMATS, cases.ENCODINGS, [1], 100))

    def test_the_floor_sees_the_same_content_however_it_is_encoded(self):
        read = set()
        for store in cases.stores(["mails"], ["unicode"], cases.ENCODINGS, [1], 100):
            path, _ = self.make(store)
            read.add(subprocess.run([FLOOR, path, self.work / "blocks"], check=True, capture_output=True).stdout)
        self.assertEqual(len(read), 1, read)

    def test_the_floor_writes_the_same_byte_by_byte(self):
        path, _ = self.make(cases.Store("mails", "unicode", "permute", 1, None))
        subprocess.run([FLOOR, path, self.work / "blocks"], check=True, capture_output=True)
        subprocess.run([FLOOR, "--by-bytes", path, self.work / "again"], check=True, capture_output=True)
        self.assertEqual((self.work / "again").read_bytes(), (self.work / "blocks").read_bytes())
        wrong = subprocess.run([FLOOR, "--by-byte", path, self.work / "blocks"], capture_output=True)
        self.assertEqual(wrong.returncode, 64)

    def test_the_floor_inflates_what_a_store_of_4k_pages_holds_packed(self):
        path, _ = self.make(cases.Store("mails", "unicode4k", "none", 1, None))
        read = json.loads(subprocess.run([FLOOR, path, self.work / "blocks"], check=True, capture_output=True).stdout)
        self.assertGreater(read["packed"], 50)
        self.assertGreater(read["bytes"], 1.2 * cases.MIB)  # of which a MiB is what is written

    def test_the_floor_refuses_a_block_that_does_not_prove_itself(self):
        path, _ = self.make(cases.Store("mails", "unicode", "permute", 1, None))
        with open(path, "r+b") as file:
            file.seek(0x4800)
            byte = file.read(1)[0]
            file.seek(0x4800)
            file.write(bytes([byte ^ 1]))
        ended = subprocess.run([FLOOR, path, self.work / "blocks"], capture_output=True, text=True)
        self.assertEqual(ended.returncode, 74)
        self.assertIn("checksum", ended.stderr)

    def test_old_versions_take_room_beside_the_messages(self):
        _, plain = self.make(cases.Store("mails", "unicode", "permute", 2, None))
        path, aged = self.make(cases.Store("old", "unicode", "permute", 2, None))
        self.assertEqual(aged["oldVersions"], aged["messages"])
        self.assertLess(aged["messages"], 0.7 * plain["messages"])
        evidence = self.copy(path)["evidence"]
        self.assertGreater(evidence["freedBlocks"], 0.8 * evidence["liveBlocks"])
        self.assertEqual(evidence["hurtBlocks"] + evidence["failedBlocks"], 0)

    def test_shares_of_files_and_of_old_versions_can_be_asked_for(self):
        few, = cases.stores(["mails"], ["unicode"], None, [1], 100, ["--files", "0", "--old", "50"])
        self.assertEqual(cases.name_of(few), "mails --files 0 --old 50, unicode, permute, 1 MiB")
        _, made = self.make(few)
        self.assertEqual((made["attachments"], made["oldVersions"]), (0, made["messages"] // 2))

    def test_stores_that_a_format_has_no_room_for_are_not_made(self):
        sizes = {s.megabytes for s in cases.stores(["mails"], ["ansi"], None, [10, 8000], 100)}
        self.assertEqual(sizes, {10})
        self.assertEqual([s.items for s in cases.stores(["rows"], ["ansi"], None, [1], 100)], [65535])
        self.assertEqual([s.items for s in cases.stores(["rows"], ["unicode"], None, [1], 100)], [1_000_000])


class Measuring(Scratch):
    def test_programs_run_in_turn_and_the_table_and_the_plot_tell_of_all(self):
        page = self.work / "page.md"
        page.write_text("ahead\n<!-- bench/run begins -->\nold\n<!-- bench/run ends -->\nbehind\n")
        names = "fields,complete,complete --verify,cp,floor"
        printed = self.run_script("--sizes", "1,2", "--runs", "2", "--programs", names, "--json", self.work / "figures",
                                  "--document", page)
        results = json.loads((self.work / "figures").read_text())
        self.assertEqual([r["program"] for r in results], names.split(",") * 2)
        for r in results:
            self.assertEqual(r["code"], 0, r)
            self.assertGreater(r["seconds"], 0)
            self.assertGreater(r["peak"], 500 << 10)
            copies = r["program"] not in ("cp", "floor")
            self.assertEqual(r["messages"], r["expected"] if copies else None)
        text = page.read_text()
        self.assertTrue(text.startswith("ahead\n") and text.endswith("behind\n"))
        self.assertNotIn("old\n", text)
        self.assertIn("](page.svg)", text)
        for row in table.times(results).splitlines():
            self.assertIn(row, text)
            self.assertIn(row, printed)
        drawn = xml.etree.ElementTree.parse(self.work / "page.svg")
        words = [e.text for e in drawn.iter("{http://www.w3.org/2000/svg}text")]
        for name in names.split(","):
            self.assertEqual(words.count(name), 2, "once for the time, once for the memory")

    def test_other_readers_are_measured_where_they_are_there(self):
        missing = [p for p in ("readpst", "pffexport") if shutil.which(p) is None]
        if missing:
            self.skipTest(f"not installed: {', '.join(missing)}")
        self.run_script("--sizes", "1", "--runs", "1", "--programs", "readpst -S -j0,pffexport", "--json", self.work / "f")
        for r in json.loads((self.work / "f").read_text()):
            self.assertEqual((r["code"], r["messages"]), (0, r["expected"]), r["program"])

    def test_jumps_of_a_run_are_counted(self):
        if not traces():
            self.skipTest("strace is not installed, or may not trace here")
        found = {}
        for case in ("mails", "strewn"):
            store = cases.Store(case, "unicode", "permute", 4, None)
            path = self.work / f"{case}.pst"
            cases.make(MAKER, store, path)
            there, _ = programs.all_programs(BUILD)
            reading, writing = seeks.count_seeks(there["complete"], path, self.work)
            self.assertGreaterEqual(reading.bytes, path.stat().st_size)
            self.assertGreater(writing.bytes, 3 << 20)
            found[case] = reading
        self.assertGreater(found["strewn"].distance, 2 * found["mails"].distance)


class Choosing(Scratch):
    def programs_of(self, help_text):
        """Those that are measured of a build whose program says this for --help."""
        program = self.work / "src/cli/velmora-convert"
        program.parent.mkdir(parents=True, exist_ok=True)
        program.write_text(f"#!/bin/sh\necho '{help_text}'\n")
        program.chmod(0o755)
        return programs.all_programs(self.work)

    def test_numbers_of_workers_are_measured_where_the_program_takes_one(self):
        with_jobs = {f"complete --jobs {n}" for n in (1, 2, 4)}
        there, _ = self.programs_of("--complete --jobs N")
        self.assertLessEqual(with_jobs, set(there))
        self.assertEqual(there["complete --jobs 4"].words[-4:], ["--jobs", "4", "{store}", "{out}"])
        there, missing = self.programs_of("--complete")
        self.assertIn("complete", there)
        self.assertLessEqual(with_jobs, set(missing))

    def test_programs_that_are_not_built_are_left_out(self):
        there, missing = programs.all_programs(self.work)
        self.assertNotIn("floor", there)
        self.assertIn("velmora-floor", missing["floor"])


class Counting(unittest.TestCase):
    def test_jumps_are_told_apart_from_reading_on(self):
        log = io.StringIO(
            '7  pread64(3</s.pst>, ""..., 100, 0) = 100\n'
            '7  pread64(3</s.pst>, ""..., 100, 100) = 50\n'
            '7  pread64(3</s.pst>,  <unfinished ...>\n'
            '8  pread64(5</lib/libc.so>, ""..., 784, 64) = 784\n'
            '8  pwrite64(4</out>, ""..., 10, 0) = 10\n'
            '7  <... pread64 resumed>""..., 100, 1150) = 100\n'
            '8  pwrite64(6</index>, ""..., 10, 0) = 10\n'
            '8  pwrite64(4</out>, ""..., 10, 10) = 10\n'
            '8  pwrite64(4</out>, ""..., 10, 0) = 10\n'
            '8  pread64(3</s.pst>, 0x7f, 10, 0) = -1 EIO (Input/output error)\n')
        reading, writing = seeks.heads(log, "/s.pst")
        self.assertEqual((reading.calls, reading.bytes, reading.seeks, reading.distance), (3, 250, 1, 1000))
        self.assertEqual((writing.calls, writing.bytes, writing.seeks, writing.distance), (4, 40, 1, 20))

    def test_growth_is_told_for_four_times_the_data(self):
        results = [{"kind": "mails", "program": "fields", "bytes": size, "seconds": seconds}
                   for size, seconds in ((20 << 20, 6.0), (10 << 20, 2.0))]
        self.assertIn("| mails, 10 to 20 MiB | fields | 2.00 | 3.00 | 9.00 |", table.growth(results))

    def test_times_are_told_to_those_of_the_same_store(self):
        results = [{"store": store, "program": program, "seconds": seconds, "processor": 0, "peak": 3 << 20,
                    "messages": messages, "expected": 80, "code": code}
                   for store, program, seconds, messages, code in
                   (("a", "complete", 4.0, 79, 3), ("a", "cp", 2.0, None, 0), ("b", "cp", 9.0, None, 0),
                    ("a", "floor", 8.0, None, 0))]
        self.assertIn("| a | complete | 4.00 | 0.00 | 2.00 | 0.50 | 3.0 | 20 | 79 of 80, exit code 3 |",
                      table.times(results))

    def test_a_page_without_a_place_for_the_table_is_left_alone(self):
        with tempfile.TemporaryDirectory() as folder:
            page = pathlib.Path(folder) / "page.md"
            page.write_text("no marks\n")
            with self.assertRaises(ValueError):
                table.put_into(page, "table")
            self.assertEqual(page.read_text(), "no marks\n")

    def test_labels_that_meet_are_moved_apart(self):
        self.assertEqual(plot.spread([(10, "b"), (9, "a"), (60, "c")]), [(9, "a"), (24, "b"), (60, "c")])

    def test_there_is_no_plot_of_one_size(self):
        with contextlib.redirect_stdout(io.StringIO()):
            self.assertEqual(plot.plot([{"kind": "mails", "program": "fields", "bytes": 1, "seconds": 1, "peak": 1}]), "")


if __name__ == "__main__":
    for needed in (CONVERT, FLOOR, MAKER, pathlib.Path(programs.TIME)):
        if not needed.is_file():
            sys.exit(f"{needed} is not there")
    unittest.main()

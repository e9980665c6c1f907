"""The program as its user meets it: exit codes, messages, files."""

import json
import os
import re
import resource
import shutil
import subprocess
import time
import unittest

import program_fixture
import stores

NOT_VALID = "Error: Pst/Ost file is not valid.\n"
NOT_OPENED = "Error: Source file could not open.Make sure that another application is not using. \n"
NO_FOLDER = ("Error: Unable to create folder to save recovered .pst file.\n"
             "Please select another location to save recovered .pst file.\n")
STAGES = ["Opening OST file...", "Validating OST file...", "Creating new profile...",
          "Validating Folder Structure...", "Collecting Folder Names...", "Converting Folder Items...",
          "Converting Mail Items...", "Closing file..."]


class Program(program_fixture.ProgramTest):
    STAGES = STAGES

    # ---------------------------------------------------------------- the good case

    def test_a_conversion_says_where_the_store_is_and_what_it_holds(self):
        ended = self.run_program(self.demo, self.out)
        self.assertEqual(ended.returncode, 0, ended.stderr)
        self.assertEqual(self.produced(), ["demo Converted0", "demo Converted0/demo Converted.pst"])
        self.assertIn(f"Recovered at: {self.out}/demo Converted0/demo Converted.pst\n", ended.stdout)
        self.assertRegex(ended.stdout, r"\n +\d+  Inbox\n")
        self.assertRegex(ended.stdout, r"\n +\d+  items in \d+ folders\n$")
        self.assertEqual(ended.stderr.splitlines(), STAGES)

    def test_of_the_header_the_two_bytes_that_tell_the_kind_of_store_are_enough(self):
        whole = self.demo.read_bytes()
        first_data = 0x4800
        for name, kept, code in (("kind", slice(8, 10), 0), ("nothing", slice(0, 0), 65)):
            with self.subTest(kept=name):
                damaged = bytearray(first_data) + whole[first_data:]
                damaged[kept] = whole[kept]
                source = self.work / f"{name}.ost"
                source.write_bytes(damaged)
                ended = self.run_program("--quiet", source, self.out)
                self.assertEqual(ended.returncode, code, ended.stderr)
        self.assertEqual(self.contents_of(self.work / "kind.ost"), self.contents_of(self.demo))

    def contents_of(self, source):
        """Folders and items as a dry run finds them, under the same name whatever the source's."""
        report = self.work / "contents.json"
        report.unlink(missing_ok=True)
        self.run_program("--quiet", "--dry-run", "--report", report, source, self.out)
        told = json.loads(report.read_text("utf-8"))
        return told["folders"], told["items"], told["attachments"], told["embedded"]

    def test_quiet_says_nothing(self):
        ended = self.run_program("--quiet", self.demo, self.out)
        self.assertEqual((ended.returncode, ended.stdout, ended.stderr), (0, "", ""))

    def test_no_progress_leaves_the_result(self):
        ended = self.run_program("--no-progress", self.demo, self.out)
        self.assertEqual(ended.stderr, "")
        self.assertIn("Recovered at: ", ended.stdout)

    def test_report_on_standard_output_is_nothing_but_json(self):
        ended = self.run_program("--report", "-", self.demo, self.out)
        report = json.loads(ended.stdout)
        self.assertEqual(report["destination"], f"{self.out}/demo Converted0/demo Converted.pst")
        self.assertEqual(report["source"], str(self.demo))
        self.assertEqual(report["storeKind"], "ost")
        self.assertGreater(report["peakRssKiB"], 1000)
        self.assertGreater(report["seconds"], 0)
        self.assertIn("Recovered at: ", ended.stderr)

    def test_what_is_lost_ends_the_result_with_the_way_to_the_list(self):
        source = self.work / "lossy.ost"
        subprocess.run([os.environ["VELMORA_FORGE_NASTY"], "nodes-of-missing-blocks", source, "1"], check=True)
        lost = r"\n\nLost or not whole: \d+ messages\.\n"
        report = self.work / "report.json"
        for options, stream, how in (
                ((), "stdout", "With --report FILE a report lists what is lost."),
                (("--report", report), "stdout", f"The report lists what is lost: {report}"),
                (("--report", "-"), "stderr", "The report on standard output lists what is lost.")):
            with self.subTest(options=options):
                ended = self.run_program("--dry-run", "--no-progress", *options, source, self.out)
                self.assertEqual(ended.returncode, 3)
                self.assertRegex(getattr(ended, stream), lost + re.escape(how) + r"\n$")
        ended = self.run_program("--dry-run", "--quiet", source, self.out)
        self.assertEqual((ended.returncode, ended.stdout, ended.stderr), (3, "", ""))

    def test_a_dry_run_leaves_nothing_and_makes_no_profile(self):
        ended = self.run_program("--dry-run", "--report", "-", self.demo, self.work / "not there")
        self.assertEqual(ended.returncode, 0, ended.stderr)
        self.assertEqual(self.produced(self.work), ["out"])
        self.assertEqual(json.loads(ended.stdout)["destination"],
                         f"{self.work}/not there/demo Converted0/demo Converted.pst")

    def test_dry_run_and_real_run_have_the_same_trace(self):
        self.run_program("--dry-run", "--trace", self.work / "dry", self.demo, self.out)
        self.run_program("--trace", self.work / "real", "--log", self.demo, self.out)
        self.assertGreater(len((self.work / "dry").read_bytes()), 1000)
        self.assertEqual((self.work / "dry").read_bytes(), (self.work / "real").read_bytes())

    def test_the_same_source_gives_the_same_bytes(self):
        self.environment["SOURCE_DATE_EPOCH"] = "1600000000"
        found = []
        for name in ("one", "two"):
            (self.work / name).mkdir()
            self.run_program(self.demo, self.work / name)
            found.append((self.work / name / "demo Converted0" / "demo Converted.pst").read_bytes())
            time.sleep(1.1)
        self.assertEqual(found[0], found[1])

    def test_a_log_holds_header_and_summary(self):
        self.run_program("--log", self.demo, self.out)
        log = (self.out / "demo Converted0" / "LogInformation.log").read_bytes().decode("utf-16")
        self.assertIn(f"Source File Path:{self.demo}\r\n", log)
        self.assertIn("-------------------Summary--------------------", log)
        self.assertRegex(log, r"\r\n\r\nTotal recovered mail items : [1-9]\d*\r\n\r\nDate and time : \w+day, [^\r\n]+$")

    def test_a_second_run_into_the_same_folder_is_refused(self):
        self.run_program(self.demo, self.out)
        before = (self.out / "demo Converted0" / "demo Converted.pst").read_bytes()
        ended = self.run_program("--no-progress", self.demo, self.out)
        self.assertEqual(ended.returncode, 73)
        self.assertTrue(ended.stderr.startswith(NO_FOLDER), ended.stderr)
        self.assertEqual((self.out / "demo Converted0" / "demo Converted.pst").read_bytes(), before)

    def test_a_second_run_into_another_folder_works(self):
        (self.work / "other").mkdir()
        self.run_program(self.demo, self.out)
        self.assertEqual(self.run_program(self.demo, self.work / "other").returncode, 0)

    def test_a_user_without_a_home_can_convert(self):
        for name in ("HOME", "XDG_CONFIG_HOME"):
            self.environment.pop(name, None)
        self.environment["XDG_RUNTIME_DIR"] = str(self.work)
        ended = self.run_program(self.demo, self.out)
        self.assertEqual(ended.returncode, 0, ended.stderr)

    # ---------------------------------------------------------------- terminal

    def test_a_terminal_gets_a_bar_in_color(self):
        text = self.on_a_terminal(NO_COLOR="")
        self.assertIn(b"\r\x1b[K[\x1b[32m", text)
        self.assertIn(b"100% ", text)

    def test_no_color_is_respected(self):
        text = self.on_a_terminal(NO_COLOR="1")
        self.assertIn(b"\r\x1b[K[", text)
        self.assertNotIn(b"\x1b[3", text)

    def test_the_bar_is_divided_by_what_the_stages_take(self):
        self.check_bar([0, 0, 31, 32, 35, 39, 39, 100])

    # ---------------------------------------------------------------- refusals

    def refused(self, source, code, message, cause=""):
        ended = self.run_program("--no-progress", "--report", "-", source, self.out)
        self.assertEqual(ended.returncode, code, source)
        self.assertEqual(ended.stderr, message + (cause and f"velmora-convert: {source}: {cause}\n"))
        self.assertEqual(json.loads(ended.stdout)["refusal"], message[len("Error: "):-1])
        self.assertEqual(self.produced(), [])

    def test_sources_that_cannot_be_opened(self):
        os.mkfifo(self.work / "pipe.ost")
        for source, cause in ((self.work / "none.ost", "No such file or directory"),
                              (self.work, "Is a directory"),
                              (str(self.work) + "/", "Is a directory"),
                              (self.demo / "below", "Not a directory"),
                              ("/dev/null", "no regular file"),
                              (self.work / "pipe.ost", "no regular file")):
            self.refused(source, 66, NOT_OPENED, cause)

    def test_a_source_without_permission(self):
        path = self.write("secret.ost", self.demo.read_bytes())
        path.chmod(0)
        as_other = {}
        if os.geteuid() == 0:  # who may read everything; a build may lie where nobody else may enter
            program = shutil.copy(stores.PROGRAM, self.work)
            for folder in (self.work, self.out):
                folder.chmod(0o777)
            as_other = {"user": 65534, "executable": program}
        ended = self.run_program("--no-progress", path, self.out, **as_other)
        self.assertEqual((ended.returncode, ended.stderr),
                         (66, NOT_OPENED + f"velmora-convert: {path}: Permission denied\n"))

    def test_sources_that_are_no_store(self):
        self.refused(self.write("empty.ost", b""), 65, NOT_VALID)
        self.refused(self.write("eight.ost", b"!BDN\0\0\0\0"), 65, NOT_VALID)
        self.refused(self.write("hundred.ost", b"!BDN" + b"\xA5" * 96), 65, NOT_VALID)
        self.refused(self.write("random.ost", os.urandom(300000)), 65, NOT_VALID)
        self.refused(self.write("book.pab", b"!BDN\0\0\0\0AB" + bytes(60000)), 65, NOT_VALID)
        self.refused(self.write("text.pst", b"not a store\n" * 5000), 65, NOT_VALID)

    def test_random_bytes_behind_a_good_magic(self):
        for kind in (b"SM", b"SO"):
            path = self.write("odd.ost", b"!BDN\0\0\0\0" + kind + os.urandom(200000))
            for mode in ((), ("--complete",)):
                ended = self.run_program(*mode, "--dry-run", path, self.out)
                self.assertIn(ended.returncode, (0, 3, 65), ended.stderr)

    def test_a_store_cut_off_anywhere(self):
        whole = self.demo.read_bytes()
        for size in [*range(0, 20000, 997), *range(20000, len(whole), len(whole) // 60)]:
            with self.subTest(size=size):
                path = self.write("cut.ost", whole[:size])
                for number, mode in enumerate((("--smart",), ("--complete", "--hidden", "--verify"))):
                    out = self.work / f"cut{size}-{number}"
                    out.mkdir()
                    ended = self.run_program(*mode, "--report", "-", path, out)
                    self.assertIn(ended.returncode, (0, 3, 65), ended.stderr)
                    report = json.loads(ended.stdout)
                    self.assertEqual(ended.returncode == 65, report["refusal"] is not None)
                    self.assertIn(self.produced(out), ([], ["cut Converted0", "cut Converted0/cut Converted.pst"]))

    def test_usage(self):
        for words in ((), ("a",), ("--none", "a", "b"), ("--codepage", "none-such", "a", "b")):
            ended = self.run_program(*words)
            self.assertEqual((ended.returncode, ended.stdout), (64, ""))
            self.assertIn("--help", ended.stderr)

    # ---------------------------------------------------------------- output that cannot be made or written

    def test_a_destination_that_is_not_there(self):
        ended = self.run_program("--no-progress", self.demo, self.work / "gone")
        self.assertEqual(ended.returncode, 73)
        self.assertTrue(ended.stderr.startswith(NO_FOLDER), ended.stderr)

    def test_report_and_trace_overwrite_nothing(self):
        taken = self.write("taken", b"mine")
        for option in ("--report", "--trace"):
            ended = self.run_program(option, taken, self.demo, self.out)
            self.assertEqual(ended.returncode, 73)
            self.assertEqual(taken.read_bytes(), b"mine")
            self.assertEqual(self.produced(), [])
        ended = self.run_program("--report", self.work / "same", "--trace", self.work / "same", self.demo, self.out)
        self.assertEqual(ended.returncode, 73)

    def test_a_report_that_cannot_be_made(self):
        ended = self.run_program("--report", self.work / "none" / "report.json", self.demo, self.out)
        self.assertEqual(ended.returncode, 73)
        self.assertIn("velmora-convert: ", ended.stderr)

    @unittest.skipUnless(os.path.exists("/dev/full"), "the system has no device that is always full")
    def test_output_that_nobody_takes(self):
        with open("/dev/full", "w") as full:
            ended = subprocess.run([stores.PROGRAM, "--quiet", "--report", "-", self.demo, self.out], stdout=full,
                                   stderr=subprocess.PIPE, env=self.environment)
        self.assertEqual(ended.returncode, 74)
        reading, writing = os.pipe()
        os.close(reading)
        ended = subprocess.run([stores.PROGRAM, "--help"], stdout=writing, env=self.environment)
        os.close(writing)
        self.assertEqual(ended.returncode, 74)

    def test_a_disk_that_fills_up_ends_the_run_with_one_message(self):
        source = self.work / "big.pst"
        subprocess.run([os.environ["VELMORA_FORGE_BIG"], source], check=True)
        self.run_program("--quiet", source, self.out)
        size = (self.out / "big Converted0" / "big Converted.pst").stat().st_size
        codes, counts = set(), set()
        for limit in [512, 4096, 20000, *range(100000, size, size // 12), size - 1]:
            with self.subTest(limit=limit):
                out = self.work / f"limit{limit}"
                out.mkdir()
                ended = self.run_program(
                    "--no-progress", "--report", out / "report.json", source, out,
                    preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit)))
                self.assertIn(ended.returncode, (73, 74), ended.stderr)
                self.assertEqual(ended.stderr.count("Error: "), 1, ended.stderr)
                codes.add(ended.returncode)
                if ended.returncode == 74:
                    counts.add(self.check_what_is_left(out, ended))
        self.assertEqual(codes, {73, 74})
        self.assertGreater(len(counts), 8)
        self.assertLess(max(counts), 60)

    def test_a_file_system_that_fills_up_keeps_what_was_saved(self):
        self.fill_up("-t", "tmpfs", "-o", "size=8m", "tmpfs")

    def test_so_does_one_that_sets_no_room_aside(self):
        image = self.work / "image"
        with open(image, "wb") as file:
            file.truncate(8 << 20)
        made = subprocess.run(["/sbin/mke2fs", "-q", "-F", "-t", "ext2", "-m", "0", image], capture_output=True)
        self.assertEqual(made.returncode, 0, made.stderr)
        self.fill_up("-o", "loop", image)

    def fill_up(self, *mount):
        """Converts into a small file system, which somebody else fills in the middle of the run, but for 0.6 MB and
        for what the run has taken ahead."""
        if os.geteuid() != 0:
            self.skipTest("only root can make a file system of a few megabytes")
        source = self.work / "big.pst"
        subprocess.run([os.environ["VELMORA_FORGE_BIG"], source], check=True)
        if subprocess.run(["mount", *mount, self.out], capture_output=True).returncode:
            self.skipTest("mounting is not allowed here")
        try:
            stage = "Converting Mail Items..."
            child, messages = self.start_until(stage, source, "--report", self.work / "report.json")
            disk = os.statvfs(self.out)
            (self.out / "filler").write_bytes(b"x" * (disk.f_bavail * disk.f_frsize - 600000))
            code, said, output = self.finish(child, messages)
            (self.out / "filler").unlink()
            shutil.copy(self.work / "report.json", self.out)
            ended = subprocess.CompletedProcess([], code, output, said[said.index("Error: "):])
            self.assertEqual(code, 74, said)
            left = self.check_what_is_left(self.out, ended)
            self.assertTrue(20 < left < 50, left)
        finally:
            subprocess.run(["umount", self.out], check=True)

    def check_what_is_left(self, out, ended):
        """The store is whole, and message, listing and report say what other readers find in it: how many items."""
        store = out / "big Converted0" / "big Converted.pst"
        self.assertTrue(ended.stderr.startswith(
            "Error: Not enough free disk space available to save converted .pst file.\n"
            f"Recovered at:{store}\n"), ended.stderr)
        self.assertNotIn("completed", ended.stdout)
        self.check_store(store)
        listed = int(re.search(r"^ +(\d+)  Inbox$", ended.stdout, re.M)[1])
        self.assertRegex(ended.stdout, rf"\n +{listed}  items in \d+ folders\n\nLost or not whole: 1 step of the run\.\n")
        report = json.loads((out / "report.json").read_text())
        self.assertEqual(report["items"], {"IPM.Note": listed} if listed else {})
        self.assertEqual(report["attachments"], listed)
        self.assertEqual([lost["kind"] for lost in report["lost"]], ["run"])
        target = self.work / f"{out.name}.exported"
        subprocess.run(["pffexport", "-q", "-t", target, store], check=True, capture_output=True)
        exported = target.with_name(target.name + ".export")
        self.assertEqual(sum(1 for _ in exported.rglob("Message*/OutlookHeaders.txt")), listed)
        self.assertEqual(sum(1 for file in exported.rglob("*file.bin") if file.stat().st_size == 40000), listed)
        return listed

    # ---------------------------------------------------------------- Ctrl-C

    def test_ctrl_c_seals_the_store_and_says_where_it_is(self):
        code, said = self.stop_at("Converting Mail Items...", "--report", "-")
        self.assertEqual(code, 130, said)
        store = self.out / "demo Converted0" / "demo Converted.pst"
        self.assertTrue(said.endswith(f"Stopped. Recovered at: {store}\n"), said)
        self.check_store(store)
        self.assertEqual(self.produced(), ["demo Converted0", "demo Converted0/FirstTableItem.dat",
                                           "demo Converted0/demo Converted.pst"])
        self.assertIsNone(json.loads(self.output)["refusal"])

    def test_ctrl_c_before_there_is_a_store(self):
        code, said = self.stop_at("Validating OST file...")
        self.assertEqual(code, 130, said)
        self.assertTrue(said.endswith("Stopped. No store was written.\n"), said)
        self.assertEqual(self.produced(), [])


if __name__ == "__main__":
    unittest.main()

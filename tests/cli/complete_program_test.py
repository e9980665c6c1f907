"""The program with --complete as its user meets it: exit codes, messages, files."""

import json
import os
import pathlib
import re
import resource
import subprocess
import tempfile
import time
import unittest

import program_fixture
import stores



class CompleteProgram(program_fixture.ProgramTest):
    STAGES = ["Opening OST file...", "Validating OST file...", "Creating new profile...", "Converting Mail Items...",
              "Closing file..."]

    def setUp(self):
        super().setUp()
        # The demonstration is damaged; what is to come across whole has to be whole.
        self.run_program("--quiet", "--no-progress", self.demo, self.work)
        self.source = self.work / "sound.pst"
        (self.work / "demo Converted0" / "demo Converted.pst").rename(self.source)
        (self.work / "demo Converted0").rmdir()
        self.store = self.out / "sound Converted0" / "sound Converted.pst"

    def convert(self, *options, source=None, **more):
        return self.run_program("--complete", *options, source or self.source, self.out, **more)

    def report_of(self, *options, source=None):
        ended = self.convert("--quiet", "--report", "-", *options, source=source)
        return ended.returncode, json.loads(ended.stdout)

    # ---------------------------------------------------------------- the good case

    def test_a_conversion_says_where_the_store_is_and_how_much_came_across(self):
        ended = self.convert()
        self.assertEqual(ended.returncode, 0, ended.stderr)
        self.assertEqual(self.produced(), ["sound Converted0", "sound Converted0/sound Converted.pst"])
        self.assertTrue(ended.stdout.startswith(f"OST file conversion completed.\nRecovered at: {self.store}\n\n"))
        self.assertRegex(ended.stdout, r"\n +[1-9]\d*  items whole\n +0  items in part\n +0  items lost\n"
                                       r" +[1-9]\d*  folders\n$")
        self.assertEqual(ended.stderr.splitlines(), self.STAGES)
        self.check_store(self.store)

    def test_report_on_standard_output_is_nothing_but_json_and_accounts_for_every_node(self):
        ended = self.convert("--report", "-")
        report = json.loads(ended.stdout)
        self.assertEqual((report["schemaVersion"], report["conversion"]), (2, "complete"))
        self.assertEqual((report["source"], report["destination"]), (str(self.source), str(self.store)))
        self.assertEqual((report["losses"], report["lossesNotListed"]), ([], 0))
        self.assertGreater(len(report["items"]), 3)
        for counts in report["items"].values():
            self.assertEqual(counts["live"], counts["whole"])
        written = sum(counts["whole"] for counts in report["items"].values()) + report["folders"]
        self.assertGreaterEqual(report["nodes"]["written"], written)
        self.assertEqual(sum(report["nodes"].values()) - report["nodes"]["older version"] - report["nodes"]["deleted"],
                         report["evidence"]["liveNodes"])
        self.assertIn("Recovered at: ", ended.stderr)

    def test_a_report_that_ends_in_html_is_a_page(self):
        for name in ("report.html", "other.HTML"):
            report = self.work / name
            ended = self.convert("--report", report)
            self.assertEqual(ended.returncode, 0, ended.stderr)
            page = report.read_text("utf-8")
            self.assertTrue(page.startswith("<!DOCTYPE html>\n") and page.endswith("</html>\n"), page[:200])
            self.assertIn("<h1>What came out of <bdi>sound.pst</bdi></h1>", page)
            whole = re.search(r"(\d+)  items whole", ended.stdout)[1]
            self.assertIn(f'<li class="whole"><b>{whole}</b> items whole</li>', page)
        self.assertIn("<dd>none: it was a dry run</dd>", self.page_of("--complete", "--dry-run"))
        self.assertTrue(self.page_of("--dry-run").startswith("{\n"), "that of the other conversion has no page")

    def page_of(self, *options):
        with tempfile.TemporaryDirectory() as folder:
            report = pathlib.Path(folder) / "r.html"
            self.run_program("--quiet", "--report", report, *options, self.source, self.out)
            return report.read_text("utf-8")

    def test_a_page_names_what_is_lost(self):
        source = self.work / "lossy.ost"
        subprocess.run([os.environ["VELMORA_FORGE_NASTY"], "nodes-of-missing-blocks", source, "1"], check=True)
        page = self.work / "report.html"
        self.convert("--dry-run", "--quiet", "--report", page, source=source)
        _, told = self.report_of("--dry-run", source=source)
        self.assertEqual(page.read_text("utf-8").count('<tr class="lost">'), len(told["losses"]))

    def test_a_comparison_finds_the_new_store_to_be_the_same(self):
        code, report = self.report_of("--verify", "--hidden")
        self.assertEqual(code, 0)
        self.assertGreater(report["verify"]["compared"], 10)
        self.assertEqual(report["verify"]["differences"], [])

    def test_the_new_store_converts_to_the_same_again(self):
        _, first = self.report_of()
        again = self.work / "again.pst"
        self.store.rename(again)
        code, second = self.report_of(source=again)
        self.assertEqual(code, 0)
        for field in ("items", "folders", "recipients", "attachments", "embedded"):
            self.assertEqual(second[field], first[field], field)

    def test_the_same_source_gives_the_same_bytes(self):
        self.environment["SOURCE_DATE_EPOCH"] = "1600000000"
        self.convert()
        first = self.store.read_bytes()
        self.store.unlink()
        self.store.parent.rmdir()
        time.sleep(1.1)
        self.convert()
        self.assertEqual(self.store.read_bytes(), first)

    def test_quiet_says_nothing(self):
        ended = self.convert("--quiet")
        self.assertEqual((ended.returncode, ended.stdout, ended.stderr), (0, "", ""))

    def test_a_dry_run_leaves_nothing(self):
        before = self.produced(self.work)
        ended = self.run_program("--complete", "--dry-run", "--log", self.source, self.work / "not there")
        self.assertEqual(ended.returncode, 0, ended.stderr)
        self.assertIn("\nDry run: no store was written.\n", ended.stdout)
        self.assertRegex(ended.stdout, r"\n +[1-9]\d*  items whole\n")
        self.assertEqual(self.produced(self.work), before)

    def test_a_log_holds_header_and_summary(self):
        self.convert("--log")
        log = (self.store.parent / "LogInformation.log").read_bytes().decode("utf-16")
        self.assertIn(f"Source File Path:{self.source}\r\n", log)
        self.assertIn(f"Destination File Path:{self.store}\r\n", log)
        self.assertRegex(log, r"\r\n\r\nIPM\.Note : [1-9]\d* whole, 0 in part, 0 lost\r\n")
        self.assertRegex(log, r"\r\n\r\nTotal recovered mail items : [1-9]\d*\r\n\r\nDate and time : \w+day, [^\r\n]+$")

    def test_a_terminal_gets_a_bar_with_items_and_bytes(self):
        text = self.on_a_terminal("--complete", NO_COLOR="1")
        self.assertRegex(text, rb"\r\x1b\[K\[#{30}\] 100% (\d+) of \1 items, \d")

    def test_the_bar_is_divided_by_what_the_stages_take(self):
        self.check_bar([0, 0, 38, 39, 100], "--complete")

    def test_the_bar_leaves_room_for_verifying(self):
        self.check_bar([0, 0, 16, 16, 43], "--complete", "--verify")

    # ---------------------------------------------------------------- losses

    def test_losses_end_the_result_one_by_one_with_the_way_to_the_list(self):
        source = self.work / "lossy.ost"
        subprocess.run([os.environ["VELMORA_FORGE_NASTY"], "nodes-of-missing-blocks", source, "1"], check=True)
        report = self.work / "report.json"
        ended = self.convert("--dry-run", "--no-progress", "--report", report, source=source)
        self.assertEqual(ended.returncode, 3, ended.stderr)
        told = json.loads(report.read_text("utf-8"))
        lost = sum(counts["lost"] for counts in told["items"].values())
        self.assertGreater(lost, 10)
        self.assertEqual(len(told["losses"]) + told["lossesNotListed"], lost)
        self.assertIn(f"\n{lost:>10}  items lost\n", ended.stdout)
        listed = ended.stdout[ended.stdout.index("\nLost or not whole:\n"):].splitlines()[2:]
        self.assertEqual(len(listed), 12)
        for line in listed[:10]:
            self.assertRegex(line, r"^  .+: all of it \(block 0x[0-9A-F]+: .+\)$")
        self.assertEqual(listed[10:], [f"  and {lost - 10} more", f"The report lists what is lost: {report}"])

    # ---------------------------------------------------------------- refusals

    def test_usage(self):
        for words in (("--complete", "--smart"), ("--complete", "--trace", self.work / "t"), ("--hidden",), ("--deleted",),
                      ("--verify",), ("--complete", "--verify", "--dry-run")):
            ended = self.run_program(*words, self.source, self.out)
            self.assertEqual((ended.returncode, ended.stdout), (64, ""), words)
            self.assertIn("--help", ended.stderr)
        self.assertEqual(self.produced(), [])

    def test_sources_that_are_no_store_or_cannot_be_opened(self):
        for source, code in ((self.write("empty.ost", b""), 65), (self.write("text.pst", b"not a store\n" * 5000), 65),
                             (self.write("book.pab", b"!BDN\0\0\0\0AB" + bytes(60000)), 65),
                             (self.work / "none.ost", 66), (self.work, 66)):
            with self.subTest(source=source):
                ended = self.convert("--report", "-", source=source)
                self.assertEqual(ended.returncode, code, ended.stderr)
                self.assertIn("\nError: ", ended.stderr)
                self.assertIsNotNone(json.loads(ended.stdout)["refusal"])
                self.assertEqual(self.produced(), [])

    def test_a_store_cut_off_anywhere(self):
        whole = self.source.read_bytes()
        for size in [*range(0, 20000, 4997), *range(20000, len(whole), len(whole) // 30)]:
            with self.subTest(size=size):
                code, report = self.report_of("--dry-run", source=self.write("cut.ost", whole[:size]))
                self.assertIn(code, (0, 3, 65))
                self.assertEqual(code == 65, report["refusal"] is not None)
                self.assertEqual(code == 3, bool(report["losses"]))

    # ---------------------------------------------------------------- output that cannot be made or written

    def test_a_destination_that_is_not_there(self):
        ended = self.run_program("--complete", "--no-progress", self.source, self.work / "gone")
        self.assertEqual(ended.returncode, 73)
        self.assertTrue(ended.stderr.startswith("Error: Unable to create "), ended.stderr)

    def test_nothing_is_overwritten(self):
        taken = self.write("taken", b"mine")
        self.assertEqual(self.convert("--report", taken).returncode, 73)
        self.assertEqual((taken.read_bytes(), self.produced()), (b"mine", []))
        self.convert()
        before = self.store.read_bytes()
        second = self.convert()
        self.assertEqual(second.returncode, 0, second.stderr)
        self.assertIn(f"Recovered at: {self.out}/sound Converted1/sound Converted.pst\n", second.stdout)
        self.assertEqual(self.store.read_bytes(), before)

    def test_a_disk_that_fills_up_ends_the_run_with_one_message_and_a_store_that_opens(self):
        source = self.work / "big.pst"
        subprocess.run([os.environ["VELMORA_FORGE_BIG"], source], check=True)
        self.convert("--quiet", source=source)
        size = (self.out / "big Converted0" / "big Converted.pst").stat().st_size
        counts = set()
        codes = set()
        for limit in (512, 100000, *range(600000, size, size // 6), size - 1):
            with self.subTest(limit=limit):
                out = self.work / f"limit{limit}"
                out.mkdir()
                ended = self.run_program("--complete", "--no-progress", source, out,
                                         preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit)))
                codes.add(ended.returncode)
                self.assertEqual(ended.stderr.count("Error: "), 1, ended.stderr)
                self.assertNotIn("completed", ended.stdout)
                if ended.returncode == 74:
                    made = out / "big Converted0" / "big Converted.pst"
                    self.check_store(made)
                    _, report = self.report_of("--dry-run", source=made)
                    left = sum(items["whole"] for items in report["items"].values())
                    self.assertEqual(int(re.search(r"^ +(\d+)  items whole$", ended.stdout, re.M)[1]), left)
                    counts.add(left)
        self.assertEqual(codes, {73, 74})
        self.assertGreater(len(counts), 3)
        self.assertLess(max(counts), 60)

    @unittest.skipUnless(os.path.exists("/dev/full"), "the system has no device that is always full")
    def test_a_report_that_nobody_takes(self):
        with open("/dev/full", "w") as full:
            ended = subprocess.run([stores.PROGRAM, "--complete", "--quiet", "--report", "-", self.source, self.out],
                                   stdout=full, stderr=subprocess.PIPE, env=self.environment)
        self.assertEqual(ended.returncode, 74)
        self.check_store(self.store)

    # ---------------------------------------------------------------- Ctrl-C

    def test_ctrl_c_seals_the_store_and_says_where_it_is(self):
        self.demo = self.source
        code, said = self.stop_at("Converting Mail Items...", "--complete", "--report", "-")
        self.assertEqual(code, 130, said)
        self.assertTrue(said.endswith(f"Stopped. Recovered at: {self.store}\n"), said)
        self.check_store(self.store)
        self.assertEqual(self.produced(), ["sound Converted0", "sound Converted0/sound Converted.pst"])
        self.assertIsNone(json.loads(self.output)["refusal"])

    def test_ctrl_c_before_there_is_a_store(self):
        self.demo = self.source
        code, said = self.stop_at("Validating OST file...", "--complete")
        self.assertEqual(code, 130, said)
        self.assertTrue(said.endswith("Stopped. No store was written.\n"), said)
        self.assertEqual(self.produced(), [])


if __name__ == "__main__":
    unittest.main()

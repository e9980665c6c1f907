"""All known stores, in each mode of both conversions: the program for Windows writes the bytes, traces and reports of the
program for this machine, and ends with the same code."""

import json
import shutil

import under_wine
from under_wine import stores

MODES = {"fields": (), "smart": ("--smart",), "whole": ("--complete", "--verify"),
         "all": ("--complete", "--hidden", "--deleted")}
# Of the run and not of the store.
OF_THE_RUN = ("seconds", "peakRssKiB", "source", "destination")


class Stores(under_wine.UnderWine):
    def test_every_store_in_every_mode_becomes_the_same(self):
        compared = 0
        for _, source in stores.all_stores():
            for mode, options in MODES.items():
                with self.subTest(store=source.name, mode=mode):
                    here = self.convert(self.run_twin, self.work / "here", source, options)
                    there = self.convert(self.run_program, self.work / "there", source, options)
                    self.compare(here, there)
                    compared += 1
        self.assertGreater(compared, 0)

    def convert(self, run, folder, source, options):
        """What a run leaves: its code, the report without what is the run's own, and the bytes of all other files."""
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir()
        under_wine.forget_profiles()
        shutil.rmtree(self.work / "config", ignore_errors=True)
        report = folder / "report.json"
        if "--complete" not in options:
            options = (*options, "--trace", folder / "trace.jsonl")
        ended = run("--quiet", *options, "--report", report, source, folder)
        known = json.loads(report.read_text("utf-8"))
        report.unlink()
        for name in OF_THE_RUN:
            self.assertIn(name, known)
            del known[name]
        files = {str(p.relative_to(folder)): p.read_bytes() for p in folder.rglob("*") if p.is_file()}
        return ended.returncode, known, files

    def compare(self, here, there):
        self.assertEqual(here[0], there[0], "exit code")
        self.assertEqual(here[1], there[1], "report")
        self.assertEqual(here[2].keys(), there[2].keys())
        for name, content in here[2].items():
            self.assertTrue(content == there[2][name], f"{name} differs")


if __name__ == "__main__":
    stores.main()

"""A disk that fills up: the run ends with the code of a write that failed, and what was saved is a store that opens."""

import os
import subprocess
import unittest

import under_wine

import complete_program_test
import program_test


class FullDisk(under_wine.CommandUnderWine):
    STAGES = program_test.STAGES
    OPTIONS = ()
    MESSAGE = "Error: Not enough free disk space available to save converted .pst file."

    def setUp(self):
        super().setUp()
        mounted = subprocess.run(["mount", "-t", "tmpfs", "-o", "size=8m", "tmpfs", self.out], capture_output=True)
        if mounted.returncode:
            self.skipTest("no file system of a few megabytes can be mounted here")
        self.addCleanup(subprocess.run, ["umount", self.out], check=True)
        self.source = self.work / "big.pst"
        subprocess.run([os.environ["VELMORA_FORGE_BIG"], self.source], check=True)

    def leave(self, free):
        """Somebody else fills the disk but for so many bytes."""
        disk = os.statvfs(self.out)
        (self.out / "filler").write_bytes(b"x" * (disk.f_bavail * disk.f_frsize - free))

    def test_what_was_saved_before_it_was_full_is_kept(self):
        child, messages = self.start_until("Converting Mail Items...", self.source, *self.OPTIONS)
        self.leave(1500000)
        code, said, output = self.finish(child, messages)
        self.assertEqual(74, code, said)
        self.assertEqual(1, said.count("Error: "), said)
        self.assertIn(self.MESSAGE, said)
        self.assertNotIn("completed", output)
        (self.out / "filler").unlink()
        store = self.out / "big Converted0" / "big Converted.pst"
        self.check_store(store)
        again = self.work / "again"
        again.mkdir()
        ended = self.run_program("--complete", "--quiet", store, again)
        self.assertEqual(0, ended.returncode, ended.stderr)

    def test_a_disk_without_any_room_takes_no_store(self):
        child, messages = self.start_until("Creating new profile...", self.source, *self.OPTIONS)
        self.leave(0)
        code, said, _ = self.finish(child, messages)
        self.assertEqual(73, code, said)
        self.assertEqual(1, said.count("Error: "), said)

    def test_a_report_for_which_there_is_no_room_is_a_failure(self):
        report = self.out / "report.json"
        to = self.work / "to"
        to.mkdir()
        self.leave(0)
        command = [under_wine.COMMAND, "--quiet", *self.OPTIONS, "--report", report, self.demo, to]
        ended = subprocess.run(command, capture_output=True, text=True, env=self.environment, stdin=subprocess.DEVNULL)
        self.assertEqual(74, ended.returncode, ended.stderr)
        self.assertIn("report.json", ended.stderr)


class FullDiskComplete(FullDisk):
    STAGES = complete_program_test.CompleteProgram.STAGES
    OPTIONS = ("--complete",)


if __name__ == "__main__":
    unittest.main()

"""Ctrl-C, and a process that is killed, at any stage."""

import signal
import subprocess
import time
import unittest

import under_wine

import complete_program_test
import program_test

NO_STORE = "Stopped. No store was written."
STORE = "Stopped. Recovered at: {}"


class Stop(under_wine.CommandUnderWine):
    STAGES = program_test.STAGES

    def stop_at(self, stage, *options):
        """The system tells the program of a Ctrl-C by a thread of its own, which takes its time."""
        child, messages = self.start_until(stage, self.demo, *options)
        child.send_signal(signal.SIGINT)
        time.sleep(1)
        code, said, _ = self.finish(child, messages)
        return code, said.splitlines()

    def test_ctrl_c_before_there_is_a_store(self):
        code, said = self.stop_at("Validating OST file...")
        self.assertEqual((130, NO_STORE), (code, said[-1]))
        self.assertEqual([], self.produced())

    def test_ctrl_c_seals_the_store_and_says_where_it_is(self):
        for options in ((), ("--smart",)):
            with self.subTest(options=options):
                self.out = self.work / f"out{len(options)}"
                self.out.mkdir()
                under_wine.forget_profiles()
                code, said = self.stop_at("Converting Mail Items...", *options)
                store = self.out / "demo Converted0" / "demo Converted.pst"
                self.assertEqual((130, STORE.format(under_wine.windows_path(store))), (code, said[-1]))
                self.check_store(store)

    def test_a_process_that_is_killed_leaves_a_store_that_opens(self):
        child, messages = self.start_until("Closing file...", self.demo)
        child.send_signal(signal.SIGKILL)
        self.assertEqual(-signal.SIGKILL, self.finish(child, messages)[0])
        self.assertEqual(["demo Converted0", "demo Converted0/FirstTableItem.dat", "demo Converted0/demo Converted.pst"],
                         self.produced())
        again = self.work / "again"
        again.mkdir()
        read = subprocess.run([under_wine.TWIN, "--complete", self.out / "demo Converted0" / "demo Converted.pst", again],
                              capture_output=True, text=True, env=self.environment)
        self.assertIn(read.returncode, (0, 3), read.stderr)
        self.assertIn(" folders\n", read.stdout)


class StopComplete(Stop):
    STAGES = complete_program_test.CompleteProgram.STAGES

    def stop_at(self, stage, *options):
        return super().stop_at(stage, "--complete")

    test_a_process_that_is_killed_leaves_a_store_that_opens = None  # it has one when it has begun


if __name__ == "__main__":
    unittest.main()

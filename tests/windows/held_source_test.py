"""A source that another program holds open, or that cannot be written."""

import contextlib
import os
import pathlib
import subprocess
import unittest

import under_wine
from under_wine import windows_path

HOLD = os.environ["VELMORA_HOLD_EXE"]


class HeldSource(under_wine.UnderWine):
    def setUp(self):
        super().setUp()
        self.source = self.work / "held.ost"
        self.source.write_bytes(self.demo.read_bytes())

    @contextlib.contextmanager
    def held(self, share):
        with subprocess.Popen([under_wine.WINE, HOLD, windows_path(self.source), share], stdin=subprocess.PIPE,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as holder:
            self.assertEqual(b"held", holder.stdout.readline().strip())
            yield
            holder.communicate()

    def test_a_source_that_others_may_read_comes_across(self):
        for share in ("all", "read"):
            for options in ((), ("--complete", "--verify")):
                with self.subTest(share=share, options=options), self.held(share):
                    self.compare_with_twin(self.source, *options)

    def test_a_source_that_nobody_else_may_read_is_told_with_the_reason(self):
        for options in ((), ("--complete",)):
            with self.subTest(options=options), self.held("none"):
                ended = self.run_program("--no-progress", *options, windows_path(self.source), windows_path(self.out))
                self.assertEqual(66, ended.returncode, ended.stderr)
                self.assertRegex(ended.stderr, r"velmora-convert: .*held\.ost: .*[Ss]haring violation")
                self.assertEqual([], self.produced())


class Share(under_wine.UnderWine):
    """A folder that is reached as one of another machine's."""

    def setUp(self):
        super().setUp()
        self.share = self.work / "share"
        self.share.mkdir()
        (self.share / "demo.ost").write_bytes(self.demo.read_bytes())
        place = under_wine.PREFIX / "dosdevices" / "unc" / "box"
        place.mkdir(parents=True, exist_ok=True)
        link = place / "mail"
        link.unlink(missing_ok=True)
        link.symlink_to(self.share)
        self.addCleanup(link.unlink)

    def test_a_store_on_a_share_that_can_only_be_read_comes_across(self):
        (self.share / "demo.ost").chmod(0o444)
        self.share.chmod(0o555)
        self.addCleanup(self.share.chmod, 0o755)
        before = (self.share / "demo.ost").stat()
        ended = self.run_program("--complete", "--verify", r"\\box\mail\demo.ost", windows_path(self.out))
        self.assertEqual(0, ended.returncode, ended.stderr)
        self.assertEqual(["demo Converted0", "demo Converted0/demo Converted.pst"], self.produced())
        self.assertEqual(["demo.ost"], self.produced(self.share))
        self.assertEqual(before.st_mtime_ns, (self.share / "demo.ost").stat().st_mtime_ns)

    def test_the_new_store_can_stand_on_a_share(self):
        for options in ((), ("--complete",)):
            with self.subTest(options=options):
                ended = self.run_program("--quiet", *options, windows_path(self.demo), "\\\\box\\mail\\")
                self.assertIn(ended.returncode, (0, 3), ended.stderr)
        stores = [pathlib.Path(p).name for p in self.produced(self.share) if p.endswith(".pst")]
        self.assertEqual(["demo Converted.pst"] * 2, stores)


if __name__ == "__main__":
    unittest.main()

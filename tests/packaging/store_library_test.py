"""The store's library, as another program finds and uses it: installed, the example built against it and run."""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

BUILD = os.environ["VELMORA_BUILD"]
SOURCE = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(SOURCE / "tests" / "aids"))
from aids import aid  # noqa: E402

TOOLS = aid("VELMORA_TOOLS", "tools")


def run(*command, **more):
    done = subprocess.run([str(part) for part in command], capture_output=True, text=True, **more)
    if done.returncode != 0:
        raise AssertionError(f"{command}: {done.stdout}{done.stderr}")
    return done.stdout


class StoreLibrary(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.folder.cleanup)
        cls.work = pathlib.Path(cls.folder.name)
        cls.prefix = cls.work / "prefix"
        run("cmake", "--install", BUILD, "--prefix", cls.prefix, "--component", "store_library")
        # Its own copy, so that nothing of the project's sources is in reach.
        example = shutil.copytree(SOURCE / "examples" / "write_store", cls.work / "example")
        run("cmake", "-G", "Ninja", "-S", example, "-B", cls.work / "build", f"-DCMAKE_PREFIX_PATH={cls.prefix}")
        run("cmake", "--build", cls.work / "build")
        cls.store = cls.work / "example.pst"
        run(cls.work / "build" / "write_store", cls.store, cwd=cls.work)

    def test_the_prefix_holds_libraries_headers_and_the_package(self):
        found = {path.relative_to(self.prefix).parts[0] for path in self.prefix.rglob("*") if path.is_file()}
        self.assertEqual(found, {"lib", "include"})
        libraries = {path.name for path in (self.prefix / "lib").glob("*.a")}
        layers = ("platform", "text", "format", "ndb", "ltp", "messaging")
        self.assertEqual(libraries, {f"libvelmora_{layer}.a" for layer in layers})

    def test_other_readers_find_the_mail(self):
        run("readpst", "-q", "-j0", "-D", "-S", "-o", self.work, self.store)
        [mail] = [path for path in self.work.rglob("Letters/*") if path.is_file()]
        text = mail.read_text()
        self.assertIn("Subject: Good morning", text)
        self.assertIn("The store is open.", text)

    @unittest.skipUnless((TOOLS / "pstcheck.py").is_file(), "the strict checker lies beside the sources, or nowhere")
    def test_the_strict_checker_finds_nothing(self):
        self.assertIn(": 0 errors, 0 warnings", run(sys.executable, "-B", TOOLS / "pstcheck.py", "--strict", self.store))

    def test_a_store_that_is_there_is_left_alone(self):
        before = self.store.read_bytes()
        done = subprocess.run([self.work / "build" / "write_store", self.store], capture_output=True, text=True)
        self.assertEqual(done.returncode, 1)
        self.assertIn("already there", done.stderr)
        self.assertEqual(self.store.read_bytes(), before)


if __name__ == "__main__":
    unittest.main()

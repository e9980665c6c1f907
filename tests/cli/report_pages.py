"""Pages of reports that no store gave: what the tests of them share."""

import os
import pathlib
import subprocess
import tempfile
import unittest

KINDS = ("empty", "sound", "damaged", "hostile", "huge")


class Pages(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.paths = {kind: pathlib.Path(folder.name) / f"{kind}.html" for kind in KINDS}
        for kind, path in cls.paths.items():
            subprocess.run([os.environ["VELMORA_FORGE_PAGE"], kind, path], check=True)
        cls.pages = {kind: path.read_bytes().decode("utf-8") for kind, path in cls.paths.items()}

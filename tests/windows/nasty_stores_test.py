"""Stores that were made to do harm: the program for Windows ends as the one for this machine does, within its memory."""

import os
import subprocess
import unittest

import under_wine

FORGE = os.environ["VELMORA_FORGE_NASTY"]
MODES = ((), ("--complete", "--hidden"))
LARGE = {"trailers-of-one-id"}  # what it is about is an index of the first mode


class NastyStores(under_wine.UnderWine):
    def test_each_becomes_the_same(self):
        for name in subprocess.run([FORGE], capture_output=True, text=True, check=True).stdout.split():
            source = self.work / f"{name}.ost"
            subprocess.run([FORGE, name, source, "1"], check=True)
            for options in MODES[:1 if name in LARGE else None]:
                with self.subTest(store=name, options=options):
                    self.compare_with_twin(source, *options)


if __name__ == "__main__":
    unittest.main()

"""All known stores, in each mode of both conversions: the program for Windows writes the bytes, traces and reports of the
program for this machine, and ends with the same code."""

import under_wine
from under_wine import stores

MODES = {"fields": (), "smart": ("--smart",), "whole": ("--complete", "--verify"),
         "all": ("--complete", "--hidden", "--deleted")}


class Stores(under_wine.UnderWine):
    def test_every_store_in_every_mode_becomes_the_same(self):
        compared = 0
        for _, source in stores.all_stores():
            for mode, options in MODES.items():
                with self.subTest(store=source.name, mode=mode):
                    self.compare_with_twin(source, *options)
                    compared += 1
        self.assertGreater(compared, 0)


if __name__ == "__main__":
    stores.main()

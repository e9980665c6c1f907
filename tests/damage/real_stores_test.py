"""What comes back of damaged copies of real stores: every kind of damage, sums over all stores.

With --print SEED it prints the sums as they are, in the form of FLOORS, where chance has a part in the damage with that
seed."""

import collections
import pathlib
import sys
import tempfile
import unittest

import damaged_stores
import stores

SEED = 7

# Of the intact messages: how many there are, how many come back, how many of them whole, how many in their folder. Of
# the damaged ones: how many come back in some form. Of the items of the new store: how many are none of the original's
# messages, and how many of those are second copies of one.
FLOORS = {
    "whole": (61, 61, 58, 60, 0, 0, 0),
    "magic": (61, 61, 58, 60, 0, 0, 0),
    "header": (61, 61, 58, 60, 0, 0, 0),
    "header_and_maps": (61, 61, 58, 60, 0, 0, 0),
    "node_root": (61, 61, 58, 60, 0, 0, 0),
    "block_root": (61, 61, 58, 60, 0, 0, 0),
    "both_roots_and_header": (61, 61, 58, 60, 0, 0, 0),
    "node_leaves_5": (61, 61, 58, 60, 0, 0, 0),
    "node_leaves_30": (61, 61, 58, 60, 0, 0, 0),
    "block_leaves_5": (61, 61, 58, 60, 0, 0, 0),
    "block_tree": (61, 61, 58, 60, 0, 0, 0),
    "node_tree": (61, 61, 58, 60, 0, 0, 0),
    "all_trees": (61, 61, 58, 60, 0, 0, 0),
    "sectors_0.1": (56, 56, 53, 55, 5, 0, 0),
    "sectors_1": (32, 32, 22, 31, 29, 0, 0),
    "sectors_5": (7, 6, 4, 5, 50, 2, 1),
    "flips_64k": (25, 25, 19, 24, 36, 0, 0),
    "flips_8k": (6, 6, 4, 5, 55, 0, 0),
    "cut_50": (17, 16, 8, 15, 13, 0, 0),
    "cut_90": (40, 40, 29, 39, 13, 0, 0),
    "hole_10": (43, 40, 34, 39, 14, 0, 0),
    "page_signatures": (61, 61, 58, 60, 0, 0, 0),
    "text_mode": (17, 17, 15, 16, 44, 0, 0),
}


def sums(seed):
    totals = {}
    for store in damaged_stores.whole_stores():
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            for case, copy in damaged_stores.damage(store, folder / "copies", seed).items():
                code, made = damaged_stores.convert(copy, folder / "out", "--complete")
                if code not in (0, 3, 65):
                    raise AssertionError(f"{store.name}, {case}: exit code {code}")
                totals.setdefault(case, collections.Counter()).update(damaged_stores.score(store, copy, made))
    return totals


FIELDS = ("intact", "found", "whole", "folder", "damaged_found", "extra", "copies")


class RealStores(unittest.TestCase):
    def test_what_is_still_there_comes_back(self):
        totals = sums(SEED)
        self.assertEqual(list(totals), list(FLOORS))
        for case, (intact, intact_found, whole, folder, damaged, extra, copies) in FLOORS.items():
            with self.subTest(case=case):
                found = totals[case]
                self.assertEqual(found["intact"], intact, "other stores or other damage: no figures for them")
                self.assertGreaterEqual(found["found"], intact_found)
                self.assertGreaterEqual(found["whole"], whole)
                self.assertGreaterEqual(found["folder"], folder)
                self.assertGreaterEqual(found["damaged_found"], damaged)
                self.assertLessEqual(found["extra"], extra)
                self.assertLessEqual(found["copies"], copies)


if __name__ == "__main__":
    if sys.argv[1:2] == ["--print"]:
        for case, total in sums(int(sys.argv[2])).items():
            print(f'    "{case}": ({", ".join(str(total[field]) for field in FIELDS)}),', flush=True)
    else:
        stores.main()

"""Every known store, in both scan modes: a dry run writes the expected trace and report."""

import json
import pathlib
import tempfile
import unittest

import stores


class ExpectedTraces(unittest.TestCase):
    maxDiff = 4000

    def test_every_store_in_both_modes(self):
        expected = stores.aid("VELMORA_EXPECTED", "expected")
        compared = 0
        with tempfile.TemporaryDirectory() as work:
            for group, source in stores.all_stores():
                for mode, options in (("normal", ()), ("smart", ("--smart",))):
                    with self.subTest(store=source.name, mode=mode):
                        base = expected / group / f"{source.name}.{mode}"
                        self.compare(source, base, pathlib.Path(work), ("--dry-run", *options))
                        compared += 1
        self.assertGreater(compared, 0)

    def compare(self, source, base, work, options):
        code, report, trace, said = stores.convert(source, work, *options)
        known = json.loads(base.with_name(base.name + ".json").read_text("utf-8"))
        self.assertEqual(known, {name: report[name] for name in known})
        self.assertEqual(code, 65 if known["refusal"] else 3 if report["lost"] else 0, said)

        model = stores.operations(base.with_name(base.name + ".jsonl"))
        # The order of the folders among themselves is free, everything else is exact.
        self.assertEqual(folders_of(model), folders_of(trace))
        self.assertEqual(rest_of(model), rest_of(trace))
        self.assertEqual([], list((work / "out").iterdir()), "a dry run leaves nothing behind")


def folders_of(trace):
    return sorted(json.dumps(o, sort_keys=True) for o in trace if o["op"] == "AddFolder")


def rest_of(trace):
    return [o for o in trace if o["op"] != "AddFolder"]


if __name__ == "__main__":
    stores.main()

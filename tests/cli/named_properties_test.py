"""The real stores: named properties, whose ids differ from store to store, arrive under their names.

pffexport reads names and values of both stores by itself; the trace tells which fields the run recognised."""

import collections
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

import stores

# By message class: the number of a name, its type, and the operation that its values go through.
TASK = {0x8101: ("00000003", "Status"), 0x8104: ("00000040", "StartDate"), 0x8105: ("00000040", "DueDate"),
        0x810F: ("00000040", "DateCompleted"), 0x811C: ("0000000b", "Complete"), 0x811F: ("0000001f", "Owner")}
APPOINTMENT = {0x8205: ("00000003", "BusyStatus"), 0x8208: ("0000001f", "Location"), 0x820D: ("00000040", "Start"),
               0x820E: ("00000040", "End"), 0x8213: ("00000003", "Duration"), 0x8215: ("0000000b", "AllDayEvent")}
CONTACT = {0x801B: ("0000001f", "BusinessAddress"), 0x8062: ("0000001f", "IMAddress"),
           0x8080: ("0000001f", "Email1DisplayName"), 0x8082: ("0000001f", "Email1AddressType"),
           0x8083: ("0000001f", "Email1Address")}
COMMON = {0x8503: ("0000000b", "ReminderSet")}
NAMES = {"IPM.Task": TASK | COMMON, "IPM.Appointment": APPOINTMENT | COMMON, "IPM.Contact": CONTACT}

KIND_FOLDER = re.compile(r"(Task|Appointment|Contact)[0-9]{5}")
ENTRY = re.compile(r"Entry type:\t+0x([0-9a-f]{8})\nValue type:\t+0x([0-9a-f]{8})\n"
                   r"(?:Maps to entry type:\t+0x([0-9a-f]{8})\n)?(?:Maps to entry:\t.*\n)?Value:\n((?:0x.*\n)*)")
BYTES = re.compile(r"0x[0-9a-f]{8}: (.{49})")
Value = collections.namedtuple("Value", "local_id name type data")


class NamedProperties(unittest.TestCase):
    def test_arrive_under_their_names(self):
        self.assertIsNotNone(shutil.which("pffexport"), "pffexport is needed")
        stores_seen, renumbered = set(), 0
        for group, source in stores.all_stores():
            if group != "stores" or source.suffix != ".pst":
                continue
            with self.subTest(store=source.name), tempfile.TemporaryDirectory() as name:
                work = pathlib.Path(name)
                _, report, trace, _ = stores.convert(source, work)
                before = self.items(source, work / "before")
                after = self.items(report["destination"], work / "after")
                for kind, subject, values in before:
                    for value in values:
                        if self.follow(trace, kind, subject, value, after):
                            stores_seen.add(source.name)
                            renumbered += value.local_id != value.name
        self.assertGreaterEqual(len(stores_seen), 2, "stores with ids of their own were compared")
        self.assertGreater(renumbered, 20)

    def follow(self, trace, kind, subject, value, after):
        """A value that the run recognised stands in each item of that kind and subject of the new store."""
        kind_type, field = NAMES[kind].get(value.name, (None, None))
        if value.type != kind_type:
            return False
        ids = {o["id"] for o in trace if o["op"] == "AddItem" and o["class"] == kind}
        ids &= {o["id"] for o in trace
                if o["op"] == "Put" and o["field"] == "Subject" and stores.plain_subject(o["value"]) == subject}
        written = {o["id"] for o in trace if o["op"] == "Put" and o["field"] == field}
        if not ids or not ids <= written:
            return False
        found = [v.data for k, s, values in after if (k, s) == (kind, subject)
                 for v in values if (v.name, v.type) == (value.name, value.type)]
        self.assertEqual(len(found), len(ids), f"{kind} {subject!r} {field}")
        self.assertIn(value.data, found, f"{kind} {subject!r} {field}")
        return True

    def items(self, store, target):
        """Class, subject and named values of the items."""
        subprocess.run(["pffexport", "-q", "-d", "-m", "items", "-t", target, store], capture_output=True, check=True)
        found = []
        for file in target.with_name(target.name + ".export").rglob("ItemValues.txt"):
            kind = KIND_FOLDER.fullmatch(file.parent.name)
            if kind:
                values = [self.value(entry) for entry in ENTRY.findall(file.read_text("utf-8", "replace"))]
                subject = next((self.text(v) for v in values if v.local_id == 0x37), "")
                found.append(("IPM." + kind[1], stores.plain_subject(subject), [v for v in values if v.name]))
        return found

    @staticmethod
    def text(value):
        return value.data.decode("utf-16-le") if value.type == "0000001f" else value.data.decode("cp1252", "replace")

    @staticmethod
    def value(entry):
        local_id, kind, name, dump = entry
        data = bytes.fromhex("".join(BYTES.findall(dump)).replace(" ", ""))
        if kind == "00000040":  # seconds are all that a date keeps
            data = (int.from_bytes(data, "little") // 10**7).to_bytes(8, "little")
        return Value(int(local_id, 16), int(name, 16) if name else 0, kind, data)


if __name__ == "__main__":
    stores.main()

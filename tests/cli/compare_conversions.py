"""What comes across with each of the two conversions, measured: converts stores both ways, compares source and new
store with storediff.py, and prints a table in Markdown.

    VELMORA_CONVERT=build/release/src/cli/velmora-convert python3 tests/cli/compare_conversions.py [STORE ...]

Without a store, all those of VELMORA_STORES are taken."""

import collections
import json
import os
import pathlib
import subprocess
import sys
import tempfile

import stores

CONVERSIONS = (("field by field", ()),
               ("`--complete`", ("--complete",)),
               ("`--complete --hidden`", ("--complete", "--hidden")))

# What is counted of a comparison, and how it is called.
ROWS = (
    ("items in the source", "source"),
    ("come across", "matched"),
    ("with all their properties, recipients and attachments", "intact"),
    ("do not come across", "missing"),
    ("stand in another folder", "other_folder"),
    ("lose their body", "body_lost"),
    ("recipients lost", "recips_lost"),
    ("attachments lost", "atts_lost"),
    ("attachments with other bytes", "atts_changed"),
    ("items in the new store that are not from the source, or there twice", "extra"),
    ("folders that are missing", "folders"),
    ("stores of which no new one is made", "refused"),
)
OF_ITEMS = ("source", "matched", "intact", "missing", "other_folder")


def compare(source, options):
    """The sums of one store over all kinds of items; hidden ones are among them where they were asked for."""
    with tempfile.TemporaryDirectory() as work:
        subprocess.run([stores.PROGRAM, "--quiet", *options, source, work], capture_output=True,
                       env={**os.environ, "XDG_CONFIG_HOME": work})
        made = list(pathlib.Path(work).glob("* Converted0/*.pst"))
        if not made:
            return collections.Counter(refused=1)
        tool = stores.aid("VELMORA_TOOLS", "tools") / "storediff.py"
        hidden = [] if "--hidden" in options else ["--no-fai"]
        told = subprocess.run([sys.executable, tool, "--json", *hidden, source, made[0]], capture_output=True)
    if told.returncode == 2:
        sys.exit(f"{source}: {told.stdout.decode()}")
    difference = json.loads(told.stdout)
    # Folders beside the tree that people see begin with two slashes.
    sums = collections.Counter(extra=difference["extra_items"],
                               folders=sum(not path.startswith("//") for path, _ in difference["folders_lost"]))
    for name, kind in difference["kinds"].items():
        # A message in a message is no item; but it has a body, recipients and attachments.
        counted = {row for _, row in ROWS if not (name.startswith("(embedded)") and row in OF_ITEMS)}
        sums.update({row: kind[row] for row in counted if row in kind})
    return sums


def main():
    sources = [pathlib.Path(name) for name in sys.argv[1:]] or [path for _, path in stores.all_stores()]
    if not sources:
        sys.exit("no stores: name some, or set VELMORA_STORES")
    found = [sum((compare(source, options) for source in sources), collections.Counter()) for _, options in CONVERSIONS]
    print(f"| {len(sources)} stores | " + " | ".join(name for name, _ in CONVERSIONS) + " |")
    print("|---|" + "---:|" * len(CONVERSIONS))
    for label, name in ROWS:
        print(f"| {label} | " + " | ".join(str(sums[name]) for sums in found) + " |")


if __name__ == "__main__":
    main()

"""Where the stores, expected results and tools lie that are no part of the project: see aids.h."""

import os
import pathlib
import sys

SOURCE = pathlib.Path(__file__).resolve().parents[2]
SKIPPED = 77  # what ctest takes for "skipped"


def aid(variable, folder):
    """A folder of aids that lies beside the sources, or where the variable says. A variable that names no folder is a
    mistake: it must not look like a machine without aids."""
    given = os.environ.get(variable)
    if given and not os.path.isdir(given):
        sys.exit(f"{variable} names no folder: {given}")
    return pathlib.Path(given or SOURCE.parent / "shared" / folder)

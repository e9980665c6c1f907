"""make_icon.py DRAWING.svg ICON.ico - the drawing as an icon in the sizes that Windows shows."""

import struct
import subprocess
import sys

SIZES = (16, 24, 32, 48, 64, 256)

drawing, icon = sys.argv[1:]
pictures = [subprocess.run(["rsvg-convert", "-w", str(size), "-h", str(size), drawing], check=True,
                           stdout=subprocess.PIPE).stdout for size in SIZES]
table = struct.pack("<HHH", 0, 1, len(SIZES))
offset = len(table) + 16 * len(SIZES)
for size, picture in zip(SIZES, pictures):
    table += struct.pack("<BBBBHHII", size % 256, size % 256, 0, 0, 1, 32, len(picture), offset)
    offset += len(picture)
with open(icon, "wb") as out:
    out.write(table + b"".join(pictures))

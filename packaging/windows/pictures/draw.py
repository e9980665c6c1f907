"""draw.py LIST.qrc FOLDER - draws the drawings that the list names into the folder, each four times as large as it is, and
writes FOLDER/pictures.qrc, which has them under the same names."""

import pathlib
import subprocess
import sys
import xml.etree.ElementTree

FACTOR = "4"  # that of QSvgRenderer

names, folder = map(pathlib.Path, sys.argv[1:])
folder.mkdir(parents=True, exist_ok=True)
tree = xml.etree.ElementTree.parse(names)
for number, entry in enumerate(tree.iter("file")):
    picture = folder / f"{number}.png"
    subprocess.run(["rsvg-convert", "--zoom", FACTOR, "--output", picture, names.parent / entry.text], check=True)
    entry.text = picture.name
tree.write(folder / "pictures.qrc")

#!/usr/bin/python3
"""Makes the seeds of media_items_fuzz: the small files of tests/data/media behind a byte for their extension."""
import os

HERE = os.path.dirname(os.path.abspath(__file__))
MEDIA = os.path.join(HERE, "..", "..", "tests", "data", "media")
EXTENSIONS = [".mp3", ".flac", ".m4a", ".aac", ".ogg", ".opus", ".wav", ".aiff", ".aif", ".alac", ".ape", ".wv", ".mpc", ""]
LARGEST = 6500

os.makedirs(os.path.join(HERE, "media_items"), exist_ok=True)
for name in sorted(os.listdir(MEDIA)):
    extension = os.path.splitext(name)[1]
    if extension in EXTENSIONS:
        with open(os.path.join(MEDIA, name), "rb") as file:
            seed = bytes([EXTENSIONS.index(extension)]) + file.read()[:LARGEST]
        with open(os.path.join(HERE, "media_items", name.replace(".", "-")), "wb") as file:
            file.write(seed)

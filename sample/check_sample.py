#!/usr/bin/python3
"""Checks that a sample tree has what the tests and the demo rely on.

    check_sample.py DEST

Reads the files back with other means than they were written with where there are any
(ffprobe for the streams, Pillow for the pictures). Exits with 1 if a check fails.
"""

import base64
import hashlib
import io
import json
import os
import re
import subprocess
import sys
from collections import defaultdict
from concurrent.futures import ThreadPoolExecutor

import mutagen
from mutagen.flac import FLAC, Picture
from mutagen.id3 import ID3, ID3NoHeaderError
from PIL import Image

CODECS = {
    "mp3": "mp3",
    "flac": "flac",
    "aac": "aac",
    "ogg": "vorbis",
    "opus": "opus",
    "wav": "pcm_s16le",
    "aiff": "pcm_s16be",
    "aif": "pcm_s16be",
    "alac": "alac",
    "wv": "wavpack",
    "mpc": "musepack8",
}
FOLDER_COVERS = ("cover.jpg", "folder.jpg", "cover.png")


class Track:
    """A file with its stream as ffprobe sees it and its tags under common names."""

    def __init__(self, path):
        self.path = path
        self.folder, self.name = os.path.split(path)
        self.ext = self.name.rsplit(".", 1)[1]
        found = subprocess.run(
            [
                "ffprobe",
                "-v",
                "error",
                "-select_streams",
                "a:0",
                "-show_entries",
                "stream=codec_name,sample_rate,bits_per_raw_sample:format=duration",
                "-of",
                "json",
                path,
            ],
            capture_output=True,
            text=True,
            check=True,
        )
        self.probe_errors = found.stderr
        answer = json.loads(found.stdout)
        self.stream = answer["streams"][0]
        self.seconds = float(answer["format"]["duration"])
        self.tags, self.cover, self.id3_version = _read_tags(path, self.ext)


def _read_tags(path, ext):
    """(tags, embedded cover or None, ID3 version or None)"""
    if ext in ("mp3", "aac", "wav", "aiff", "aif"):
        try:
            id3 = ID3(path) if ext in ("mp3", "aac") else mutagen.File(path).tags
        except ID3NoHeaderError:
            id3 = None
        if id3 is None:
            return {}, None, None
        names = {
            "title": "TIT2",
            "artist": "TPE1",
            "album": "TALB",
            "albumartist": "TPE2",
            "date": "TDRC",
            "track": "TRCK",
            "disc": "TPOS",
        }
        tags = {ours: str(id3[frame]) for ours, frame in names.items() if frame in id3}
        pictures = id3.getall("APIC")
        return tags, pictures[0].data if pictures else None, id3.version
    audio = mutagen.File(path)
    if ext in ("m4a", "alac"):
        names = {"title": "\xa9nam", "artist": "\xa9ART", "album": "\xa9alb", "albumartist": "aART", "date": "\xa9day"}
        tags = {ours: audio[atom][0] for ours, atom in names.items() if atom in audio}
        for ours, atom in (("track", "trkn"), ("disc", "disk")):
            if atom in audio:
                tags[ours] = "%d/%d" % audio[atom][0]
        return tags, bytes(audio["covr"][0]) if "covr" in audio else None, None
    if ext in ("wv", "mpc"):
        names = {
            "title": "Title",
            "artist": "Artist",
            "album": "Album",
            "albumartist": "Album Artist",
            "date": "Year",
            "track": "Track",
            "disc": "Disc",
        }
        tags = {ours: str(audio[item]) for ours, item in names.items() if item in audio}
        cover = audio.get("Cover Art (Front)")
        return tags, cover.value.split(b"\0", 1)[1] if cover else None, None
    tags = {name: audio[name][0] for name in ("title", "artist", "album", "albumartist", "date") if name in audio}
    for ours, number, total in (("track", "tracknumber", "tracktotal"), ("disc", "discnumber", "disctotal")):
        if number in audio:
            tags[ours] = f"{audio[number][0]}/{audio.get(total, ['?'])[0]}"
    if isinstance(audio, FLAC):
        cover = audio.pictures[0].data if audio.pictures else None
    else:
        block = audio.get("metadata_block_picture")
        cover = Picture(base64.b64decode(block[0])).data if block else None
    return tags, cover, None


def _picture(data):
    """What kind of picture it is after decoding it fully: 'PNG', 'JPEG' or 'progressive JPEG'."""
    image = Image.open(io.BytesIO(data))
    progressive = bool(image.info.get("progressive"))
    kind = image.format
    image.load()
    assert image.width == image.height and 600 <= image.width <= 1000, f"cover of {image.size}"
    assert len(image.convert("L").resize((64, 64)).getcolors()) > 8, "cover without a drawing"
    return "progressive " + kind if progressive else kind


def check_streams(tracks, _):
    seen = {t.ext for t in tracks}
    assert seen == set(CODECS) | {"m4a"}, f"extensions are {sorted(seen)}"
    digests = {}
    for t in tracks:
        assert not t.probe_errors, f"{t.path}: {t.probe_errors}"
        assert t.stream["codec_name"] == CODECS.get(t.ext, t.stream["codec_name"]), f"{t.path}: {t.stream}"
        assert 1.0 <= t.seconds <= 3.5, f"{t.path} lasts {t.seconds} s"
        with open(t.path, "rb") as source:
            digest = hashlib.sha256(source.read()).digest()
        assert digest not in digests, f"{t.path} equals {digests[digest]}"
        digests[digest] = t.path


def check_audible(tracks, _):
    """Every file decodes without an error to something loud enough and not clipped."""

    def listen(t):
        done = subprocess.run(
            [
                "ffmpeg",
                "-nostdin",
                "-v",
                "info",
                "-xerror",
                "-err_detect",
                "crccheck+explode",
                "-i",
                t.path,
                "-map",
                "a:0",
                "-af",
                "volumedetect",
                "-f",
                "null",
                "-",
            ],
            capture_output=True,
            text=True,
        )
        return t, done.returncode, done.stderr

    with ThreadPoolExecutor(4) as pool:
        for t, code, said in pool.map(listen, tracks):
            assert code == 0, f"{t.path} does not decode"
            mean, peak = (float(re.search(rf"{key}_volume: (-?[\d.]+) dB", said)[1]) for key in ("mean", "max"))
            heard = int(re.search(r"n_samples: (\d+)", said)[1]) / 2 / int(t.stream["sample_rate"])
            # of a Musepack file libavformat knows the duration in steps of 1.7 s only
            assert t.ext == "mpc" or abs(heard - t.seconds) < 0.15, f"{t.path}: {heard} s of {t.seconds} s decode"
            assert mean > -35 and -20 < peak <= 0.0, f"{t.path}: mean {mean} dB, peak {peak} dB"


def check_lossless_kinds(tracks, _):
    def kinds(ext):
        return {
            (t.stream["codec_name"], t.stream.get("bits_per_raw_sample", "?"), t.stream["sample_rate"])
            for t in tracks
            if t.ext == ext
        }

    assert ("flac", "24", "96000") in kinds("flac") and ("flac", "16", "44100") in kinds("flac"), kinds("flac")
    assert {codec for codec, _, _ in kinds("m4a")} == {"aac", "alac"}, kinds("m4a")
    assert any(codec == "alac" and bits == "24" for codec, bits, _ in kinds("m4a")), kinds("m4a")


def check_tags(tracks, _):
    untagged = {t.folder for t in tracks if not t.tags}
    assert len(untagged) == 1, f"folders without tags: {untagged}"
    for t in tracks:
        if t.folder in untagged:
            assert not t.tags and t.cover is None and re.match(r"\d\d .", t.name), t.path
            continue
        for name in ("title", "artist", "album", "albumartist", "date", "track"):
            assert t.tags.get(name), f"{t.path} lacks {name}"
        number, total = (int(part) for part in t.tags["track"].split("/"))
        assert 1 <= number <= total and t.name.startswith(f"{number:02d} "), f"{t.path}: track {t.tags['track']}"
        assert t.tags["title"].replace("/", "-") == t.name[3:].rsplit(".", 1)[0], t.path
        assert t.id3_version in (None, (2, 4, 0)), f"{t.path}: ID3 {t.id3_version}"
    assert any(t.tags.get("artist") != t.tags.get("albumartist") for t in tracks), "no guest artist"
    text = "".join(t.tags.get("title", "") + t.tags.get("artist", "") for t in tracks)
    assert all(letter in text for letter in "ąćęłńóśźżŁŚŹŻ"), "Polish letters are missing"


def check_covers(tracks, _):
    kinds, names, bare, sidecars = defaultdict(set), set(), set(), set()
    by_folder = defaultdict(list)
    for t in tracks:
        by_folder[t.folder].append(t)
    for folder, members in by_folder.items():
        embedded = [t.cover for t in members if t.cover]
        assert len(embedded) in (0, len(members)), f"{folder}: only some tracks have a cover"
        beside = [name for name in FOLDER_COVERS if os.path.exists(os.path.join(folder, name))]
        own = [t.path.rsplit(".", 1)[0] + ".jpg" for t in members]
        own = [path for path in own if os.path.exists(path)]
        assert bool(embedded) + bool(beside) + bool(own) <= 1, f"{folder} has covers in two ways"
        if embedded:
            kinds[_picture(embedded[0])].add(folder)
        elif beside:
            names.update(beside)
            with open(os.path.join(folder, beside[0]), "rb") as source:
                assert ("PNG" in _picture(source.read())) == beside[0].endswith(".png"), folder
        elif own:
            assert len(own) == len(members), f"{folder}: sidecar missing"
            sidecars.add(folder)
            pictures = {open(path, "rb").read() for path in own}
            assert len(pictures) == len(own), f"{folder}: the same sidecar twice"
            for picture in pictures:
                _picture(picture)
        else:
            bare.add(folder)
    assert set(kinds) == {"JPEG", "PNG", "progressive JPEG"}, dict(kinds)
    assert names == set(FOLDER_COVERS) and len(sidecars) == 1 and len(bare) == 1, (names, sidecars, bare)


def check_discs(tracks, _):
    albums = defaultdict(lambda: defaultdict(set))
    for t in tracks:
        if "disc" in t.tags:
            albums[t.tags["albumartist"], t.tags["album"]][t.folder].add(t.tags["disc"])
    layouts = []
    for folders in albums.values():
        assert len(folders) == 2 and len({os.path.dirname(folder) for folder in folders}) == 1, dict(folders)
        assert sorted(folders.values(), key=str) == [{"1/2"}, {"2/2"}], dict(folders)
        layouts.append(sorted(os.path.basename(folder) for folder in folders))
    assert len(layouts) == 2 and ["CD1", "CD2"] in layouts, layouts


def check_hostile_names(tracks, _):
    assert any("/" in t.tags.get("artist", "") for t in tracks), "no artist with a slash"
    assert any("?" in t.name for t in tracks) and any("?" in os.path.basename(t.folder) for t in tracks)
    assert any(len(t.tags.get("album", "")) > 160 for t in tracks), "no long album"
    assert any(len(t.tags.get("title", "")) > 160 for t in tracks), "no long title"
    for t in tracks:
        assert all(len(part.encode()) <= 255 for part in t.path.split("/")), t.path


def check_ipod(_, root):
    def read(name):
        with open(os.path.join(root, name.lstrip("/")), encoding="utf-8-sig") as source:
            return source.read()

    info = dict(line.split(": ", 1) for line in read(".rockbox/rockbox-info.txt").splitlines())
    assert info["Target"] == "ipodvideo" and info["Version"] and "albumart" in info["Features"].split(":"), info
    themes = [name for name in os.listdir(os.path.join(root, ".rockbox/themes")) if name.endswith(".cfg")]
    assert len(themes) == 2, themes
    for theme in [*(".rockbox/themes/" + name for name in themes), ".rockbox/config.cfg"]:
        settings = dict(line.split(": ", 1) for line in read(theme).splitlines() if ": " in line)
        for key in ("wps", "sbs", "backdrop"):
            assert os.path.isfile(os.path.join(root, settings[key].lstrip("/"))), f"{theme}: {key}"
        backdrop = Image.open(os.path.join(root, settings["backdrop"].lstrip("/")))
        assert (backdrop.format, backdrop.size, backdrop.mode) == ("BMP", (320, 240), "RGB"), theme
        folder = settings["wps"].rsplit(".", 1)[0]
        for name in re.findall(r"[\w-]+\.bmp", read(settings["wps"]) + read(settings["sbs"])):
            assert os.path.isfile(os.path.join(root, folder.lstrip("/"), name)), f"{theme}: {name}"
    for folder in ("Playlists", "Notes", "Calendars", "Contacts", "Music"):
        assert os.path.isdir(os.path.join(root, folder)), folder
    entries = [
        line for line in read("Playlists/" + os.listdir(os.path.join(root, "Playlists"))[0]).splitlines() if line
    ]
    assert len(entries) >= 3, entries
    for entry in entries:
        track = Track(os.path.join(root, entry.lstrip("/")))
        assert track.tags["album"] and track.seconds >= 1, entry


def main():
    if len(sys.argv) != 2 or sys.argv[1].startswith("-"):
        sys.exit("usage: check_sample.py DEST")
    paths = [
        os.path.join(folder, name)
        for folder, _, names in os.walk(os.path.join(sys.argv[1], "Music"))
        for name in names
        if name.rsplit(".", 1)[-1] not in ("jpg", "png")
    ]
    passed = failed = 0
    tracks = []
    with ThreadPoolExecutor(4) as pool:
        for path, reading in [(path, pool.submit(Track, path)) for path in sorted(paths)]:
            try:
                tracks.append(reading.result())
            except Exception as error:  # whatever a broken file does to a parser
                failed += 1
                print(f"{path}: {type(error).__name__}: {error}")
    for name, check in list(globals().items()):
        if name.startswith("check_"):
            try:
                check(tracks, os.path.join(sys.argv[1], "iPod"))
                passed += 1
            except (AssertionError, OSError, KeyError, ValueError, TypeError, subprocess.CalledProcessError) as error:
                failed += 1
                print(f"{name}: {type(error).__name__}: {error}")
    print(f"{passed} passed, {failed} failed")
    sys.exit(1 if failed or not tracks else 0)


if __name__ == "__main__":
    main()

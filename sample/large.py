"""A large library for measurements: a few encoded files, tagged anew thousands of times.

Of every 20 albums 14 are FLAC, 4 MP3, 1 AAC in M4A and 1 Ogg Vorbis or Opus. Six of seven
albums have their cover in each track, a third has a cover.jpg, about a tenth has none.
"""

import base64
import colorsys
import io
import os
import random
import shutil

from mutagen._vorbis import VCommentDict
from mutagen.id3 import ID3
from mutagen.mp4 import MP4
from mutagen.oggopus import OggOpus
from mutagen.oggvorbis import OggVorbis

import covers
import encode
import jobs
import tones

_FIRST = (
    "Anna Antonina Bogna Cyprian Dalia Edda Emil Felicja Gaja Hanka Ignacy Iris Jonasz Kalina Leon Łucja "
    "Malwina Miłosz Nadia Oskar Pola Róża Selma Tymon Una Viola Wit Zenon Żaneta Alder Basil Cleo Dorian "
    "Esme Fern Gideon Hazel Isla Juniper"
).split()
_LAST = (
    "Bystrzycka Cedro Dębowiak Farley Gorczyca Harrow Iwiński Jemioła Kasztelan Larkin Łączna Marsh Niedźwiecka "
    "Oakes Piołun Quill Rzeczny Szuwar Thorne Ułan Vance Wierzbna Yarrow Zamieć Ździebło Ashdown Bramble "
    "Calloway Drift Elmer"
).split()
_BANDS = (
    "Paper Copper Velvet Silent Hollow Northern Electric Amber Distant Crooked Srebrne Nocne Leśne Szklane "
    "Ciche Dalekie Złote Mgliste"
).split()
_NOUNS = (
    "Antennas Lanterns Harbours Orchards Engines Kites Meadows Sparrows Tides Windows Rzeki Latawce Ogrody "
    "Mosty Żurawie Ścieżki Okna Światła"
).split()
_WORDS = (
    "Morning Signal Glass River Letters Winter Garden Static Harbour Shadow Ember Compass Orchard Cinder "
    "Meridian Thistle Cobalt Paper Wiatr Popiół Źródło Cień Mgła Żar Jesień Szept Łąka Zmierzch Kamień "
    "Świt Pociąg Echo Sól Noc Dźwięk Brzeg"
).split()
_LINKS = ("of the", "and", "without", "under the", "bez", "nad", "i", "after")
_GENRES = ("Rock", "Jazz", "Folk", "Electronic", "Classical", "Ambient", "Pop", "Hip-Hop", "Soul", "Metal")

# What lies quickest on the canvas; the colours are turned for each album
_DESIGNS = ("night_line", "glass", "sonar", "sunrise", "postcard", "crossing", "question", "two_seasons", "orbits")

_PATTERN = ["flac"] * 14 + ["mp3"] * 4 + ["m4a", "ogg"]

_BASES = {}  # extension -> list of encoded files' bytes


def _phrase(rng):
    kind = rng.random()
    if kind < 0.35:
        return rng.choice(_WORDS)
    if kind < 0.75:
        return f"{rng.choice(_WORDS)} {rng.choice(_WORDS)}"
    return f"{rng.choice(_WORDS)} {rng.choice(_LINKS)} {rng.choice(_WORDS)}"


def _plan(count):
    """One (artist, title, year, genre, extension) for each album; no two share a folder."""
    rng = random.Random(count)
    names, seen, plan = [], set(), []
    while len(names) < max(1, count * 2 // 5):
        name = (
            f"{rng.choice(_FIRST)} {rng.choice(_LAST)}"
            if rng.random() < 0.6
            else f"{rng.choice(_BANDS)} {rng.choice(_NOUNS)}"
        )
        names.append(name if name not in seen else f"{name} {len(names)}")
        seen.add(names[-1])
    exts = []
    for i in range(count):
        if not exts:
            exts = _PATTERN[:]
            rng.shuffle(exts)
        artist = names[i] if i < len(names) else rng.choice(names)
        title = _phrase(rng)
        while (artist, title.lower()) in seen:
            title += f" {rng.choice(_WORDS)}"
        seen.add((artist, title.lower()))
        ext = exts.pop()
        if ext == "ogg" and rng.random() < 0.5:
            ext = "opus"
        plan.append((artist, title, rng.randint(1965, 2024), rng.choice(_GENRES), ext))
    return plan


def _turned(palette, rng):
    """The palette with all its hues moved by the same amount."""
    shift, strength = rng.random(), rng.uniform(0.8, 1.15)
    result = []
    for colour in palette:
        h, l, s = colorsys.rgb_to_hls(*(int(colour[i : i + 2], 16) / 255 for i in (1, 3, 5)))
        parts = colorsys.hls_to_rgb((h + shift) % 1, l, min(1, s * strength))
        result.append(tuple(round(255 * part) for part in parts))
    return result


def _flac_parts(data):
    """STREAMINFO's content and the audio frames of a FLAC file."""
    at, info = 4, b""
    while True:
        last, kind, size = data[at] >> 7, data[at] & 127, int.from_bytes(data[at + 1 : at + 4], "big")
        if kind == 0:
            info = data[at + 4 : at + 4 + size]
        at += 4 + size
        if last:
            return info, data[at:]


def _flac(base, tags, image, side):
    """Puts the blocks together by hand: a tenth of the time of rewriting a copy in place."""
    info, frames = base
    comments = VCommentDict()
    comments.vendor = "reference libFLAC 1.4.2 20221022"
    encode.vorbis_comments(comments, tags)
    blocks = [(0, info), (4, comments.write(framing=False))]
    if image:
        blocks.append((6, encode.picture(image, side).write()))
    blocks.append((1, bytes(4096)))
    out = [b"fLaC"]
    for kind, body in blocks:
        out.append(bytes([kind | (128 if kind == 1 else 0)]) + len(body).to_bytes(3, "big") + body)
    return b"".join(out) + frames


def _tagged(ext, base, tags, image, side):
    if ext == "flac":
        return _flac(base, tags, image, side)
    buffer = io.BytesIO()
    if ext == "mp3":
        id3 = ID3()
        encode.id3_frames(id3, tags, image)
        id3.save(buffer, v1=0, v2_version=4)
        return buffer.getvalue() + base
    buffer.write(base)
    buffer.seek(0)
    if ext == "m4a":
        audio = MP4(buffer)
        encode.mp4_atoms(audio, tags, image)
    else:
        audio = OggVorbis(buffer) if ext == "ogg" else OggOpus(buffer)
        encode.vorbis_comments(audio, tags)
        if image:
            audio["METADATA_BLOCK_PICTURE"] = base64.b64encode(encode.picture(image, side).write()).decode("ascii")
    buffer.seek(0)
    audio.save(buffer)
    return buffer.getvalue()


def _album(job):
    root, index, (artist, title, year, genre, ext), count = job
    rng = random.Random(index * 7919 + 17)
    folder = os.path.join(root, artist, title)
    os.makedirs(folder)
    embed, beside = index % 7 != 3, index % 3 == 0
    side = rng.choice((500, 500, 600, 600, 700, 800, 1000))
    image = None
    if embed or beside:
        design = rng.choice(_DESIGNS)
        picture = covers.render(design, title, artist, side, 1, index, _turned(covers.DESIGNS[design][1], rng), grain=2)
        image = covers.encode(picture, "jpeg", 84)
    if beside:
        with open(os.path.join(folder, "cover.jpg"), "wb") as out:
            out.write(image)
    for number in range(1, count + 1):
        name = _phrase(rng)
        tags = encode.Tags(name, artist, title, artist, year, genre, number, count)
        data = _tagged(ext, rng.choice(_BASES[ext]), tags, image if embed else None, side)
        with open(os.path.join(folder, f"{number:02d} {name}.{ext}"), "wb") as out:
            out.write(data)


def _encode_bases(root):
    scratch = os.path.join(root, ".scratch")
    os.mkdir(scratch)
    piece = tones.piece("dawn", 9.0)
    for index, ext in enumerate(("flac", "flac", "flac", "flac", "mp3", "mp3", "mp3", "m4a", "m4a", "ogg", "opus")):
        wav, out = os.path.join(scratch, "base.wav"), os.path.join(scratch, f"{index}.{ext}")
        with open(wav, "wb") as raw:
            raw.write(tones.wav(tones.cut(piece, 44100, 0.5 * index, 1.0 + 0.1 * index), 44100))
        encode.encode(wav, out, ext, serial=900 + index)
        with open(out, "rb") as source:
            data = source.read()
        _BASES.setdefault(ext, []).append(_flac_parts(data) if ext == "flac" else data)
    shutil.rmtree(scratch)


def make(root, count, tracks):
    """Fills root with count albums of so many tracks, as Artist/Album/NN Title.ext."""
    _encode_bases(root)
    work = [(root, i, album, tracks) for i, album in enumerate(_plan(count))]
    with jobs.pool() as pool:
        for _ in pool.imap_unordered(_album, work, chunksize=4):
            pass

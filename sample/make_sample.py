#!/usr/bin/python3
"""Makes a sample iPod and a sample music collection, or a large collection for measurements.

    make_sample.py DEST                            DEST/iPod and DEST/Music
    make_sample.py DEST --albums N [--tracks 12]   music only, N albums

The same generator always makes the same files. A finished DEST is left as it is.
"""

import argparse
import os
import shutil
import subprocess
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
sys.dont_write_bytecode = True

# Raised whenever the generated files change, so that trees of an older generator are made anew
VERSION = 1

_TOOLS = {
    "ffmpeg": "ffmpeg",
    "flac": "flac",
    "lame": "lame",
    "oggenc": "vorbis-tools",
    "opusenc": "opus-tools",
    "wavpack": "wavpack",
    "mpcenc": "musepack-tools",
}

# The pieces of music, handed to the worker processes by being there when they start
_PIECES = {}


def _piece(job):
    mood, rate, seconds, key = job
    return job, tones.piece(mood, seconds, rate, key, seed=len(mood) + rate)


def _piece_key(album):
    """The piece an album is cut from: mood, samples a second, seconds, Hz of the key note."""
    hertz = {"dawn": 220.0, "river": 196.0, "lamp": 174.61, "field": 246.94}[album.mood]
    # 48 kHz takes the samples of 44.1 kHz and plays them a little faster, which nobody minds here
    return (album.mood, 44100, 11.0, hertz) if album.rate <= 48000 else (album.mood, album.rate, 8.0, hertz)


def _picture(job):
    """(key, bytes) of an album's cover, or of one track's where each track has its own."""
    album, sidecar = job
    title, seed, palette, key = album.title, album.seed, None, (album.artist, album.title)
    if sidecar:
        number, title, palette = sidecar
        seed += number
        key += (title,)
    image = covers.render(album.design, title, album.artist, album.pixels, seed=seed, palette=palette)
    return key, covers.encode(image, album.image)


def _track(job):
    """Cuts, encodes and tags one track; runs in a worker process."""
    album, folder, disc, number, count, title, ext, index, image, scratch = job
    name = f"{number:02d} {albums.file_name(title)}.{ext}"
    out = os.path.join(folder, name)
    key = _piece_key(album)
    _, rate, seconds, _ = key
    # no two tracks are equally long, so no two files are the same
    length = 1.2 + 0.22 * (index % 8) + 0.004 * index
    if ext == "mpc":  # from 1.7 s on libavformat can tell how long a Musepack file is
        length = max(length, 1.9 + 0.004 * index)
    start = (0.5 * index) % (seconds - 3.2)
    part = tones.cut(_PIECES[key], rate, start, length)
    sound = tones.wav(part, album.rate, album.bits)
    wav = os.path.join(scratch, f"{index}.wav")
    with open(wav, "wb") as raw:
        raw.write(sound)
    codec = "alac" if ext == "alac" or (ext == "m4a" and album.bits == 24) else ext
    encode.encode(wav, out, codec, serial=4000 + index)
    os.unlink(wav)
    if album.tagged:
        embedded = image if album.cover == "embedded" else None
        encode.tag(
            out,
            encode.Tags(
                title,
                album.guests.get(title, album.artist),
                album.title,
                album.artist,
                album.year,
                album.genre,
                number,
                count,
                disc.number,
                len(album.discs) if disc.number else 0,
            ),
            embedded,
            album.pixels,
        )
    if album.cover == "sidecar":
        with open(out.rsplit(".", 1)[0] + ".jpg", "wb") as sidecar:
            sidecar.write(image)


def make_sample(root):
    """Fills root with iPod and Music."""
    everything = [*albums.MUSIC, albums.ON_IPOD]
    pictures = []
    for album in everything:
        if album.cover == "sidecar":
            titles = [title for _, _, _, title, _ in album.tracks()]
            pictures += [(album, (i, title, albums.POSTCARDS[i])) for i, title in enumerate(titles)]
        elif album.design:
            pictures.append((album, None))
    with jobs.pool() as pool:
        # the longest first, so that no core idles at the end
        keys = sorted({_piece_key(album) for album in everything}, key=lambda key: (-key[1] * key[2], key))
        pieces = pool.map_async(_piece, keys, chunksize=1)
        images = dict(pool.map(_picture, pictures, chunksize=1))
        _PIECES.update(pieces.get())

    scratch = os.path.join(root, ".scratch")
    os.mkdir(scratch)
    tracks, index = [], 0
    for album in everything:
        top = os.path.join(root, "iPod/Music" if album is albums.ON_IPOD else "Music", album.path())
        for disc in album.discs:
            folder = os.path.join(top, disc.folder)
            os.makedirs(folder, exist_ok=True)
            if album.cover == "folder":
                with open(os.path.join(folder, album.cover_name), "wb") as out:
                    out.write(images[album.artist, album.title])
        for disc, number, count, title, ext in album.tracks():
            image = images.get((album.artist, album.title, title)) or images.get((album.artist, album.title))
            folder = os.path.join(top, disc.folder)
            tracks.append((album, folder, disc, number, count, title, ext, index, image, scratch))
            index += 1
    with jobs.pool() as pool:
        pool.map(_track, tracks, chunksize=1)
    shutil.rmtree(scratch)

    playlist = [
        f"/Music/{albums.ON_IPOD.path()}/{number:02d} {albums.file_name(title)}.{ext}"
        for _, number, _, title, ext in albums.ON_IPOD.tracks()
    ]
    ipod.make(os.path.join(root, "iPod"), playlist)


def main():
    parser = argparse.ArgumentParser(
        description=__doc__.split("\n", 1)[0],
        epilog="Nothing but DEST is written, and nothing in it that was not made here is changed.",
    )
    parser.add_argument("dest", metavar="DEST", help="a new or empty folder, or one filled by this program before")
    parser.add_argument("--albums", type=int, metavar="N", help="make a large collection of N albums, without an iPod")
    parser.add_argument(
        "--tracks", type=int, metavar="N", default=12, help="tracks in each album of the large collection"
    )
    args = parser.parse_args()
    if args.albums is not None and not (1 <= args.albums <= 20000 and 1 <= args.tracks <= 99):
        parser.error("--albums takes 1 to 20000 and --tracks 1 to 99")
    missing = sorted({package for tool, package in _TOOLS.items() if shutil.which(tool) is None})
    if missing:
        sys.exit(f"make_sample.py: please install {' '.join(missing)}")
    try:
        if args.albums is None:
            tree.fill(args.dest, f"sample {VERSION}", make_sample, keep=("Music/", "iPod/.rockbox/"))
        else:
            kind = f"library {VERSION}: {args.albums} x {args.tracks}"
            tree.fill(args.dest, kind, lambda root: large.make(root, args.albums, args.tracks))
    except (tree.Refused, OSError, RuntimeError, subprocess.SubprocessError) as error:
        sys.exit(f"make_sample.py: {error}")
    except KeyboardInterrupt:
        sys.exit(130)


try:
    import albums
    import covers
    import covers_more  # noqa: F401  adds its designs
    import encode
    import ipod
    import jobs
    import large
    import tones
    import tree
except ImportError as error:
    sys.exit(f"make_sample.py: please install python3-mutagen and python3-pil ({error})")

if __name__ == "__main__":
    main()

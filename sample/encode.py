"""Encoding and tagging of single files, each format in its own way."""

import base64
import os
import subprocess

from mutagen.aiff import AIFF
from mutagen.apev2 import BINARY, APEValue
from mutagen.flac import FLAC, Picture
from mutagen.id3 import APIC, ID3, TALB, TCON, TDRC, TIT2, TPE1, TPE2, TPOS, TRCK
from mutagen.mp3 import MP3
from mutagen.mp4 import MP4, MP4Cover
from mutagen.musepack import Musepack
from mutagen.oggopus import OggOpus
from mutagen.oggvorbis import OggVorbis
from mutagen.wave import WAVE
from mutagen.wavpack import WavPack

# bitexact: no encoder version and no time of day in the file
_FFMPEG = [
    "ffmpeg",
    "-nostdin",
    "-v",
    "error",
    "-y",
    "-i",
    "{wav}",
    "-map_metadata",
    "-1",
    "-fflags",
    "+bitexact",
    "-flags:a",
    "+bitexact",
]

_COMMANDS = {
    "mp3": ["lame", "--silent", "-V", "4", "{wav}", "{out}"],
    "flac": ["flac", "-s", "-f", "-5", "-o", "{out}", "{wav}"],
    "m4a": [*_FFMPEG, "-c:a", "aac", "-b:a", "160k", "-movflags", "+faststart", "-f", "ipod", "{out}"],
    "aac": [*_FFMPEG, "-c:a", "aac", "-b:a", "160k", "-f", "adts", "{out}"],
    # ALAC in an MP4 file; the encoder takes 16 or (from 24-bit input) 24 bits as they come
    "alac": [*_FFMPEG, "-c:a", "alac", "-movflags", "+faststart", "-f", "ipod", "{out}"],
    # a fixed serial number instead of a random one
    "ogg": ["oggenc", "-Q", "-q", "4", "-s", "{serial}", "-o", "{out}", "{wav}"],
    "opus": ["opusenc", "--quiet", "--bitrate", "112", "--serial", "{serial}", "{wav}", "{out}"],
    "aiff": [*_FFMPEG, "-c:a", "pcm_s16be", "-f", "aiff", "{out}"],
    "aif": [*_FFMPEG, "-c:a", "pcm_s16be", "-f", "aiff", "{out}"],
    "wv": ["wavpack", "-q", "-y", "{wav}", "-o", "{out}"],
    "mpc": ["mpcenc", "--silent", "--overwrite", "{wav}", "{out}"],
}


def encode(wav, out, codec, serial=1):
    """Encodes a WAV file; codec is an extension of the table above, or 'wav' for a copy."""
    if codec == "wav":
        with open(wav, "rb") as source, open(out, "wb") as target:
            target.write(source.read())
        return
    values = {"wav": wav, "out": out, "serial": str(serial)}
    command = [part.format(**values) for part in _COMMANDS[codec]]
    done = subprocess.run(command, stdin=subprocess.DEVNULL, capture_output=True, text=True)
    if done.returncode != 0 or not os.path.exists(out):
        raise RuntimeError(f"{command[0]} failed for {os.path.basename(out)}: {done.stderr.strip()[-300:]}")


class Tags:
    """What a track's tags say; empty values are left out."""

    def __init__(self, title, artist, album, album_artist, year, genre, number, count, disc=0, discs=0):
        self.title, self.artist, self.album, self.album_artist = title, artist, album, album_artist
        self.year, self.genre = str(year), genre
        self.number, self.count, self.disc, self.discs = number, count, disc, discs


def _mime(image):
    return "image/png" if image.startswith(b"\x89PNG") else "image/jpeg"


def picture(image, side):
    pic = Picture()
    pic.type, pic.mime, pic.data, pic.desc = 3, _mime(image), image, ""
    pic.width = pic.height = side
    pic.depth = 24
    return pic


def id3_frames(id3, tags, image):
    id3.add(TIT2(encoding=3, text=tags.title))
    id3.add(TPE1(encoding=3, text=tags.artist))
    id3.add(TALB(encoding=3, text=tags.album))
    id3.add(TPE2(encoding=3, text=tags.album_artist))
    id3.add(TDRC(encoding=3, text=tags.year))
    id3.add(TRCK(encoding=3, text=f"{tags.number}/{tags.count}"))
    if tags.genre:
        id3.add(TCON(encoding=3, text=tags.genre))
    if tags.disc:
        id3.add(TPOS(encoding=3, text=f"{tags.disc}/{tags.discs}"))
    if image:
        id3.add(APIC(encoding=0, mime=_mime(image), type=3, desc="", data=image))


def vorbis_comments(audio, tags):
    audio["TITLE"], audio["ARTIST"], audio["ALBUM"] = tags.title, tags.artist, tags.album
    audio["ALBUMARTIST"], audio["DATE"] = tags.album_artist, tags.year
    audio["TRACKNUMBER"], audio["TRACKTOTAL"] = str(tags.number), str(tags.count)
    if tags.genre:
        audio["GENRE"] = tags.genre
    if tags.disc:
        audio["DISCNUMBER"], audio["DISCTOTAL"] = str(tags.disc), str(tags.discs)


def mp4_atoms(audio, tags, image):
    audio["\xa9nam"], audio["\xa9ART"], audio["\xa9alb"] = tags.title, tags.artist, tags.album
    audio["aART"], audio["\xa9day"] = tags.album_artist, tags.year
    audio["trkn"] = [(tags.number, tags.count)]
    if tags.genre:
        audio["\xa9gen"] = tags.genre
    if tags.disc:
        audio["disk"] = [(tags.disc, tags.discs)]
    if image:
        kind = MP4Cover.FORMAT_PNG if image.startswith(b"\x89PNG") else MP4Cover.FORMAT_JPEG
        audio["covr"] = [MP4Cover(image, kind)]


def _ape_items(audio, tags, image):
    audio["Title"], audio["Artist"], audio["Album"] = tags.title, tags.artist, tags.album
    audio["Album Artist"], audio["Year"] = tags.album_artist, tags.year
    audio["Track"] = f"{tags.number}/{tags.count}"
    if tags.genre:
        audio["Genre"] = tags.genre
    if tags.disc:
        audio["Disc"] = f"{tags.disc}/{tags.discs}"
    if image:
        name = b"cover.png" if image.startswith(b"\x89PNG") else b"cover.jpg"
        audio["Cover Art (Front)"] = APEValue(name + b"\0" + image, BINARY)


def tag(path, tags, image=None, side=0):
    """Writes the tags, and the cover's bytes if there are any (side: its pixels)."""
    ext = path.rsplit(".", 1)[1]
    if ext == "flac":
        audio = FLAC(path)
        vorbis_comments(audio, tags)
        if image:
            audio.add_picture(picture(image, side))
        audio.save()
    elif ext in ("ogg", "opus"):
        audio = OggVorbis(path) if ext == "ogg" else OggOpus(path)
        vorbis_comments(audio, tags)
        if image:
            audio["METADATA_BLOCK_PICTURE"] = base64.b64encode(picture(image, side).write()).decode("ascii")
        audio.save()
    elif ext in ("m4a", "alac"):
        audio = MP4(path)
        mp4_atoms(audio, tags, image)
        audio.save()
    elif ext in ("wv", "mpc"):
        audio = WavPack(path) if ext == "wv" else Musepack(path)
        _ape_items(audio, tags, image)
        audio.save()
    elif ext in ("wav", "aiff", "aif"):
        audio = WAVE(path) if ext == "wav" else AIFF(path)
        audio.add_tags()
        id3_frames(audio.tags, tags, image)
        audio.save(v2_version=4)
    elif ext == "mp3":
        audio = MP3(path)
        audio.add_tags()
        id3_frames(audio.tags, tags, image)
        audio.save(v1=0, v2_version=4)
    elif ext == "aac":
        # a bare ADTS stream has no place for tags; an ID3 tag before it is what players agree on
        id3 = ID3()
        id3_frames(id3, tags, image)
        id3.save(path, v1=0, v2_version=4)
    else:
        raise ValueError(ext)

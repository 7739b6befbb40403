#!/usr/bin/python3
"""Makes the small audio files in the folder "media" beside this script, the same bytes at every run.

They are kept in the repository, so that tests need no encoders. To make them anew (Debian packages): ffmpeg, lame,
flac, opus-tools, vorbis-tools, wavpack, musepack-tools, python3-mutagen.
"""
import base64
import math
import os
import struct
import subprocess
import tempfile
import wave
import zlib

from mutagen.aiff import AIFF
from mutagen.apev2 import APEv2, APEValue, BINARY
from mutagen.flac import Picture
from mutagen.id3 import APIC, ID3, TALB, TDRC, TIT2, TPE1, TPE2, TPOS, TRCK, TXXX, TYER
from mutagen.mp4 import MP4, MP4Cover
from mutagen.oggflac import OggFLAC
from mutagen.oggopus import OggOpus
from mutagen.oggvorbis import OggVorbis
from mutagen.wave import WAVE

OUT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "media")
WORK = tempfile.mkdtemp()


def run(*command):
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def ffmpeg(source, target, *options):
    run("ffmpeg", "-y", "-bitexact", "-i", source, "-map_metadata", "-1", "-fflags", "+bitexact", "-flags:a", "+bitexact",
        *options, target)


def out(name):
    return os.path.join(OUT, name)


def work(name):
    return os.path.join(WORK, name)


def pixel(red, green, blue):
    """A PNG picture of one pixel."""
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    header = struct.pack(">IIBBBBB", 1, 1, 8, 2, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(bytes([0, red, green, blue])))
            + chunk(b"IEND", b""))


FRONT, OTHER = pixel(200, 30, 30), pixel(30, 30, 200)


def sound(name, rate, seconds, width=2, loud=lambda t: 0.3):
    """A mono tone; `loud` gives its amplitude at a time."""
    path = work(name)
    with wave.open(path, "wb") as file:
        file.setnchannels(1)
        file.setsampwidth(width)
        file.setframerate(rate)
        frames = bytearray()
        for i in range(round(rate * seconds)):
            t = i / rate
            value = math.sin(2 * math.pi * 440 * t) + 0.5 * math.sin(2 * math.pi * 1234 * t * (1 + t))
            frames += int(loud(t) * value / 1.5 * (2 ** (8 * width - 1) - 1)).to_bytes(width, "little", signed=True)
        file.writeframes(bytes(frames))
    return path


def id3(*, version=4, artists=("Zażółć",), pictures=True):
    tag = ID3()
    tag.add(TIT2(encoding=3, text="Gęślą jaźń"))
    tag.add(TPE1(encoding=3, text=list(artists)))
    tag.add(TALB(encoding=3, text="Jesień"))
    tag.add(TPE2(encoding=3, text="Różni wykonawcy"))
    tag.add(TRCK(encoding=3, text="7/12"))
    tag.add(TPOS(encoding=3, text="2/3"))
    tag.add(TDRC(encoding=3, text="2004-03-01"))
    tag.add(TXXX(encoding=3, desc="TRCK", text="99"))
    if pictures:
        tag.add(APIC(encoding=3, mime="image/png", type=0, desc="inny", data=OTHER))
        tag.add(APIC(encoding=1, mime="image/png", type=3, desc="przód", data=FRONT))
    if version == 3:
        tag.update_to_v23()
        tag.delall("TDRC")
        tag.add(TYER(encoding=1, text="2004"))
    return tag


def save_id3(tag, path, version=4, v1=0):
    tag.save(path, v1=v1, v2_version=version, padding=lambda info: 64)


def comments(tags):
    tags["title"] = "Gęślą jaźń"
    tags["artist"] = ["Zażółć", "Druga"]
    tags["album"] = "Jesień"
    tags["albumartist"] = "Różni wykonawcy"
    tags["tracknumber"] = "7"
    tags["discnumber"] = "2"
    tags["date"] = "2004-03-01"
    tags["year"] = "1999"
    blocks = []
    for kind, data in ((3, FRONT), (4, OTHER)):
        picture = Picture()
        picture.type, picture.mime, picture.desc, picture.data = kind, "image/png", "", data
        picture.width = picture.height = 1
        picture.depth = 24
        blocks.append(base64.b64encode(picture.write()).decode())
    tags["metadata_block_picture"] = blocks


def ape_tag(path):
    tag = APEv2()
    tag["Title"] = "Gęślą jaźń"
    tag["Artist"] = "Zażółć\0Druga"
    tag["Album"] = "Jesień"
    tag["Album Artist"] = "Różni wykonawcy"
    tag["Track"] = "7/12"
    tag["Disc"] = "2"
    tag["Year"] = "2004-03-01"
    tag["Cover Art (Back)"] = APEValue(b"back.png\0" + OTHER, BINARY)
    tag["Cover Art (Front)"] = APEValue(b"front.png\0" + FRONT, BINARY)
    tag.save(path)


def mp4_tags(path):
    file = MP4(path)
    file["\xa9nam"] = "Gęślą jaźń"
    file["\xa9ART"] = ["Zażółć", "Druga"]
    file["\xa9alb"] = "Jesień"
    file["aART"] = "Różni wykonawcy"
    file["\xa9day"] = "2004-03-01"
    file["trkn"] = [(7, 12)]
    file["disk"] = [(2, 0)]
    file["covr"] = [MP4Cover(FRONT, MP4Cover.FORMAT_PNG), MP4Cover(OTHER, MP4Cover.FORMAT_PNG)]
    file.save(padding=lambda info: 64)


def monkeys_audio(path):
    """The headers of Monkey's Audio 3.99 for 66150 samples of 44100 Hz; the coded sound is not real."""
    descriptor = struct.pack("<4sHHIIIIIII16s", b"MAC ", 3990, 0, 52, 24, 4, 44, 400, 0, 0, bytes(16))
    header = struct.pack("<HHIIIHHI", 2000, 0, 73728, 66150, 1, 16, 2, 44100)
    with open(path, "wb") as file:
        file.write(descriptor + header + bytes(4) + bytes(44) + bytes(400))


def main():
    os.makedirs(OUT, exist_ok=True)
    for name, data in (("front.png", FRONT), ("other.png", OTHER)):
        with open(out(name), "wb") as file:
            file.write(data)
    tone = sound("tone.wav", 44100, 0.5)
    low = sound("low.wav", 8000, 0.5)
    fine = sound("fine.wav", 96000, 0.05, width=3)
    uneven = sound("uneven.wav", 22050, 4, loud=lambda t: 0.0 if 1 < t < 3 else 0.4)

    run("lame", "--quiet", "-b", "64", tone, out("id3v24.mp3"))
    save_id3(id3(artists=("Zażółć", "Druga")), out("id3v24.mp3"))
    run("lame", "--quiet", "-V", "9", tone, out("id3v23.mp3"))
    save_id3(id3(version=3), out("id3v23.mp3"), version=3)
    run("lame", "--quiet", "-b", "64", "-t", tone, out("three-tags.mp3"))
    ape_tag(out("three-tags.mp3"))
    save_id3(ID3(), out("three-tags.mp3"))
    three = ID3()
    three.add(TIT2(encoding=3, text="Z ID3v2"))
    three.save(out("three-tags.mp3"), v1=2, padding=lambda info: 64)
    run("lame", "--quiet", "-V", "6", "-t", uneven, out("variable-rate.mp3"))

    ffmpeg(tone, out("aac.m4a"), "-c:a", "aac", "-b:a", "64k")
    mp4_tags(out("aac.m4a"))
    ffmpeg(low, out("alac16.m4a"), "-c:a", "alac")
    ffmpeg(fine, work("alac24.m4a"), "-c:a", "alac", "-sample_fmt", "s32p")
    os.replace(work("alac24.m4a"), out("alac24.alac"))
    ffmpeg(fine, work("flac.mp4"), "-c:a", "flac", "-strict", "-2")
    with open(work("flac.mp4"), "rb") as file:
        whole = bytearray(file.read())
    rate = whole.index(b"fLaC") + 28  # of the sample entry, which has no room for 96000
    whole[rate:rate + 2] = struct.pack(">H", 48000)
    with open(out("flac.m4a"), "wb") as file:
        file.write(whole)
    ffmpeg(low, work("fragmented.mp4"), "-c:a", "alac", "-movflags", "frag_keyframe+empty_moov")
    os.replace(work("fragmented.mp4"), out("fragmented.m4a"))
    ffmpeg(uneven, out("raw.aac"), "-c:a", "aac", "-b:a", "24k")
    save_id3(id3(), out("raw.aac"))

    run("oggenc", "-Q", "--serial", "1", "-q", "0", "-o", out("vorbis.ogg"), tone)
    ogg = OggVorbis(out("vorbis.ogg"))
    comments(ogg)
    ogg.save(padding=lambda info: 0)
    run("opusenc", "--quiet", "--serial", "1", "--bitrate", "24", tone, out("opus.opus"))
    ogg = OggOpus(out("opus.opus"))
    comments(ogg)
    ogg.save(padding=lambda info: 0)
    ffmpeg(low, out("flac.ogg"), "-c:a", "flac", "-serial_offset", "1")
    ogg = OggFLAC(out("flac.ogg"))
    comments(ogg)
    ogg.save(padding=lambda info: 0)

    run("flac", "--silent", "--force", "--output-name", out("plain.flac"), low)

    ffmpeg(low, out("info.wav"), "-c:a", "pcm_s16le", "-metadata", "title=Gęślą jaźń", "-metadata", "artist=Zażółć",
           "-metadata", "album=Jesień", "-metadata", "date=2004", "-metadata", "track=7")
    ffmpeg(fine, out("id3.wav"), "-c:a", "pcm_s24le")
    wav = WAVE(out("id3.wav"))
    wav.add_tags()
    for frame in id3().values():
        wav.tags.add(frame)
    wav.save()
    ffmpeg(low, out("mu-law.wav"), "-c:a", "pcm_mulaw")
    with open(out("info.wav"), "rb") as file:
        whole = bytearray(file.read())
    data = whole.index(b"data")
    whole[4:8] = whole[data + 4:data + 8] = b"\xff\xff\xff\xff"  # what a pipe leaves there
    with open(out("unfinished.wav"), "wb") as file:
        file.write(whole)
    ffmpeg(low, out("id3.aiff"), "-c:a", "pcm_s16be")
    aiff = AIFF(out("id3.aiff"))
    aiff.add_tags()
    for frame in id3().values():
        aiff.tags.add(frame)
    aiff.save()
    ffmpeg(low, work("swapped.aiff"), "-c:a", "pcm_s16le")
    os.replace(work("swapped.aiff"), out("swapped.aif"))

    run("wavpack", "-y", "-q", low, "-o", out("lossless.wv"))
    ape_tag(out("lossless.wv"))
    run("wavpack", "-y", "-q", "-b128", tone, "-o", out("lossy.wv"))
    run("mpcenc", "--silent", "--overwrite", "--quality", "2", tone, out("musepack.mpc"))
    ape_tag(out("musepack.mpc"))
    monkeys_audio(out("monkeys.ape"))
    ape_tag(out("monkeys.ape"))
    ffmpeg(tone, work("opus.mka"), "-c:a", "libopus", "-b:a", "24k", "-metadata", "title=Gęślą jaźń", "-metadata", "artist=Zażółć",
           "-metadata", "track=7")
    os.replace(work("opus.mka"), out("matroska.opus"))


main()

#!/usr/bin/python3
"""make_archives.py FOLDER: makes ZIP archives, good and hostile, and FOLDER/manifest.json.

The manifest has for each archive what the inspection says of it, what its installation says ("" where it is good, "*"
where the words are a tool's own), and the SHA-256 of each file that it then brings, by its path below .rockbox. The
archives come from zipfile, zip, 7z and bsdtar; faults are put into finished
ones, so that each breaks one rule alone. Debian packages: zip, p7zip-full, libarchive-tools.
"""
import hashlib
import json
import os
import posixpath
import shutil
import struct
import subprocess
import sys
import zipfile
import zlib
from io import BytesIO

BAD = "Nieprawidłowa lub niebezpieczna paczka ZIP."
LARGE = "Rozpakowany motyw przekracza 100 MB."
SPECIAL = "Paczka zawiera dowiązanie lub plik specjalny."
UNSAFE = "Paczka ZIP zawiera niebezpieczną ścieżkę."
CROWDED = "Paczka jest pusta lub zawiera zbyt wiele plików."
OUTSIDE = "Paczka zawiera pliki poza katalogami motywów: "
TOOLS_WORDS = "*"

LIMIT = 104_857_600
CFG, WPS, BMP = ".rockbox/themes/Dawn.cfg", ".rockbox/wps/Dawn.wps", ".rockbox/wps/Dawn/back.bmp"
THEME = {CFG: b"wps: /.rockbox/wps/Dawn.wps\n", WPS: b"%s%?d\n" * 40, BMP: bytes(range(256)) * 9}

OUT = sys.argv[1]
manifest = {}


def files_of(path):
    """What Python's own reader finds below .rockbox; names without a mark of their alphabet are UTF-8, too."""
    files = {}
    with zipfile.ZipFile(path) as archive:
        for info in archive.infolist():
            marked = info.flag_bits & 0x800
            name = posixpath.normpath(info.filename if marked else info.filename.encode("cp437").decode())
            if name.startswith(".rockbox/") and not info.is_dir():
                files[name.removeprefix(".rockbox/")] = hashlib.sha256(archive.read(info)).hexdigest()
    return files


def expect(name, inspection, installation=None, source=None):
    """The archive `source` holds the same; for readers that a false record leads astray."""
    assert name not in manifest
    installation = inspection if installation is None else installation
    files = {} if installation else files_of(os.path.join(OUT, source or name))
    manifest[name] = [inspection, installation, files]


def save(name, data, inspection="", installation=None, source=None):
    path = os.path.join(OUT, name)
    with open(path, "wb") as file:
        file.write(data)
    if len(data) > LIMIT // 2:
        subprocess.run(["fallocate", "--dig-holes", path], check=False)  # zeros need no room on the disk
    expect(name, inspection, installation, source)


def packed(files, method=zipfile.ZIP_DEFLATED, comment=b"", mode=0o100644, attributes=None, system=3):
    """An archive of these files, in their order; a name that ends in "/" is a folder."""
    out = BytesIO()
    with zipfile.ZipFile(out, "w", method) as archive:
        archive.comment = comment
        for name, content in files.items():
            info = zipfile.ZipInfo(name, (2026, 11, 16, 9, 52, 50))
            info.compress_type, info.create_system = method, system
            info.external_attr = mode << 16 if attributes is None else attributes
            archive.writestr(info, content)
    return out.getvalue()


def theme_and(name, content=b"x", **options):
    return packed({**THEME, name: content}, **options)


class Opened:
    """A finished archive, to be changed by the names and offsets that the format's records have."""

    def __init__(self, data):
        self.data = bytearray(data)
        self.end = data.rindex(b"PK\5\6")
        self.directory = self.number("I", self.end + 16)

    def number(self, kind, at):
        return struct.unpack_from("<" + kind, self.data, at)[0]

    def set(self, kind, at, value):
        struct.pack_into("<" + kind, self.data, at, value)
        return self

    def central(self, index):
        at = self.directory
        for _ in range(index):
            at += 46 + sum(self.number("H", at + field) for field in (28, 30, 32))
        return at

    def local(self, index):
        return self.number("I", self.central(index) + 42)

    def set_end(self, offset, kind, value):
        return self.set(kind, self.end + offset, value)

    def set_central(self, offset, kind, value, index=2):
        return self.set(kind, self.central(index) + offset, value)

    def set_local(self, offset, kind, value, index=2):
        return self.set(kind, self.local(index) + offset, value)

    def rename(self, old, new, count=-1):
        assert len(old) == len(new) and self.data.count(old) >= 2
        self.data[:] = self.data.replace(old, new, count)
        return self

    def insert(self, at, extra, fix_end=True):
        """Puts bytes between two records."""
        self.data[at:at] = extra
        self.end += len(extra)
        if fix_end:
            self.set_end(16, "I", self.directory + len(extra))
        return self


def opened(**options):
    return Opened(packed(THEME, **options))


def unicode_path(name, other):
    """The extra field 0x7075, by which some tools read another name."""
    body = struct.pack("<BI", 1, zlib.crc32(name.encode())) + other.encode()
    return struct.pack("<HH", 0x7075, len(body)) + body


def with_local_path(other):
    """Another name in the place that is read last, in front of the content."""
    archive = Opened(theme_and(".rockbox/wps/x"))
    extra = unicode_path(".rockbox/wps/x", other)
    archive.set_local(28, "H", len(extra), 3)
    return bytes(archive.insert(archive.local(3) + 30 + len(".rockbox/wps/x"), extra).data)


def with_archive_in_comment(other):
    """A good archive; who takes the last end record without a look at its comment's length finds the other one."""
    good = packed(THEME)
    for index in range(other.number("H", other.end + 10)):
        other.set_central(42, "I", other.local(index) + len(good), index)
    other.set_end(16, "I", other.directory + len(good))
    comment = bytes(other.data) + b"??"
    return good[:-2] + struct.pack("<H", len(comment)) + comment


def with_other_path(other):
    out = BytesIO()
    with zipfile.ZipFile(out, "w") as archive:
        for name, content in THEME.items():
            info = zipfile.ZipInfo(name)
            info.extra = unicode_path(name, other) if name == BMP else b""
            archive.writestr(info, content)
    return out.getvalue()


def good():
    save("plain.zip", packed(THEME))
    save("stored.zip", packed(THEME, method=zipfile.ZIP_STORED))
    save("folders.zip", packed({".rockbox/": b"", ".rockbox/wps/": b"", ".rockbox/icons/empty/": b"", **THEME}))
    save("comment.zip", packed(THEME, comment="Motyw Świt".encode()))
    save("longest-comment.zip", packed(THEME, comment=b"c" * 65535))
    false_end = b"PK\5\6" + bytes(16) + struct.pack("<H", 9999)
    save("false-end-in-comment.zip", packed(THEME, comment=b"look: " + false_end + b" and on"), source="plain.zip")
    for name, options in (("linked", {"mode": 0o120777}), ("encrypted", {})):
        other = Opened(theme_and(".rockbox/wps/x", b"/etc/passwd", **options))
        other.set_central(8, "H", int(name == "encrypted"), 3)
        save(f"other-archive-in-comment-{name}.zip", with_archive_in_comment(other), source="plain.zip")
    save("windows.zip", packed(THEME, attributes=0, system=0))
    save("windows-archive-bit.zip", packed(THEME, attributes=0x20, system=10))
    save("mode-without-type.zip", packed(THEME, mode=0o644))
    save("no-permissions.zip", packed({".rockbox/wps/Dawn/": b"", **THEME}, mode=0o100000))
    save("setuid.zip", packed(THEME, mode=0o104755))
    save("letters.zip", theme_and(".rockbox/wps/Żółw 😀.bmp"))
    # Names of these systems are taken for ones in an old alphabet, whatever the archive says, and become others.
    words = {".rockbox/wps/tło.bmp": b"1", ".rockbox/wps/Ļ.bmp": b"2", ".rockbox/wps/Ŀ.bmp": b"3"}
    for system, version in ((0, 20), (6, 20), (11, 50)):
        for marked in (True, False):
            archive = Opened(packed({**THEME, **words}, attributes=0, system=system))
            for index in range(6):
                archive.set_central(4, "B", version, index)
                flags = 0x800 if marked and index > 2 else 0
                archive.set_central(8, "H", flags, index).set_local(6, "H", flags, index)
            save(f"letters-{system}-{marked}.zip", bytes(archive.data))
    save("control-characters.zip", packed({**THEME, **{f".rockbox/wps/{chr(c)}{c}": b"" for c in (*range(1, 10), 127)}}))
    save("long-s.zip", theme_and(".rockbox/wps/ſ.bmp"))
    save("deep-name.zip", theme_and(".rockbox/wps/" + "d/" * 62 + "x"))
    save("double-dot-in-name.zip", theme_and(".rockbox/wps/a..b/c"))
    save("odd-names.zip", packed({**THEME, ".rockbox/wps/[a]*?.bmp": b"1", ".rockbox/wps/-o": b"2",
                                  ".rockbox/wps/x;1": b"3", ".rockbox/wps/x;2": b"4"}))
    save("doubled-slashes.zip", theme_and(".rockbox//wps//./more.bmp"))
    save("foreign-neighbour.zip", theme_and("__MACOSX/._Dawn.cfg"))
    save("same-other-path.zip", with_other_path(BMP))
    crowd = {f".rockbox/icons/{i}": b"" for i in range(4997)}
    save("5000-entries.zip", packed({**THEME, **crowd}))
    rest = sum(map(len, THEME.values()))
    save("100-MiB.zip", theme_and(".rockbox/wps/large.bmp", bytes(LIMIT - rest)))
    archive = opened()
    gap = LIMIT - 1 - len(archive.data)
    save("largest-file.zip", bytes(archive.insert(archive.directory, bytes(gap)).data))
    by_tool("zip-9.zip", ["zip", "-q", "-9", "-r", "@", ".rockbox"])
    by_tool("7z-bzip2.zip", ["7z", "a", "-tzip", "-mm=BZip2", "@", ".rockbox"])
    by_tool("bsdtar.zip", ["bsdtar", "--format", "zip", "-cf", "@", ".rockbox"])


def by_tool(name, command, inspection="", installation=None):
    """Lets another program pack the theme, which lies in the folder "theme"."""
    target = os.path.abspath(os.path.join(OUT, name))
    subprocess.run([target if word == "@" else word for word in command], cwd=os.path.join(OUT, "theme"), check=True,
                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
    expect(name, inspection, installation)


def hostile_structure():
    whole = packed(THEME)
    archive = opened()
    save("no-entries.zip", packed({}), BAD)
    save("5001-entries.zip", packed({**THEME, **{f".rockbox/icons/{i}": b"" for i in range(4998)}}), BAD)
    gap = LIMIT - len(whole)
    save("file-of-100-MiB.zip", bytes(opened().insert(archive.directory, bytes(gap)).data), BAD)
    save("no-archive.zip", b"This is no archive. " * 100, BAD)
    save("trailing-bytes.zip", whole + b"\0", BAD)
    save("prefixed.zip", b"#!/bin/sh\n" + whole, BAD)
    save("end-out-of-reach.zip", packed(THEME, comment=b"c" * 65535) + b"c", BAD)
    for name, offset, kind, value in (
            ("comment-too-short", 20, "H", 2), ("comment-too-long", 20, "H", 4), ("disk-number", 4, "H", 1),
            ("directory-disk", 6, "H", 1), ("entries-on-disk", 8, "H", 2), ("fewer-entries", 8, "I", 0x20002),
            ("directory-size", 12, "I", archive.end - archive.directory - 1), ("directory-beyond", 16, "I", 0xFFFFFFF0)):
        save(f"{name}.zip", bytes(opened(comment=b"abc").set_end(offset, kind, value).data), BAD)
    save("more-entries.zip", bytes(opened().set_end(8, "H", 4).set_end(10, "H", 4).data), BAD)
    save("before-end.zip", bytes(opened().insert(archive.end, b"????").set_end(16, "I", archive.directory).data), BAD)
    hidden = opened().insert(archive.end, b"????").set_end(16, "I", archive.directory)
    save("counted-before-end.zip", bytes(hidden.set_end(12, "I", archive.end + 4 - archive.directory).data), BAD)
    save("central-signature.zip", bytes(opened().set_central(0, "I", 0x02014B51).data), BAD)
    save("extra-past-the-end.zip", bytes(opened().set_central(30, "H", 50).data), BAD)
    unsafe_too = Opened(theme_and("../x")).set_central(30, "H", 50, 3)
    save("extra-past-the-end-first.zip", bytes(unsafe_too.data), BAD)
    save("name-past-the-file.zip", bytes(opened().set_central(28, "H", 60000).data), BAD)
    save("comment-past-the-end.zip", bytes(opened().set_central(32, "H", 1).data), BAD)
    save("local-signature.zip", bytes(opened().set_local(0, "I", 0x04034B51).data), BAD)
    save("local-beyond.zip", bytes(opened().set_central(42, "I", 0x7FFFFFFF).data), BAD)
    save("local-at-the-end.zip", bytes(opened().set_central(42, "I", len(whole) - 30).data), BAD)
    save("local-name-length.zip", bytes(opened().set_local(26, "H", len(BMP) - 1).data), BAD)
    save("local-name-differs.zip", bytes(opened().rename(BMP.encode(), b".rockbox/wps/Dawn/evil.bmp", 1).data), BAD)
    save("local-of-another.zip", bytes(opened().set_central(42, "I", 0).data), BAD)
    save("encrypted-flag.zip", bytes(opened().set_central(8, "H", 1).data), BAD)
    save("encrypted-local-flag.zip", bytes(opened().set_local(6, "H", 1).data))
    by_tool("zip-encrypted.zip", ["zip", "-q", "-P", "secret", "-D", "-r", "@", ".rockbox"], BAD)
    by_tool("7z-encrypted.zip", ["7z", "a", "-tzip", "-psecret", "@", ".rockbox/themes/Dawn.cfg"], BAD)
    by_tool("7z-aes.zip", ["7z", "a", "-tzip", "-psecret", "-mem=AES256", "@", ".rockbox/themes/Dawn.cfg"], BAD)
    by_tool("zip64.zip", ["zip", "-q", "-fz", "-r", "@", ".rockbox"], BAD)
    by_tool("split.zip", ["zip", "-q", "-0", "-s", "64k", "-r", "@", "noise"], BAD)


def hostile_names():
    save("name-too-deep.zip", theme_and(".rockbox/wps/" + "d/" * 63 + "x"), UNSAFE)
    placeholder = b".rockbox/wps/some.name"
    for name, path, message in (("cr", b".rockbox/wps/some\rname", UNSAFE), ("nul", b".rockbox/wps/some\0name", UNSAFE),
                                ("lf", b".rockbox/wps/some\nname", BAD), ("latin1", b".rockbox/wps/some\xe9name", BAD),
                                ("overlong", b".rockbox/wps/some\xc0\xaeame", BAD),
                                ("surrogate", b".rockbox/wps/som\xed\xa0\x80ame", BAD)):
        save(f"name-{name}.zip", bytes(Opened(theme_and(placeholder.decode())).rename(placeholder, path).data), message)
    nameless = Opened(packed({"x": b"", **THEME})).set_central(28, "H", 0, 0).set_central(30, "H", 1, 0)
    save("name-empty.zip", bytes(nameless.set_local(26, "H", 0, 0).set_local(28, "H", 1, 0).data), BAD)
    for name, first, second in (("case", "Theme.cfg", "theme.CFG"), ("polish", "ŻÓŁW.bmp", "żółw.bmp"),
                                ("greek", "ΣΑΣ", "σας"), ("accents", "\u00e9.bmp", "e\u0301.bmp")):
        folder = ".rockbox/wps/"
        save(f"twice-{name}.zip", packed({**THEME, folder + first: b"1", folder + second: b"2"}), BAD)
    twice = Opened(packed({**THEME, BMP[:-1] + "q": b"2"})).rename((BMP[:-1] + "q").encode(), BMP.encode())
    save("twice-equal.zip", bytes(twice.data), BAD)
    save("file-and-folder.zip", packed({**THEME, ".rockbox/icons/a": b"1", ".rockbox/icons/a/b": b"2"}), "", TOOLS_WORDS)
    for name, other in (("parent", "../x"), ("backslash", ".rockbox\\wps")):
        save(f"other-path-{name}.zip", with_other_path(other), "", UNSAFE)
    save("other-path-harmless.zip", with_other_path(BMP + "2"), "", BAD)
    save("local-other-path.zip", with_local_path(".rockbox/wps/more/x"), "", TOOLS_WORDS)
    save("one-path-twice.zip", packed({**THEME, ".rockbox/wps/x": b"1", ".rockbox/wps//x": b"2"}), "", BAD)
    deep = {f"{i}/" + "d/" * 60: b"" for i in range(90)}
    save("too-many-folders.zip", packed({**THEME, **deep}), "", CROWDED)


def hostile_kinds_and_sizes():
    for name, kind in (("link", 0o120777), ("fifo", 0o010644), ("character-device", 0o020666),
                       ("block-device", 0o060660), ("socket", 0o140755), ("unknown-kind", 0o170000)):
        save(f"{name}.zip", theme_and(".rockbox/wps/x", b"/etc/passwd", mode=kind), SPECIAL)
    by_tool("zip-link.zip", ["zip", "-q", "-y", "-r", "@", ".rockbox", "linked"], SPECIAL)
    by_tool("7z-link.zip", ["7z", "a", "-tzip", "-snl", "@", ".rockbox", "linked"], SPECIAL)
    by_tool("bsdtar-link.zip", ["bsdtar", "--format", "zip", "-cf", "@", ".rockbox", "linked"], SPECIAL)
    # Systems whose attributes are no Unix modes: an Amiga's link has other bits.
    save("amiga.zip", theme_and(".rockbox/wps/x", b"/etc/passwd", mode=0o000644, system=1))

    rest = sum(map(len, THEME.values()))
    save("100-MiB-and-1.zip", theme_and(".rockbox/wps/large.bmp", bytes(LIMIT - rest + 1)), LARGE)
    save("declared-4-GiB.zip", bytes(opened().set_central(24, "I", 0xFFFFFFFF).data), LARGE)
    lie = Opened(theme_and(".rockbox/wps/large.bmp", bytes(3 * LIMIT)))
    save("lies-about-one.zip", bytes(lie.set_central(24, "I", 9, 3).set_local(22, "I", 9, 3).data), "", LARGE)
    lies = Opened(packed({**THEME, **{f".rockbox/wps/{i}.bmp": bytes(LIMIT // 3) for i in range(9)}}))
    for index in range(3, 12):
        lies.set_central(24, "I", 9, index).set_local(22, "I", 9, index)
    save("lies-about-many.zip", bytes(lies.data), "", LARGE)
    wrong = Opened(packed({**THEME, **{".rockbox/wps/" + "n" * 200 + str(i): b"x" for i in range(500)}}))
    for index in range(3, 503):
        wrong.set_central(16, "I", 1, index).set_local(14, "I", 1, index)
    save("wrong-checksums.zip", bytes(wrong.data), "", "Program „unzip” wypisał za dużo.")
    save("wrong-checksum.zip", bytes(opened().set_central(16, "I", 1).set_local(14, "I", 1).data), "", TOOLS_WORDS)
    words = "Paczka jest spakowana nieobsługiwaną metodą ({}). Spakuj ją ponownie metodą Deflate."
    save("lzma.zip", packed(THEME, method=zipfile.ZIP_LZMA), "", words.format("LZMA"))
    for method, title in ((93, "Zstandard"), (95, "XZ"), (98, "PPMd"), (77, "nr 77")):
        mixed = Opened(packed(THEME, method=zipfile.ZIP_BZIP2)).set_central(10, "H", method).set_local(8, "H", method)
        save(f"method-{method}.zip", bytes(mixed.data), "", words.format(title))
    spoiled = opened()
    spoiled.data[spoiled.local(2) + 60:spoiled.local(2) + 80] = b"\xff" * 20
    save("spoiled-content.zip", bytes(spoiled.data), "", TOOLS_WORDS)


def wrong_packages():
    inner = {name.removeprefix(".rockbox/"): content for name, content in THEME.items()}
    save("without-rockbox.zip", packed(inner), "", "ZIP musi zawierać folder .rockbox (paczka motywu Rockbox).")
    save("rockbox-is-a-file.zip", packed({".rockbox": b"x"}), "", "Paczka nie zawiera motywu .cfg w .rockbox/themes.")
    for name, other in (("without-theme", BMP), ("theme-is-a-folder", ".rockbox/themes/D.cfg/")):
        save(f"{name}.zip", packed({WPS: b"x", other: b""}), "", "Paczka nie zawiera motywu .cfg w .rockbox/themes.")
    save("file-for-a-folder.zip", packed({CFG: b"x", ".rockbox/wps": b"x"}), "", OUTSIDE + "wps")
    save("plugin.zip", theme_and(".rockbox/rocks/x.rock"), "", OUTSIDE + "rocks")
    save("settings.zip", theme_and(".rockbox/config.cfg"), "", OUTSIDE + "config.cfg")
    save("finder-file.zip", theme_and(".rockbox/.DS_Store"), "", OUTSIDE + ".DS_Store")
    save("other-case.zip", theme_and(".rockbox/WPS2/x"), "", OUTSIDE + "WPS2")


def main():
    shutil.rmtree(OUT, ignore_errors=True)
    for name, content in {**THEME, "noise/noise": os.urandom(200_000)}.items():
        path = os.path.join(OUT, "theme", name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(content)
    os.symlink("/etc/passwd", os.path.join(OUT, "theme", "linked"))
    good()
    hostile_structure()
    hostile_names()
    hostile_kinds_and_sizes()
    wrong_packages()
    with open(os.path.join(OUT, "manifest.json"), "w", encoding="utf-8") as file:
        json.dump(manifest, file, ensure_ascii=False, indent=1)
    print(f"{len(manifest)} archives, {sum(1 for expected in manifest.values() if not expected[0])} of them well-formed")


main()

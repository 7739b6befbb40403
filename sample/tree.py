"""Puts generated files into a folder without ever touching what is not ours.

Everything is made in a folder of its own inside the destination and moved into place at
the end. A stamp lists what was placed with size and time, so that a later run can tell its
own files, as they were, from everything else: only the former are ever removed.
"""

import contextlib
import fcntl
import json
import os
import shutil

STAMP = ".marlune-sample.json"
STAGING = ".marlune-sample.part"


class Refused(Exception):
    """The destination is not ours to fill; the message is one line for the user."""


def _write_stamp(dest, content):
    path = os.path.join(dest, STAMP)
    with open(path + ".new", "w", encoding="utf-8") as out:
        json.dump(content, out, ensure_ascii=False)
        out.flush()
        os.fsync(out.fileno())
    os.replace(path + ".new", path)


def _read_stamp(dest):
    try:
        with open(os.path.join(dest, STAMP), encoding="utf-8") as source:
            stamp = json.load(source)
        return stamp if isinstance(stamp, dict) and isinstance(stamp.get("files"), dict) else None
    except (OSError, ValueError):
        return None


def _own(path, size, mtime_ns):
    try:
        info = os.lstat(path)
    except OSError:
        return False
    return info.st_size == size and info.st_mtime_ns == mtime_ns


def _complete(dest, stamp, kind, keep):
    """Whether the stamp is of a finished run of this kind and what it must not lack is there."""
    return (
        stamp is not None
        and stamp.get("state") == "complete"
        and stamp.get("kind") == kind
        and all(
            os.path.lexists(os.path.join(dest, name)) for name in stamp["files"] if not keep or name.startswith(keep)
        )
    )


def _remove_own(dest, stamp):
    folders = set()
    for name, (size, mtime_ns) in stamp["files"].items():
        path = os.path.join(dest, name)
        if _own(path, size, mtime_ns):
            os.unlink(path)
        folder = os.path.dirname(name)
        while folder:
            folders.add(folder)
            folder = os.path.dirname(folder)
    folders.update(stamp.get("folders", ()))
    for folder in sorted(folders, key=len, reverse=True):
        with contextlib.suppress(OSError):  # not empty: something of the user's lies in it
            os.rmdir(os.path.join(dest, folder))


def _scan(root):
    """All files (with size and time) and all folders below a folder, as relative paths."""
    files, folders = {}, []
    for folder, names, file_names in os.walk(root):
        names.sort()
        below = os.path.relpath(folder, root)
        below = "" if below == "." else below + "/"
        folders += [below + name for name in names]
        for name in sorted(file_names):
            info = os.lstat(os.path.join(folder, name))
            files[below + name] = [info.st_size, info.st_mtime_ns]
    return files, folders


def fill(dest, kind, make, keep=()):
    """Fills dest by make(staging folder), unless a finished run of the same kind is there.

    kind: names the generator's version and its parameters.
    keep: a tuple of prefixes; only files below them count when asking whether the tree is still
    whole (the rest, say the iPod's music, may have been changed by whoever used it).
    Returns whether anything was made. Raises Refused when dest has foreign content."""
    os.makedirs(dest, exist_ok=True)
    lock = os.open(dest, os.O_RDONLY | os.O_DIRECTORY)
    try:
        fcntl.flock(lock, fcntl.LOCK_EX)  # of two runs at once the second finds the tree complete
        return _fill_locked(dest, kind, make, keep)
    finally:
        os.close(lock)


def _fill_locked(dest, kind, make, keep):
    staging = os.path.join(dest, STAGING)
    stamp = _read_stamp(dest)
    if _complete(dest, stamp, kind, keep):
        return False
    if stamp is None and set(os.listdir(dest)) - {STAGING, STAMP + ".new"}:
        raise Refused(f"{dest} has files that this program did not make; give an empty or new folder")
    if os.path.islink(staging):
        raise Refused(f"{staging} is a link; remove it first")
    if os.path.isdir(staging):  # left by an interrupted run
        shutil.rmtree(staging)
    os.mkdir(staging)
    try:
        make(staging)
        files, folders = _scan(staging)
        if stamp:
            _remove_own(dest, stamp)
        content = {"kind": kind, "state": "placing", "files": files, "folders": folders}
        _write_stamp(dest, content)
        for folder in folders:
            os.makedirs(os.path.join(dest, folder), exist_ok=True)
        kept = []
        for name in files:
            target = os.path.join(dest, name)
            if os.path.lexists(target):  # changed by the user since an earlier run
                kept.append(name)
            else:
                os.rename(os.path.join(staging, name), target)
        for name in kept:
            del files[name]
        content["state"] = "complete"
        _write_stamp(dest, content)
    finally:
        shutil.rmtree(staging, ignore_errors=True)
    return True

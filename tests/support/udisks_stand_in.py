#!/usr/bin/python3
"""Answers as the disk service UDisks2 does for one iPod, on the bus of a test.

Each call that matters is written to a log as one line: the method, the object, the options, and whether the caller
(the parent process) had anything open on the disk. Prints "ready" once it can be called. The layout of objects and the
names of errors are those of the UDisks2 D-Bus reference.
"""
import argparse
import os
import sys

import dbus
import dbus.bus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

SERVICE = "org.freedesktop.UDisks2"
ROOT = "/org/freedesktop/UDisks2"
DRIVE = ROOT + "/drives/iPod_1"


def parse_arguments():
    parser = argparse.ArgumentParser()
    parser.add_argument("--address", required=True)
    parser.add_argument("--log", required=True)
    parser.add_argument("--mount-point-file", required=True, help="holds the bytes of the iPod's mount point")
    parser.add_argument("--no-drive", action="store_true")
    for step in ("unmount", "eject"):
        parser.add_argument(f"--{step}-error", help="D-Bus error name to answer with")
        parser.add_argument(f"--{step}-delay", type=float, default=0, help="seconds before the answer")
        parser.add_argument(f"--{step}-exit", action="store_true", help="die instead of answering")
    arguments = parser.parse_args()
    with open(arguments.mount_point_file, "rb") as file:
        arguments.mount_point = file.read()
    return arguments


class Log:
    def __init__(self, path):
        self.path = path

    def add(self, line):
        with open(self.path, "a", encoding="utf-8") as file:
            file.write(line + "\n")


def open_on(mount_point):
    """How many descriptors the parent process holds on the disk."""
    folder = f"/proc/{os.getppid()}/fd"
    count = 0
    for name in os.listdir(folder):
        try:
            target = os.readlink(os.fsencode(os.path.join(folder, name)))
        except OSError:
            continue
        count += target == mount_point or target.startswith(mount_point + b"/")
    return count


def answer(error, delay, exits, done, failed):
    if exits:
        os._exit(1)

    def reply():
        if error:
            failed(dbus.DBusException("the service's own words", name=error))
        else:
            done()
        return False

    GLib.timeout_add(int(delay * 1000), reply)


class FileSystem(dbus.service.Object):
    def __init__(self, bus, path, arguments, log, mount_points, drive):
        super().__init__(bus, path)
        self.path, self.arguments, self.log = path, arguments, log
        self.mount_points, self.drive = mount_points, drive

    def interfaces(self):
        points = [dbus.Array([dbus.Byte(b) for b in point + b"\0"], signature="y") for point in self.mount_points]
        return {
            SERVICE + ".Block": dbus.Dictionary({"Drive": dbus.ObjectPath(self.drive)}, signature="sv"),
            SERVICE + ".Filesystem": dbus.Dictionary(
                {"MountPoints": dbus.Array(points, signature="ay")}, signature="sv"),
        }

    @dbus.service.method(SERVICE + ".Filesystem", in_signature="a{sv}", async_callbacks=("done", "failed"))
    def Unmount(self, options, done, failed):
        self.log.add(f"Unmount {os.path.basename(self.path)} {dict(options)} open={open_on(self.arguments.mount_point)}")
        given = self.arguments
        answer(given.unmount_error, given.unmount_delay, given.unmount_exit, done, failed)


class Drive(dbus.service.Object):
    def __init__(self, bus, arguments, log):
        super().__init__(bus, DRIVE)
        self.arguments, self.log = arguments, log

    @dbus.service.method(SERVICE + ".Drive", in_signature="a{sv}", async_callbacks=("done", "failed"))
    def Eject(self, options, done, failed):
        self.log.add(f"Eject {os.path.basename(DRIVE)} {dict(options)}")
        given = self.arguments
        answer(given.eject_error, given.eject_delay, given.eject_exit, done, failed)


class Manager(dbus.service.Object):
    def __init__(self, bus, file_systems):
        super().__init__(bus, ROOT)
        self.file_systems = file_systems

    @dbus.service.method("org.freedesktop.DBus.ObjectManager", out_signature="a{oa{sa{sv}}}")
    def GetManagedObjects(self):
        objects = {dbus.ObjectPath(item.path): item.interfaces() for item in self.file_systems}
        objects[dbus.ObjectPath(DRIVE)] = {
            SERVICE + ".Drive": dbus.Dictionary({"Ejectable": True, "Vendor": "Apple"}, signature="sv")}
        return objects


def main():
    arguments = parse_arguments()
    log = Log(arguments.log)
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    bus = dbus.bus.BusConnection(arguments.address)
    asked = arguments.mount_point
    blocks = ROOT + "/block_devices/"
    # Neighbours whose mount points begin like the asked one, or end like it, must be left alone.
    file_systems = [
        FileSystem(bus, blocks + "sda1", arguments, log, [asked + b"2", asked[:-1]], ROOT + "/drives/other"),
        FileSystem(bus, blocks + "sdb1", arguments, log, [], DRIVE),
        FileSystem(bus, blocks + "sdb2", arguments, log, [b"/elsewhere", asked], "/" if arguments.no_drive else DRIVE),
        FileSystem(bus, blocks + "sdc1", arguments, log, [b"/mnt" + asked], ROOT + "/drives/other"),
    ]
    kept = (Manager(bus, file_systems), Drive(bus, arguments, log))
    bus.request_name(SERVICE)
    print("ready", flush=True)
    GLib.MainLoop().run()
    del kept


if __name__ == "__main__":
    sys.exit(main())

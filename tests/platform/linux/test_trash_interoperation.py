#!/usr/bin/python3
"""What other programs make of files that were moved to the Trash: they show them, and bring them back to the byte.

usage: test_trash_interoperation.py TRASH-MOVER. Needs trash-list, trash-restore, gio with gvfs, dbus-run-session;
exit status 77 without one of them.
"""

import datetime
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
import urllib.parse
from pathlib import Path

MOVER = Path(sys.argv.pop(1)).resolve()
NAMES = [b"plain.log", b"two\nlines.log", b"\n", b"space and 100%.log", "größe 🗑.log".encode(), b"a=b;c#d?e&f[g].log",
         b"-rf", b".hidden", b"trailing ", b"x" * 255, b"y" * 251 + b".log", "é".encode() * 127, b"%41.log"]
NO_TEXT = b"\xff\xfe\x80.log"  # which trash-restore brings back with replacement characters


class Interoperation(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="ombrel-trash-")
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name).resolve()
        self.home, self.place, run = (self.root / name for name in ("home", "place", "run"))
        for made in (self.home, self.place, run):
            made.mkdir(mode=0o700)
        self.trash = self.home / ".local/share/Trash"
        self.environment = {"HOME": str(self.home), "PATH": os.environ["PATH"], "XDG_RUNTIME_DIR": str(run), "LC_ALL": "C.UTF-8",
                            "TZ": "XYZ-11"}
        self.inodes, self.dates = {}, {}
        for name in [*NAMES, NO_TEXT]:
            self.move(name, b"contents of " + name + b"\0\xff\r\n")

    def path(self, name):
        return os.path.join(os.fsencode(self.place), name)

    def move(self, name, contents):
        path = self.path(name)
        with open(path, "wb") as file:
            file.write(contents)
        self.inodes[name] = os.stat(path).st_ino
        zone = datetime.timezone(datetime.timedelta(hours=11))
        before = datetime.datetime.now(zone).replace(tzinfo=None, microsecond=0)
        subprocess.run([MOVER, path, self.trash], check=True, env=self.environment)
        self.dates[name] = (before, datetime.datetime.now(zone).replace(tzinfo=None))
        self.assertFalse(os.path.lexists(path))

    def run_program(self, *command, answer=""):
        return subprocess.run(command, env=self.environment, cwd=self.place, input=os.fsencode(answer), check=True, timeout=60,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout

    def check_date(self, name, text):
        before, after = self.dates[name]
        told = datetime.datetime.fromisoformat(text)
        self.assertLessEqual(before, told)
        self.assertLessEqual(told, after)

    def test_files_and_info_hold_the_bytes_of_each_name(self):
        origins = set()
        for file in os.scandir(os.fsencode(self.trash / "files")):
            info = (Path(os.fsdecode(file.path)).parent.parent / "info" / (os.fsdecode(file.name) + ".trashinfo")).read_bytes()
            path = urllib.parse.unquote_to_bytes(re.search(rb"^Path=(.*)$", info, re.MULTILINE)[1])
            name = os.path.basename(path)
            self.assertEqual(path, self.path(name))
            self.assertEqual(file.inode(), self.inodes[name])
            if len(name) <= 245:
                self.assertEqual(file.name, name)
            origins.add(name)
        self.assertEqual(origins, {*NAMES, NO_TEXT})

    def test_trash_list_shows_each_with_its_origin_and_date(self):
        shown = self.run_program("trash-list")
        pattern = re.compile(rb"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d) " + re.escape(os.fsencode(self.place)) +
                             rb"/(.*?)\n(?=\d{4}-\d\d-\d\d \d\d:\d\d:\d\d /|\Z)", re.DOTALL)
        found = {name: date.decode() for date, name in pattern.findall(shown)}
        for name in NAMES:
            self.assertIn(name, found)
            self.check_date(name, found[name])

    def test_gio_shows_each_with_its_origin_and_date(self):
        script = 'gio trash --list && for uri; do gio info -a trash::orig-path,trash::deletion-date "$uri" || exit 1; done'
        uris = ["trash:///" + urllib.parse.quote(file.name) for file in os.scandir(os.fsencode(self.trash / "files"))]
        shown = self.run_program("dbus-run-session", "--", "bash", "-c", script, "bash", *uris).decode()
        origins = [line.split("\t", 1)[1] for line in shown.splitlines() if line.startswith("trash:///")]
        self.assertEqual({unescaped(origin) for origin in origins}, {self.path(name) for name in [*NAMES, NO_TEXT]})
        dated = re.findall(r"trash::orig-path: (.*)\n +trash::deletion-date: (\S+)\n", shown)
        self.assertEqual(len(dated), len(NAMES) + 1)
        for origin, date in dated:
            self.check_date(os.path.basename(unescaped(origin)), date)

    def test_trash_restore_brings_each_back_to_the_byte(self):
        for name in NAMES:
            listed = self.run_program("trash-restore", answer="\n")
            choices = re.findall(rb"^ *(\d+) \d{4}-\d\d-\d\d \d\d:\d\d:\d\d " + re.escape(self.path(name)) + rb"$", listed,
                                 re.MULTILINE)
            self.assertTrue(choices, name)
            self.run_program("trash-restore", answer=choices[0].decode() + "\n")
            with open(self.path(name), "rb") as file:
                self.assertEqual(file.read(), b"contents of " + name + b"\0\xff\r\n")
                self.assertEqual(os.fstat(file.fileno()).st_ino, self.inodes[name])
        self.assertEqual(os.listdir(os.fsencode(self.trash / "files")), [NO_TEXT])
        self.assertEqual(os.listdir(os.fsencode(self.trash / "info")), [NO_TEXT + b".trashinfo"])

    def test_files_of_one_name_are_all_brought_back(self):
        for number in range(2, 5):
            self.move(b"plain.log", f"the {number}".encode())
        restored = set()
        for _number in range(4):
            listed = self.run_program("trash-restore", answer="\n")
            choice = re.search(rb"^ *(\d+) \S+ \S+ " + re.escape(self.path(b"plain.log")) + rb"$", listed, re.MULTILINE)[1]
            self.run_program("trash-restore", answer=choice.decode() + "\n")
            path = self.path(b"plain.log")
            with open(path, "rb") as file:
                restored.add(file.read())
            os.remove(path)
        self.assertEqual(restored, {b"contents of plain.log\0\xff\r\n", b"the 2", b"the 3", b"the 4"})


def unescaped(text):
    """gio writes bytes that cannot be printed as \\xff, and a backslash as it is."""
    return re.sub(rb"\\x([0-9a-f]{2})", lambda match: bytes([int(match[1], 16)]), os.fsencode(text))


if __name__ == "__main__":
    missing = [name for name in ("trash-list", "trash-restore", "gio", "dbus-run-session") if not shutil.which(name)]
    if not Path("/usr/libexec/gvfsd-trash").exists():
        missing.append("gvfsd-trash")
    if missing:
        print("skipped:", ", ".join(missing), "missing")
        sys.exit(77)
    unittest.main()

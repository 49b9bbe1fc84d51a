"""A made-up Linux home folder with the places of linux_home_table, and what the application says of it."""

import json
import os
import shutil
import subprocess
import tempfile
import time
import unittest
import urllib.parse
from pathlib import Path

from application import PROGRAM
from linux_home_table import GUIDE_IDS, PLACES, REVIEW, SYSTEM_IDS

DAY = 86400
KIB = 1 << 10


def shown(path):
    """A path as JSON shows it."""
    return os.fsencode(path).decode(errors="replace")


def set_back(path, days):
    """The folder or file and all below it becomes so old; an hour more, since a test takes time."""
    moment = time.time() - days * DAY - 3600
    for folder, folders, files in os.walk(os.fsencode(path), topdown=False):
        for name in files + folders:
            os.utime(os.path.join(folder, name), (moment, moment), follow_symlinks=False)
    os.utime(path, (moment, moment), follow_symlinks=False)


def fill(path, content):
    """Makes the file or the folder of a place."""
    path = os.fsencode(path)
    os.makedirs(os.path.dirname(path) if isinstance(content, (int, str)) else path, exist_ok=True)
    if isinstance(content, int):
        with open(path, "wb") as file:
            os.posix_fallocate(file.fileno(), 0, content * KIB)
    elif isinstance(content, str):
        os.symlink(content, path)
    else:
        for name, inner in content.items():
            fill(os.path.join(path, os.fsencode(name)), inner)


def remove(folder):
    """Also with folders inside that nobody may write to."""
    for place, _folders, _files in os.walk(os.fsencode(folder)):
        if not os.path.islink(place):
            os.chmod(place, 0o700)
    shutil.rmtree(folder)


def make_linux_home(home):
    """Makes the folder with all `PLACES`, everything a hundred days old."""
    for place in PLACES:
        fill(os.path.join(os.fsencode(home), os.fsencode(place.path)), place.content)
    fill(home / REVIEW, 30 * 1024)

    # Flatpak stores a file once and links it wherever it is used.
    flatpak = home / ".local/share/flatpak"
    os.link(flatpak / "repo/objects/00/11.file", flatpak / "app/org.example.Viewer/current/active/files/library.so")
    os.link(flatpak / "repo/objects/00/11.file", flatpak / "runtime/org.example.Platform/files/library.so")
    os.symlink("42", home / "snap/player/current")  # the same Trash under a second name
    os.symlink("../libvirt/images/debian.qcow2", home / ".local/share/boxes/link.qcow2")
    os.symlink("Painter.deb", home / "Downloads/link.deb")
    set_back(home, 100)

    # Young things beside old ones.
    for name, kib, days in (("Downloads/young.deb", 6 * 1024, 20), ("Downloads/young.part", 5 * 1024, 13),
                            ("Downloads/due.snap", 5 * 1024, 21), ("Downloads/due.aria2", 5 * 1024, 14)):
        fill(home / name, kib)
        set_back(home / name, days)
    fill(home / ".cache/fresh", {"data": 1024})
    fill(home / ".cache/touched", {"old": 1024, "inner/young": 4})
    set_back(home / ".cache/touched", 100)
    set_back(home / ".cache/touched/inner/young", 1)

    # As Go leaves its modules.
    for folder, _folders, files in os.walk(home / "go/pkg/mod", topdown=False):
        for name in files:
            os.chmod(os.path.join(folder, name), 0o444)
        os.chmod(folder, 0o555)


def guide_of(home):
    """The paths of each entry that has something in the home folder."""
    paths = {}
    for place in PLACES:
        if place.guide:
            paths.setdefault(place.guide, []).append(os.path.join(os.fsencode(home), os.fsencode(place.path)))
    return paths


class Space:
    """Mounts of its own for the programs that run in it: `/var` is empty there, and so is the folder of Ollama's service."""

    def __init__(self):
        mounts = "mount -t tmpfs tmpfs /var && { [ ! -d /usr/share/ollama ] || mount -t tmpfs tmpfs /usr/share/ollama; }"
        kind = [] if os.geteuid() == 0 else ["--user", "--map-root-user"]
        self._process = subprocess.Popen(
            ["unshare", *kind, "--mount", "--propagation", "private", "sh", "-c", f"{mounts} && echo ready && exec cat"],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self._enter = ["nsenter", f"--target={self._process.pid}", "--mount", f"--wd={Path.cwd()}"]
        if kind:
            self._enter[2:2] = ["--user", "--preserve-credentials"]
        self.is_private = self._process.stdout.readline() == b"ready\n"
        if not self.is_private:
            self._enter = []

    def close(self):
        self._process.stdin.close()
        self._process.stdout.close()
        self._process.wait(10)

    def path(self, name):
        """A path of the space, for the tests themselves."""
        return Path(f"/proc/{self._process.pid}/root{name}")

    def run(self, command, cwd=None, **options):
        enter = [f"--wd={cwd}" if cwd and part.startswith("--wd=") else part for part in self._enter]
        return subprocess.run([*enter, *command], cwd=cwd, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, timeout=120, **options)


def searched_for_images(path):
    """Images of disks are searched for in the folder that holds the folders here; others are named themselves."""
    for middle in ("/libvirt/images/", "/images/", "/boxes/", "/a/b/c/"):
        head, found, _ = os.fsdecode(path).partition(middle)
        if found and os.fsdecode(path).endswith((".qcow2", ".vdi", ".vmdk")):
            return Path(head)
    return path


def path_of(candidate):
    """As text; bytes that are not valid UTF-8 become replacement characters."""
    return candidate.get("path") or urllib.parse.unquote(candidate["pathEncoded"], errors="replace")


class LinuxCase(unittest.TestCase):
    """One space and one copy of the program for a class, that an ordinary user can start too; a home folder for a test."""

    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.folder = Path(tempfile.mkdtemp(prefix="ombrel-e2e-", dir="/tmp"))
        cls.addClassCleanup(remove, cls.folder)
        cls.folder.chmod(0o755)
        cls.program = Path(shutil.copy(PROGRAM, cls.folder / "ombrel"))
        cls.space = Space()
        cls.addClassCleanup(cls.space.close)

    def setUp(self):
        self.home = self.folder / "home"
        self.home.mkdir()
        self.addCleanup(remove, self.home)

    def report(self, *prefix, cwd=None, **environment):
        """What the program says in a bare environment; `prefix` is what starts it."""
        result = self.space.run([*prefix, self.program, "--report=json"], cwd=cwd or self.folder, env={
            "PATH": os.environ["PATH"], "HOME": str(self.home), "TMPDIR": "/tmp", "LANG": "C.UTF-8", **environment})
        self.assertEqual((result.returncode, result.stderr), (0, b""))
        return json.loads(result.stdout)

    def entry(self, report, guide):
        found = [each for each in report["guide"] if each["guideId"] == guide]
        self.assertEqual(len(found), 1, guide)
        return found[0]

    def du(self, paths):
        """The bytes that the paths occupy together."""
        result = self.space.run(["du", "-x", "-s", "-c", "-B1", "--", *paths])
        self.assertEqual((result.returncode, result.stderr), (0, b""))
        return int(result.stdout.splitlines()[-1].split(b"\t")[0])

    def said_of(self, entry):
        paths = sorted(entry["paths"])
        return entry["stateId"], paths, entry["occupied"] if paths else entry["occupied"].get("bytes", 0)

    def expected_of(self, paths):
        named = sorted({shown(searched_for_images(path)) for path in paths})
        return ("checked", named, {"kind": "exact", "bytes": self.du(paths)}) if paths else \
            ("notPresent", [], 0)

    def assert_measured(self, report, guide, paths):
        """The entry names exactly these paths and tells what they occupy; without paths, it says that there is nothing."""
        self.assertEqual(self.said_of(self.entry(report, guide)), self.expected_of(paths), guide)

    def assert_guide(self, report, paths):
        """Every entry of the guide, by the paths of those that have something to measure."""
        guides = [guide for guide in GUIDE_IDS if self.space.is_private or guide not in SYSTEM_IDS]
        self.assertEqual({guide: self.said_of(self.entry(report, guide)) for guide in guides},
                         {guide: self.expected_of(paths.get(guide, [])) for guide in guides})

    def movable(self, report):
        return sorted(path_of(each) for each in report["candidates"] if each["dispositionId"] == "directTrash")

    def assert_movable(self, report, *names):
        self.assertEqual(self.movable(report), sorted(shown(os.path.join(os.fsencode(self.home), os.fsencode(name)))
                                                      for name in names))

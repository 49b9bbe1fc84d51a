"""Places on Linux that cannot be read, that other disks are mounted in, or that belong to the system."""

import os
import unittest

from linux_home import LinuxCase, fill, set_back
from linux_home_table import GUIDE_IDS

ORDINARY_USER = ("setpriv", "--reuid=65534", "--regid=65534", "--clear-groups")


@unittest.skipUnless(os.geteuid() == 0, "only root can become another user")
class Unreadable(LinuxCase):
    def make(self, name, content=None):
        path = self.home / name
        fill(path, {"data": 40, "inner/more": 12} if content is None else content)
        set_back(self.home, 100)
        self.space.run(["chown", "-R", "65534:65534", self.home])
        return path

    def report_as_user(self):
        self.assertEqual(self.space.run([*ORDINARY_USER, "id", "-u"]).stdout, b"65534\n")
        return self.report(*ORDINARY_USER)

    def test_a_place_that_may_not_be_read_needs_permission(self):
        for name, guide in ((".cache/pip", "pip"), (".cache/thumbnails", "thumbnails"), (".cargo/registry", "cargo"),
                            (".local/share/Trash", "trash"), ("go/pkg/mod", "goModules"), (".cache/mozilla", "browserCaches"),
                            (".cache/huggingface/hub", "huggingface"), ("VirtualBox VMs", "virtualMachines")):
            with self.subTest(name=name):
                path = self.make(name)
                path.chmod(0)
                entry = self.entry(self.report_as_user(), guide)
                path.chmod(0o755)
                self.assertEqual(entry["stateId"], "permissionNeeded")
                self.assertNotEqual(entry["occupied"]["kind"], "exact")

    def test_a_place_behind_a_folder_that_may_not_be_searched_is_not_called_absent(self):
        self.make(".cargo/registry")
        (self.home / ".cargo").chmod(0)
        entry = self.entry(self.report_as_user(), "cargo")
        (self.home / ".cargo").chmod(0o755)
        self.assertEqual(entry["stateId"], "permissionNeeded")

    def test_what_is_readable_of_a_place_is_a_lower_bound(self):
        path = self.make(".cache/pip", {"open/data": 400, "closed/data": 80})
        (path / "closed").chmod(0)
        entry = self.entry(self.report_as_user(), "pip")
        (path / "closed").chmod(0o755)
        self.assertIn(entry["stateId"], ("permissionNeeded", "limited"))
        self.assertEqual(entry["occupied"]["kind"], "atLeast")
        self.assertGreaterEqual(entry["occupied"]["bytes"], 400 << 10)
        self.assertLessEqual(entry["occupied"]["bytes"], self.du([path]) - (80 << 10))

    def test_files_that_may_not_be_read_are_measured_all_the_same(self):
        path = self.make(".cache/pip")
        (path / "data").chmod(0)
        self.assert_measured(self.report_as_user(), "pip", [path])

    def test_folders_that_nobody_may_write_to_are_measured(self):
        path = self.make("go/pkg/mod", {"example.com/tiny@v1.0.0/tiny.go": 4, "example.com/tiny@v1.0.0/inner/more.go": 8})
        for folder, _folders, _files in os.walk(path, topdown=False):
            os.chmod(folder, 0o555)
        self.assert_measured(self.report_as_user(), "goModules", [path])

    def test_a_download_folder_that_may_not_be_read_offers_nothing(self):
        path = self.make("Downloads", {"old.deb": 5 * 1024})
        self.assertEqual(self.movable(self.report_as_user()), [str(path / "old.deb")])
        path.chmod(0)
        report = self.report_as_user()
        path.chmod(0o755)
        self.assertEqual(report["candidates"], [])


class Mounted(LinuxCase):
    """Other file systems inside of the home folder."""

    def setUp(self):
        super().setUp()
        if not self.space.is_private:
            self.skipTest("needs mounts of its own")

    def mount(self, name):
        """Puts a file system with an old file into the folder."""
        path = self.home / name
        path.mkdir(parents=True, exist_ok=True)
        self.assertEqual(self.space.run(["mount", "-t", "tmpfs", "tmpfs", path]).stderr, b"")
        self.addCleanup(self.space.run, ["umount", path])
        inside = self.space.path(str(path))
        fill(inside / "data", 4096)
        fill(inside / "old.log", 1024)
        set_back(inside, 100)
        self.assertTrue((inside / "data").exists())
        self.assertFalse((path / "data").exists())
        return path

    def test_what_is_mounted_in_the_cache_folder_is_neither_entered_nor_counted(self):
        old = self.home / ".cache/old-app"
        fill(old, {"data": 40})
        set_back(self.home, 100)
        self.mount(".cache/doc")
        self.mount(".cache/other-mount")
        report = self.report()
        self.assert_guide(report, {"appCaches": [old]})
        self.assertEqual(report["candidates"], [])

    def test_what_is_mounted_inside_of_a_place_is_not_counted(self):
        for name, guide in ((".cache/pip", "pip"), (".cache/old-app", "appCaches"), (".local/share/Trash", "trash"),
                            (".cargo/registry", "cargo")):
            with self.subTest(name=name):
                place = self.home / name
                fill(place, {"data": 40, "inner/mounted": {}, "inner/more": 12})
                set_back(self.home, 100)
                self.mount(f"{name}/inner/mounted")
                self.assert_measured(self.report(), guide, [place])
                self.assertLess(self.du([place]), 1 << 20)

    def test_a_mount_inside_of_a_place_does_not_count_itself(self):
        # Unlike the root of a tmpfs, a folder and a file that are bound from a disk occupy some of it.
        disk = self.folder / "disk"
        self.addCleanup(self.space.run, ["rm", "-rf", disk])
        fill(disk, {"folder/inner": 4, "file": 80})
        place = self.mount(".cargo/registry")
        inside = self.space.path(str(place))
        fill(inside, {"folder": {}, "file": 4})
        for name in ("folder", "file"):
            self.assertEqual(self.space.run(["mount", "--bind", disk / name, place / name]).stderr, b"")
            self.addCleanup(self.space.run, ["umount", place / name])
            self.assertGreater(os.lstat(disk / name).st_blocks, 0)
        self.assert_measured(self.report(), "cargo", [place])

    def test_a_disk_image_on_another_file_system_is_not_counted(self):
        own = self.home / ".local/share/images/own.qcow2"
        fill(own, 64)
        other = self.mount(".local/share/images/other")
        fill(self.space.path(str(other)) / "other.qcow2", 64)
        self.assert_measured(self.report(), "virtualMachines", [own])


class SystemPlaces(LinuxCase):
    PLACES = {"coreDumps": ["/var/crash", "/var/lib/systemd/coredump"],
              "journal": ["/var/log/journal"],
              "aptArchives": ["/var/cache/apt/archives"],
              "dnfCache": ["/var/cache/dnf"],
              "pacmanCache": ["/var/cache/pacman/pkg"],
              "flatpak": ["/var/lib/flatpak"],
              "snap": ["/var/lib/snapd/snaps"],
              "docker": ["/var/lib/docker"],
              "ollama": ["/usr/share/ollama/.ollama/models"]}

    def setUp(self):
        super().setUp()
        if not self.space.is_private:
            self.skipTest("needs mounts of its own")
        # What is not known here is not measured by anything.
        for neighbour in ("/var/lib/postgresql", "/var/cache/man", "/var/log/apt", "/var/lib/systemd/timers"):
            fill(self.space.path(neighbour), {"old.log": 1024})
        set_back(self.space.path("/var"), 100)
        self.addCleanup(self.space.run, ["sh", "-c", "rm -rf /var/*"])

    def make(self, name, kib=40):
        path = self.space.path(name)
        fill(path, {"data": kib, "inner/more": 12, "empty": {}})
        os.link(path / "data", path / "inner/linked")
        set_back(path, 100)

    def have_ollama(self):
        """Puts a file system over that of the shared files, for its folder."""
        self.assertEqual(self.space.run(["mount", "-t", "tmpfs", "tmpfs", "/usr/share"]).stderr, b"")
        self.addCleanup(self.space.run, ["umount", "/usr/share"])

    def test_each_is_measured_by_its_entry_alone(self):
        self.have_ollama()
        for guide, names in self.PLACES.items():
            with self.subTest(guide=guide):
                for name in names:
                    self.make(name)
                report = self.report()
                self.assert_guide(report, {guide: names})
                self.assertEqual(report["candidates"], [])
                for name in names:
                    self.space.run(["rm", "-rf", name])

    def test_all_of_them_together(self):
        self.have_ollama()
        for number, name in enumerate(name for names in self.PLACES.values() for name in names):
            self.make(name, 40 + 4 * number)
        self.assert_guide(self.report(), self.PLACES)

    def test_places_of_the_system_and_of_the_home_folder_count_together(self):
        self.have_ollama()
        for guide, below in (("coreDumps", "core.99"), ("flatpak", ".local/share/flatpak"), ("ollama", ".ollama/models")):
            with self.subTest(guide=guide):
                for name in self.PLACES[guide]:
                    self.make(name)
                own = self.home / below
                fill(own, 64 if guide == "coreDumps" else {"data": 64})
                self.assert_measured(self.report(), guide, [*self.PLACES[guide], own])

    @unittest.skipUnless(os.geteuid() == 0, "only root can become another user")
    def test_those_that_only_root_may_read_need_permission(self):
        self.space.run(["chown", "-R", "65534:65534", self.home])
        self.space.run(["chmod", "755", "/var"])
        for guide, names in self.PLACES.items():
            if guide == "ollama":
                continue
            with self.subTest(guide=guide):
                for name in names:
                    self.make(name)
                    self.space.path(name).chmod(0o700)
                entry = self.entry(self.report(*ORDINARY_USER), guide)
                self.assertEqual(entry["stateId"], "permissionNeeded")
                self.assertNotEqual(entry["occupied"]["kind"], "exact")

    def test_no_variable_of_a_home_folder_moves_them(self):
        self.make("/var/cache/apt/archives")
        report = self.report(XDG_CACHE_HOME=str(self.home / "a"), XDG_DATA_HOME=str(self.home / "b"))
        self.assert_measured(report, "aptArchives", self.PLACES["aptArchives"])
        self.assertEqual(len(report["guide"]), len(GUIDE_IDS))


if __name__ == "__main__":
    unittest.main()

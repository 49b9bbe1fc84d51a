"""What is said of a Linux home folder: what may move, what is measured, and what is never offered."""

import os
import unittest

from linux_home import KIB, LinuxCase, fill, guide_of, make_linux_home, path_of, set_back, shown
from linux_home_table import (COMMANDS, GUIDE_IDS, MAY_BE_REVIEWED, MOVABLE, MOVABLE_PATHS, PLACES, PROTECTED, REVIEW)


def counted(path):
    """What a place occupies, counted with other means than `du`."""
    seen, total = set(), 0
    folders = [[path]]
    for folder, names, files in os.walk(path):
        folders.append([os.path.join(folder, name) for name in names + files])
    for each in (path for paths in folders for path in paths):
        facts = os.lstat(each)
        if facts.st_ino not in seen:
            seen.add(facts.st_ino)
            total += facts.st_blocks * 512
    return total


def files_of(content):
    """The KiB of the files in the content of a place."""
    return content if isinstance(content, int) else sum(files_of(each) for each in content.values()
                                                        if not isinstance(each, str))


class FullHome(LinuxCase):
    """The home folder of the table, which no test changes."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.home = cls.folder / "home"
        make_linux_home(cls.home)
        if cls.space.is_private:  # else it is not known what is installed for everybody
            cls.space.path("/var/lib/flatpak").mkdir(parents=True)

    def setUp(self):
        pass

    def path_of(self, place):
        return os.path.join(os.fsencode(self.home), os.fsencode(place.path))

    def test_the_home_is_what_the_table_says(self):
        self.assertGreaterEqual(len(PLACES), 60)
        self.assertLess(self.du([self.home]), 300 << 20)
        for place in PLACES:
            with self.subTest(path=place.path):
                path = self.path_of(place)
                occupied = self.du([path])
                self.assertEqual(occupied, counted(path))
                around = sum(os.lstat(os.path.join(folder, name)).st_blocks * 512
                             for folder, folders, files in os.walk(path) for name in folders + files
                             if not os.path.isfile(os.path.join(folder, name)) or
                             os.path.islink(os.path.join(folder, name)))
                if os.path.isdir(path):
                    around += os.lstat(path).st_blocks * 512
                self.assertEqual(occupied, files_of(place.content) * KIB + around)

    def test_only_what_is_meant_to_move_is_movable(self):
        report = self.report()
        self.assert_movable(report, *MOVABLE_PATHS)
        by_path = {path_of(each): each for each in report["candidates"]}
        self.assertEqual(by_path[str(self.home / "Library/Logs/old.log")]["categoryId"], "log")
        self.assertEqual(by_path[str(self.home / "Downloads/Painter.flatpak")]["categoryId"], "installer")
        self.assertEqual(by_path[str(self.home / "Downloads/film.mkv.!qB")]["categoryId"], "interruptedDownload")

    def test_what_is_protected_or_measured_is_no_candidate_of_any_kind(self):
        report = self.report()
        found = {path_of(each) for each in report["candidates"]}
        self.assertIn(str(self.home / REVIEW), found)
        may = {str(self.home / name) for name in MAY_BE_REVIEWED}
        for place in PLACES:
            if place.kind == MOVABLE:
                continue
            path = shown(self.path_of(place))
            for candidate in found - may:
                self.assertFalse(candidate == path or candidate.startswith(path + "/") or path.startswith(candidate + "/"),
                                 (candidate, path))
        self.assertEqual(found - may, set(self.movable(report)))

    def test_the_guide_names_and_measures_every_place(self):
        paths = guide_of(self.home)
        if self.space.is_private:
            paths["flatpak"].append("/var/lib/flatpak")
        else:
            paths["flatpakLeftBehind"] = []
        self.assert_guide(self.report(), paths)

    def test_no_entry_of_the_guide_measures_what_is_protected_and_unexplained(self):
        # Of the folder in which images are searched for, only these count.
        measured = [path for entry in self.report()["guide"] for path in entry["paths"]
                    if path != str(self.home / ".local/share")]
        self.assertNotEqual(measured, [])
        for place in PLACES:
            if place.kind == PROTECTED and place.guide is None:
                path = shown(self.path_of(place))
                self.assertEqual([each for each in measured if path == each or path.startswith(each + "/") or
                                  each.startswith(path + "/")], [])

    def test_each_entry_has_its_texts_and_its_owners_command(self):
        entries = self.report()["guide"]
        self.assertEqual(sorted(entry["guideId"] for entry in entries), sorted(GUIDE_IDS))
        for entry in entries:
            with self.subTest(guide=entry["guideId"]):
                for text in ("title", "area", "areaId", "state"):
                    self.assertTrue(entry[text].strip())
                if entry["guideId"] in COMMANDS:
                    self.assertIn(entry["command"], COMMANDS[entry["guideId"]])
                else:
                    self.assertIsNone(entry["command"])

    def test_nothing_in_the_home_is_changed(self):
        def picture():
            found = {}
            for folder, folders, files in os.walk(os.fsencode(self.home)):
                for name in [b".", *folders, *files]:
                    facts = os.lstat(os.path.join(folder, name))
                    found[folder, name] = (facts.st_ino, facts.st_mode, facts.st_nlink, facts.st_size, facts.st_mtime_ns,
                                           facts.st_ctime_ns)
            return found

        before = picture()
        self.report()
        self.assertEqual(picture(), before)


class EmptyHome(LinuxCase):
    def test_nothing_is_there_and_nothing_is_movable(self):
        report = self.report()
        self.assert_guide(report, {})
        self.assertEqual(report["candidates"], [])

    def test_programs_that_run_in_place_are_not_even_offered_for_review(self):
        file = self.home / "Downloads/Painter.iso"
        fill(file, 250 * KIB)
        set_back(file, 400)
        self.assertEqual([each["path"] for each in self.report()["candidates"]], [str(file)])
        for name in ("Painter.AppImage", "Painter.run", "Painter.APPIMAGE", "Painter.iso.run", "Painter.deb.AppImage"):
            file = file.rename(self.home / "Downloads" / name)
            self.assertEqual(self.report()["candidates"], [], name)


class Overrides(LinuxCase):
    """Variables that move a place."""

    # Variable, what comes behind its value, the entry, and where the place is without it.
    MOVES = [("PIP_CACHE_DIR", "", "pip", ".cache/pip"),
             ("UV_CACHE_DIR", "", "uv", ".cache/uv"),
             ("npm_config_cache", "_cacache", "npm", ".npm/_cacache"),
             ("NPM_CONFIG_CACHE", "_cacache", "npm", ".npm/_cacache"),
             ("npm_config_cache", "_logs", "oldLogs", ".npm/_logs"),
             ("NPM_CONFIG_CACHE", "_logs", "oldLogs", ".npm/_logs"),
             ("CONDA_PKGS_DIRS", "", "conda", "miniconda3/pkgs"),
             ("CONDA_PKGS_DIRS", "", "conda", ".conda/pkgs"),
             ("FLATPAK_USER_DIR", "", "flatpak", ".local/share/flatpak"),
             ("CARGO_HOME", "registry", "cargo", ".cargo/registry"),
             ("CARGO_HOME", "git", "cargo", ".cargo/git"),
             ("GOCACHE", "", "goBuild", ".cache/go-build"),
             ("GOMODCACHE", "", "goModules", "go/pkg/mod"),
             ("GOPATH", "pkg/mod", "goModules", "go/pkg/mod"),
             ("GRADLE_USER_HOME", "caches", "gradle", ".gradle/caches"),
             ("CCACHE_DIR", "", "ccache", ".cache/ccache"),
             ("CCACHE_DIR", "", "ccache", ".ccache"),
             ("HF_HOME", "hub", "huggingface", ".cache/huggingface/hub"),
             ("HF_HUB_CACHE", "", "huggingface", ".cache/huggingface/hub"),
             ("OLLAMA_MODELS", "", "ollama", ".ollama/models"),
             ("VAGRANT_HOME", "boxes", "vagrant", ".vagrant.d/boxes"),
             ("XDG_CACHE_HOME", "old-app", "appCaches", ".cache/old-app"),
             ("XDG_CACHE_HOME", "thumbnails", "thumbnails", ".cache/thumbnails"),
             ("XDG_CACHE_HOME", "pip", "pip", ".cache/pip"),
             ("XDG_CACHE_HOME", "uv", "uv", ".cache/uv"),
             ("XDG_CACHE_HOME", "go-build", "goBuild", ".cache/go-build"),
             ("XDG_CACHE_HOME", "ccache", "ccache", ".cache/ccache"),
             ("XDG_CACHE_HOME", "huggingface/hub", "huggingface", ".cache/huggingface/hub"),
             ("XDG_CACHE_HOME", "mozilla", "browserCaches", ".cache/mozilla"),
             ("XDG_CONFIG_HOME", "Code/Cache", "vscode", ".config/Code/Cache"),
             ("XDG_DATA_HOME", "flatpak", "flatpak", ".local/share/flatpak"),
             ("XDG_DATA_HOME", "pnpm/store", "pnpm", ".local/share/pnpm/store"),
             ("XDG_DATA_HOME", "containers/storage", "podman", ".local/share/containers/storage"),
             ("XDG_DATA_HOME", "Trash", "trash", ".local/share/Trash"),
             ("XDG_DATA_HOME", "xorg/Xorg.0.log.old", "oldLogs", ".local/share/xorg/Xorg.0.log.old"),
             ("XDG_DATA_HOME", "images/disk.qcow2", "virtualMachines", ".local/share/images/disk.qcow2"),
             ("XDG_STATE_HOME", "nvim/lsp.log", "oldLogs", ".local/state/nvim/lsp.log")]

    def make(self, path, kib=40):
        fill(path, kib if path.suffix else {"data": kib, "inner/more": 4})
        set_back(path, 100)
        return path

    def moves(self):
        """Each with a default place and the place that the variable's value leads to, of different sizes."""
        for variable, rest, guide, default in self.MOVES:
            for base in (self.home / "moved", self.folder / "elsewhere"):
                with self.subTest(variable=variable, guide=guide, default=default, base=base.name):
                    yield variable, base, guide, self.make(self.home / default), self.make(base / rest, 80)
                for folder in (*self.home.iterdir(), self.folder / "elsewhere"):
                    self.space.run(["rm", "-rf", folder])

    def test_a_variable_moves_its_place(self):
        for variable, base, guide, default, moved in self.moves():
            self.assert_measured(self.report(), guide, [default])
            self.assert_measured(self.report(**{variable: str(base)}), guide, [moved])

    def test_an_empty_or_relative_value_counts_as_unset(self):
        for variable, base, guide, default, _moved in self.moves():
            for value in ("", base.name, f"./{base.name}"):
                self.assert_measured(self.report(cwd=base.parent, **{variable: value}), guide, [default])

    def test_a_value_that_is_or_holds_the_home_folder_counts_as_unset(self):
        for variable, _base, guide, default, _moved in self.moves():
            for value in (self.home, f"{self.home}/", f"{self.home}/x/..", self.folder, "/"):
                self.assert_measured(self.report(**{variable: str(value)}), guide, [default])

    def test_a_variable_that_leads_nowhere_leaves_nothing_to_measure(self):
        for variable, _base, guide, _default, _moved in self.moves():
            self.assert_measured(self.report(**{variable: str(self.home / "nowhere")}), guide, [])

    def test_a_variable_of_its_own_counts_for_more_than_the_general_one(self):
        for own, general, guide, below in (("PIP_CACHE_DIR", "XDG_CACHE_HOME", "pip", "pip"),
                                           ("HF_HUB_CACHE", "HF_HOME", "huggingface", "hub"),
                                           ("GOMODCACHE", "GOPATH", "goModules", "pkg/mod")):
            with self.subTest(own=own):
                chosen = self.make(self.home / own)
                self.make(self.home / general / below, 80)
                report = self.report(**{own: str(chosen), general: str(self.home / general)})
                self.assert_measured(report, guide, [chosen])

    def test_of_a_list_of_go_folders_the_first_counts(self):
        first, second = (self.make(self.home / name / "pkg/mod") for name in ("first", "second"))
        report = self.report(GOPATH=f"{self.home}/first:{self.home}/second")
        self.assert_measured(report, "goModules", [first])
        self.assertTrue(second.exists())

    def test_what_is_protected_in_a_cache_folder_stays_so_when_the_folder_is_elsewhere(self):
        cache = self.home / "moved"
        for name in ("pypoetry", "ms-playwright", "Cypress", "puppeteer", "pre-commit", "rclone", "mesa_shader_cache_db", "kwin", "doc", "ibus", "evolution"):
            self.make(cache / name)
        report = self.report(XDG_CACHE_HOME=str(cache))
        self.assert_guide(report, {})
        self.assertEqual(report["candidates"], [])


class LeftBehind(LinuxCase):
    """The data of Flatpak applications that are not there any more."""

    GONE, HERE, SYSTEM = "org.example.Gone", "org.example.Here", "org.example.System"

    def setUp(self):
        super().setUp()
        if not self.space.is_private:
            self.skipTest("needs mounts of its own")
        for application in (self.GONE, self.HERE, self.SYSTEM):
            for name in ("data", "config", "cache"):
                fill(self.home / ".var/app" / application / name, {"file": 40, "old.log": 1024})
        set_back(self.home, 100)
        self.system = self.space.path("/var/lib/flatpak/app")
        self.user = self.home / ".local/share/flatpak/app"
        self.addCleanup(self.space.run, ["rm", "-rf", "/var/lib/flatpak"])

    def data(self, *applications):
        return [self.home / ".var/app" / application / name for application in applications for name in ("data", "config")]

    def check(self, *applications):
        report = self.report()
        self.assert_measured(report, "flatpakLeftBehind", self.data(*applications))
        self.assertEqual(report["candidates"], [])

    def test_counts_when_neither_folder_of_applications_has_it(self):
        (self.user / self.HERE).mkdir(parents=True)
        (self.system / self.SYSTEM).mkdir(parents=True)
        self.check(self.GONE)

    def test_nothing_counts_when_one_installation_is_missing(self):
        (self.user / self.HERE).mkdir(parents=True)
        self.check()
        self.space.run(["rm", "-rf", self.home / ".local"])
        (self.system / self.SYSTEM).mkdir(parents=True)
        self.check()

    def test_an_installation_without_applications_has_none(self):
        self.user.parent.mkdir(parents=True)
        (self.system / self.SYSTEM).mkdir(parents=True)
        self.check(self.GONE, self.HERE)

    def test_nothing_counts_when_neither_folder_is_there(self):
        self.check()

    def test_a_name_that_begins_alike_is_another_application(self):
        (self.user / f"{self.GONE}.Plugin").mkdir(parents=True)
        (self.user / self.HERE).mkdir(parents=True)
        (self.system / self.SYSTEM).mkdir(parents=True)
        self.check(self.GONE)

    @unittest.skipUnless(os.geteuid() == 0, "only root can become another user")
    def test_nothing_counts_when_one_folder_cannot_be_read(self):
        for unreadable in (self.user, self.system):
            with self.subTest(unreadable=unreadable.name):
                (self.user / self.HERE).mkdir(parents=True, exist_ok=True)
                (self.system / self.SYSTEM).mkdir(parents=True, exist_ok=True)
                self.space.run(["chown", "-R", "65534:65534", self.home])
                unreadable.chmod(0)
                report = self.report("setpriv", "--reuid=65534", "--regid=65534", "--clear-groups")
                unreadable.chmod(0o755)
                entry = self.entry(report, "flatpakLeftBehind")
                self.assertIn(entry["stateId"], ("permissionNeeded", "notPresent"))
                self.assertEqual((entry["paths"], entry["occupied"].get("bytes", 0)), ([], 0))
                self.assertEqual(self.movable(report), [])


if __name__ == "__main__":
    unittest.main()

"""The report in the terminal: on a made-up home, through pipes and on a terminal."""

import json
import os
import pty
import re
import shutil
import signal
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

from application import PROGRAM

MAKE_HOME = Path(__file__).resolve().parents[2] / "tools/make-home"


def picture(folder):
    """All about every item but when it was read."""
    facts = {}
    for path in [folder, *folder.rglob("*")]:
        said = path.lstat()
        facts[path] = (said.st_ino, said.st_mode, said.st_uid, said.st_gid, said.st_nlink, said.st_size, said.st_blocks,
                       said.st_mtime_ns, said.st_ctime_ns)
    return facts


class Report(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = Path(tempfile.mkdtemp(prefix="ombrel-e2e-"))
        cls.addClassCleanup(shutil.rmtree, cls.folder)
        cls.home = cls.folder / "home"
        cls.temporary = cls.folder / "temporary"
        cls.temporary.mkdir()
        subprocess.run([MAKE_HOME, cls.home], check=True)

    def run_program(self, *arguments, home=None, **environment):
        return subprocess.run([PROGRAM, *arguments], env=self.environment(home, **environment), stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=60)

    def environment(self, home=None, **more):
        return {"PATH": os.environ["PATH"], "HOME": str(home or self.home), "TMPDIR": str(self.temporary), "LANG": "C.UTF-8",
                **more}

    def on_a_terminal(self, *arguments, **environment):
        """What a terminal is sent, from both outputs."""
        main, terminal = pty.openpty()
        process = subprocess.Popen([PROGRAM, *arguments], env=self.environment(**environment), stdin=terminal, stdout=terminal,
                                   stderr=terminal)
        os.close(terminal)
        sent = b""
        while True:
            try:
                part = os.read(main, 65536)
            except OSError:  # the other end is closed
                break
            if not part:
                break
            sent += part
        os.close(main)
        self.assertEqual(process.wait(timeout=60), 0)
        return sent.decode()

    def test_finds_something_in_every_category_of_the_made_up_home_and_changes_nothing(self):
        before = picture(self.home)
        result = self.run_program("--report=json")
        self.assertEqual((result.returncode, result.stderr), (0, b""))
        self.assertEqual(picture(self.home), before)
        self.assertEqual(list(self.temporary.iterdir()), [])
        report = json.loads(result.stdout)
        found = {candidate["category"] for candidate in report["candidates"]}
        self.assertEqual(set(report["categories"]) - found, {"macOS Installer Apps"})  # looked for in /Applications alone
        orphans = [candidate["title"] for candidate in report["candidates"] if candidate["category"] == "Old Window Data"]
        self.assertEqual(orphans, ["com.example.gone"])
        backups = [candidate["title"] for candidate in report["candidates"] if "Backups" in candidate["category"]]
        self.assertEqual(backups, ["Older backup · Ada’s iPhone"])
        for candidate in report["candidates"]:
            self.assertTrue(Path(candidate["path"]).exists())
            self.assertGreater(candidate["sizeBytes"], 0)

    def test_data_of_a_running_application_is_not_called_left_behind(self):
        report = json.loads(self.run_program("--report=json", "--running", "com.example.gone").stdout)
        self.assertNotIn("Old Window Data", [candidate["category"] for candidate in report["candidates"]])

    def test_running_without_an_identifier_is_an_error(self):
        result = self.run_program("--report", "--running")
        self.assertEqual((result.returncode, result.stdout), (1, b""))
        self.assertIn(b"--running needs", result.stderr)

    def test_without_a_home_folder_it_says_so(self):
        result = self.run_program("--report", home=self.folder / "nowhere")
        self.assertEqual((result.returncode, result.stdout), (1, b""))
        self.assertNotEqual(result.stderr, b"")

    def test_a_pipe_gets_neither_colours_nor_progress(self):
        result = self.run_program("--report", TERM="xterm")
        self.assertEqual((result.returncode, result.stderr), (0, b""))
        self.assertNotIn(b"\x1b", result.stdout)
        self.assertIn("~/Downloads/Painter-2.dmg", result.stdout.decode())

    def test_a_terminal_gets_colours_and_a_progress_line_that_goes(self):
        sent = self.on_a_terminal("--report", TERM="xterm")
        self.assertTrue(sent.startswith("Looking through the home folder…\r\x1b[K"))
        self.assertIn("\x1b[32mLow Risk", sent)

    def test_a_terminal_without_colours_gets_none(self):
        self.assertNotIn("\x1b[32m", self.on_a_terminal("--report", TERM="xterm", NO_COLOR="1"))
        self.assertIn("\x1b[32m", self.on_a_terminal("--report", TERM="xterm", NO_COLOR=""))
        for terminal in ({"TERM": "dumb"}, {}):
            self.assertNotIn("\x1b", self.on_a_terminal("--report", **terminal))

    def test_asked_to_end_it_leaves_nothing_behind(self):
        for delay in range(8):
            process = subprocess.Popen([PROGRAM, "--report"], env=self.environment(), stdout=subprocess.DEVNULL)
            time.sleep(delay * 0.01)
            process.send_signal(signal.SIGTERM)
            self.assertIn(process.wait(timeout=60), (-signal.SIGTERM, 0))
            self.assertEqual(list(self.temporary.iterdir()), [])


PLIST = ('<?xml version="1.0"?><plist version="1.0"><dict><key>CFBundleIdentifier</key><string>com.example.{0}</string>'
         '<key>GUID</key><string>device</string></dict></plist>')
OPENED = re.compile(r'\b(?:open|openat|openat2|creat)\((.*)\) += \d+<([^>]*)>')


@unittest.skipUnless(shutil.which("strace"), "there is no strace")
class NothingPersonal(unittest.TestCase):
    """What a scan opens in homes whose owner, or whose enemy, put links where lists and folders are expected."""

    def setUp(self):
        self.folder = Path(tempfile.mkdtemp(prefix="ombrel-e2e-"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.home = self.folder / "home"
        (self.folder / "temporary").mkdir()
        self.make_home()

    def make_home(self):
        shutil.rmtree(self.home, ignore_errors=True)
        (self.home / "Library/Saved Application State/com.example.gone.savedState").mkdir(parents=True)
        self.write("Documents/diary.txt", "Dear diary")
        self.write("Documents/Info.plist", PLIST.format("personal"))
        self.write("Applications/Good.app/Contents/Info.plist", PLIST.format("good"))
        for backup in ("first", "second"):
            self.write(f"Library/Application Support/MobileSync/Backup/{backup}/Info.plist", PLIST.format(backup))

    def write(self, path, text):
        (self.home / path).parent.mkdir(parents=True, exist_ok=True)
        (self.home / path).write_text(text)

    def link(self, path, target):
        (self.home / path).parent.mkdir(parents=True, exist_ok=True)
        (self.home / path).symlink_to(target if target.startswith(".") else self.home / target)

    def opened_for_reading(self):
        """The files, folders left out, below the home folder, by the paths that the kernel knows them by."""
        log = self.folder / "log"
        result = subprocess.run(
            ["strace", "-f", "-y", "-qq", "-s", "4096", "-o", log, "-e", "trace=open,openat,openat2,creat", PROGRAM,
             "--report=json"],
            env={"PATH": os.environ["PATH"], "HOME": str(self.home), "TMPDIR": str(self.folder / "temporary"),
                 "LANG": "C.UTF-8"},
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, timeout=120)
        self.assertEqual(result.returncode, 0)
        self.report = json.loads(result.stdout)
        opened = [match.groups() for match in map(OPENED.search, log.read_text().splitlines()) if match]
        self.looked_up = [path for arguments, path in opened if "O_PATH" in arguments]
        read = [Path(path) for arguments, path in opened if "O_PATH" not in arguments]
        return [path.relative_to(self.home) for path in read if path.is_relative_to(self.home) and not path.is_dir()]

    def check(self):
        opened = self.opened_for_reading()
        for path in opened:
            self.assertEqual(path.name, "Info.plist", path)
            self.assertTrue((self.home / path).is_file(), path)
            holders = [parent.suffix for parent in path.parents]
            self.assertTrue({".app", ".framework"} & {*holders} or "Backup" in path.parts, path)
        return [str(path) for path in opened]

    def test_of_an_ordinary_home_only_the_lists_of_bundles_and_backups_are_read(self):
        self.write("Applications/Suite/Inner.app/Contents/Frameworks/Kit.framework/Versions/A/Resources/Info.plist",
                   PLIST.format("kit"))
        self.link("Applications/Suite/Inner.app/Contents/Frameworks/Kit.framework/Versions/Current", "./A")
        self.link("Applications/Suite/Inner.app/Contents/Frameworks/Kit.framework/Resources", "./Versions/Current/Resources")
        backups = "Library/Application Support/MobileSync/Backup"
        kit = "Applications/Suite/Inner.app/Contents/Frameworks/Kit.framework/Versions/A/Resources/Info.plist"
        self.assertEqual(sorted(self.check()), sorted(["Applications/Good.app/Contents/Info.plist", kit,
                                                       f"{backups}/first/Info.plist", f"{backups}/second/Info.plist"]))
        self.assertEqual([found["title"] for found in self.report["candidates"] if found["category"] == "Old Window Data"],
                         ["com.example.gone"])

    def test_links_to_personal_files_and_folders_are_not_followed(self):
        backups = "Library/Application Support/MobileSync/Backup"
        hostile = [("Applications/Evil.app/Contents/Info.plist", "Documents/diary.txt"),
                   ("Applications/Evil.app/Contents/Info.plist", "Documents/Info.plist"),
                   ("Applications/Evil.app/Contents", "Documents"),
                   ("Applications/Evil.app", "Documents"),
                   ("Applications/Evil", "Documents"),
                   ("Applications/Good.app/Contents/Frameworks", "Documents"),
                   ("Applications/Good.app/Contents/Frameworks/Kit.framework", "Documents"),
                   ("Applications/Good.app/Contents/Frameworks/Kit.framework/Resources", "Documents"),
                   (f"{backups}/third/Info.plist", "Documents/diary.txt"),
                   (f"{backups}/third", "Documents"),
                   ("Library/iTunes/iPhone Software Updates", "Documents"),
                   ("Library/Caches", "Documents"),
                   ("Library/Caches/app", "Documents"),
                   ("Library/Logs", "Documents"),
                   ("Library/Logs/diary.log", "Documents/diary.txt"),
                   ("Downloads", "Documents"),
                   ("Downloads/diary.dmg", "Documents/diary.txt"),
                   (".npm/_cacache", "Documents")]
        for path, target in hostile:
            with self.subTest(path=path, target=target):
                self.make_home()
                self.link(path, target)
                self.assertFalse([opened for opened in self.check() if opened.startswith("Documents/")])

    def test_a_list_that_is_another_file_of_its_bundle_or_no_file_is_not_read(self):
        contents = self.home / "Applications/Odd.app/Contents"
        self.write("Applications/Odd.app/Contents/notes.txt", "notes")
        self.link("Applications/Odd.app/Contents/Info.plist", "./notes.txt")
        self.assertNotIn("Applications/Odd.app/Contents/notes.txt", self.check())
        (contents / "Info.plist").unlink()
        os.mkfifo(contents / "Info.plist")
        self.assertNotIn("Applications/Odd.app/Contents/Info.plist", self.check())

    def test_what_is_personal_is_only_looked_up(self):
        """Files that may be offered are opened for their paths alone, folders that are measured are listed."""
        for path in ("Downloads/old.dmg", "Library/Logs/old.log", "Library/Caches/app/secret", ".npm/_cacache/secret"):
            self.write(path, "x" * 6_000_000)
            os.utime(self.home / path, (1, 1))
        os.utime(self.home / "Library/Caches/app", (1, 1))
        self.check()
        self.assertIn(str(self.home / "Downloads/old.dmg"), self.looked_up)


if __name__ == "__main__":
    unittest.main()

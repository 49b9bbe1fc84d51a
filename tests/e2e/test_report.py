"""The report in the terminal: on a made-up home, through pipes and on a terminal."""

import json
import os
import pty
import shutil
import signal
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

from desktop import PROGRAM

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


if __name__ == "__main__":
    unittest.main()

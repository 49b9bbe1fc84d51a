"""The guide in the "Free Up Space" window: the commands of the owners are copied for the person, and never run."""

import json
import re
import shutil
import subprocess
import unittest

from application import PROGRAM
from cleanup_case import MIB, CleanupCase, wait_for
from linux_home_table import COMMANDS
from waiting import wait_for_equal, wait_until

EXECUTED = re.compile(r'\bexecve(?:at)?\([^"]*"((?:[^"\\]|\\.)*)"')
PLACES = {".cache/pip/data": MIB, ".cache/uv/data": MIB, ".npm/_cacache/data": MIB, ".vagrant.d/boxes/data": MIB}
GUIDES = ("pip", "uv", "npm", "vagrant")


@unittest.skipUnless(shutil.which("strace"), "there is no strace")
class GuideWindow(CleanupCase):
    def report(self, home):
        result = subprocess.run([PROGRAM, "--report=json"], env=self.desktop.environment_of(home.folder, {}),
                                stdout=subprocess.PIPE, check=True, timeout=60)
        return json.loads(result.stdout)

    def row(self, window, title):
        def found():
            rows = [each for each in window.find_all("list item") if each.name == title]
            return len(rows) == 1 and rows[0]

        return wait_for(found, f"the one row of {title!r}")

    def test_commands_are_copied_and_nothing_but_ombrel_is_executed(self):
        home = self.make_home(PLACES)
        entries = {each["guideId"]: each for each in self.report(home)["guide"]}
        log = self.desktop.folder / "executed.log"
        # With -D, the tracer steps aside and the process that is started here is Ombrel.
        application = self.start(home=home, program="strace", arguments=[
            "-D", "-f", "-s", "4096", "-o", str(log), "-e", "trace=execve,execveat", str(PROGRAM), "--show-cleanup"])
        application.wait_for_strip()
        window = self.window(application, ready=False)
        self.wait_for_text(window, "Scan complete")
        self.click_on(self.mode(window, "Storage Guide"))
        self.wait_for_text(window, " storage areas covered · ")
        for guide in GUIDES:
            with self.subTest(guide=guide):
                self.assertIn(entries[guide]["command"], COMMANDS[guide])
                button = wait_for(lambda: self.row(window, entries[guide]["title"]).find("push button", "Copy Command"),
                                  "the button of the row")
                self.assertNotEqual(self.desktop.screen.clipboard(), entries[guide]["command"])
                button.do("press")
                wait_for_equal(entries[guide]["command"], self.desktop.screen.clipboard, "what is in the clipboard")
        self.assertEqual(application.close(), 0)
        wait_until(lambda: re.search(rf"^{application.pid} +\+\+\+ exited", log.read_text(), re.MULTILINE), "the whole log")
        executed = EXECUTED.findall(log.read_text())
        self.assertGreater(len(executed), 1)  # it has workers
        self.assertLessEqual(set(executed), {str(PROGRAM), "/proc/self/exe"})


if __name__ == "__main__":
    unittest.main()

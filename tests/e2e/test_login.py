"""Launch at login: the agent file, the desktop's autostart entry, and what box and menu say about them."""

import os
import plistlib
import shutil
import signal
import subprocess
import unittest
from pathlib import Path

from case import DesktopCase
from application import PROGRAM
from waiting import wait_for_equal, wait_until

BOX = "Launch at Login"
INSTALLED = next((path for path in ("/usr/local/bin/ombrel", "/usr/bin/ombrel") if os.access(path, os.X_OK)), None)


class Login(DesktopCase):
    def start_and_wait(self, **options):
        application = self.start(**options)
        application.wait_for_strip()
        wait_until(lambda: "available" in application.accessible().children[0].name, "the first figures")
        return application

    def files(self, home):
        return home.agent_file.exists(), home.autostart_file.exists()

    def expect_files(self, home, present):
        wait_for_equal((present, present), lambda: self.files(home), "the agent file and the autostart entry")

    def expect_right_contents(self, home):
        with home.agent_file.open("rb") as file:
            agent = plistlib.load(file)
        self.assertEqual(agent, {"Label": "app.ombrel.Ombrel",
                                 "ProgramArguments": ["/usr/bin/open", "-g", INSTALLED or str(PROGRAM)], "RunAtLoad": True,
                                 "LimitLoadToSessionType": "Aqua", "ProcessType": "Interactive"})
        self.assertTrue(home.agent_file.read_bytes().startswith(b"<?xml"))
        self.assertEqual(home.agent_file.stat().st_mode & 0o7777, 0o644)
        entry = home.autostart_file.read_text()
        self.assertIn(f'\nExec="{INSTALLED or PROGRAM}"\n', entry)
        check = subprocess.run(["desktop-file-validate", home.autostart_file], capture_output=True, text=True, check=False)
        self.assertEqual((check.returncode, check.stdout), (0, ""))
        for file in (home.agent_file, home.autostart_file):
            self.assertEqual([path.name for path in file.parent.iterdir()], [file.name], "left beside it")

    def test_the_box_writes_and_removes_both_files(self):
        application = self.start_and_wait()
        popover = self.open_and_read_popover(application, application.strip().rect)
        box = popover.find("check box", BOX)
        for _repetition in range(2):
            self.assertFalse(box.has("checked"))
            self.click_on(box)
            self.expect_files(application.home, True)
            self.expect_right_contents(application.home)
            wait_until(lambda: box.has("checked"), "the check mark")
            self.click_on(box)
            self.expect_files(application.home, False)
            wait_until(lambda: not box.has("checked"), "the check mark to go")

    def test_the_menu_writes_and_removes_both_files(self):
        application = self.start_and_wait()
        for present in (True, False):
            self.choose_from_menu(self.open_menu(application, application.strip().rect), BOX)
            self.expect_files(application.home, present)
            wait_until(lambda: not application.menus(), "the menu to close")
        self.choose_from_menu(self.open_menu(application, application.strip().rect), BOX)
        self.expect_files(application.home, True)
        self.expect_right_contents(application.home)

    def test_box_and_menu_follow_the_files(self):
        application = self.start_and_wait()
        home = application.home
        for present in (True, False):
            if present:
                home.agent_file.parent.mkdir(parents=True)
                home.agent_file.write_text("written by somebody else")
                home.autostart_file.parent.mkdir(parents=True, exist_ok=True)
                home.autostart_file.write_text("[Desktop Entry]\nType=Application\nName=Ombrel\nExec=ombrel\n")
            else:
                with home.autostart_file.open("a") as file:
                    file.write("Hidden=true\n")
            popover = self.open_and_read_popover(application, application.strip().rect)
            self.assertEqual(popover.find("check box", BOX).has("checked"), present)
            self.desktop.screen.key("Escape")
            application.wait_until_popover_closed()
            menu = self.open_menu(application, application.strip().rect)
            entry = next(each for each in menu.children if each.name == BOX)
            self.assertEqual(entry.has("checked"), present)
            self.desktop.screen.key("Escape")
            wait_until(lambda: not application.menus(), "the menu to close")

    def test_a_start_writes_an_old_agent_anew(self):
        home = self.desktop.new_home()
        home.agent_file.parent.mkdir(parents=True)
        home.agent_file.write_text("for a place where the application was once")
        home.autostart_file.parent.mkdir(parents=True, exist_ok=True)
        home.autostart_file.write_text("[Desktop Entry]\nType=Application\nName=Ombrel\nExec=/gone/ombrel\n")
        self.start_and_wait(home=home)
        self.expect_files(home, True)
        self.expect_right_contents(home)

    def test_a_start_leaves_an_entry_that_the_user_removed_or_switched_off(self):
        for entry in (None, "[Desktop Entry]\nType=Application\nName=Ombrel\nExec=/gone/ombrel\nHidden=true\n"):
            with self.subTest(entry=entry):
                home = self.desktop.new_home()
                home.agent_file.parent.mkdir(parents=True)
                home.agent_file.write_text("an agent")
                if entry:
                    home.autostart_file.parent.mkdir(parents=True, exist_ok=True)
                    home.autostart_file.write_text(entry)
                application = self.start_and_wait(home=home)
                self.assertEqual(home.agent_file.read_text(), "an agent")
                self.assertEqual(home.autostart_file.read_text() if home.autostart_file.exists() else None, entry)
                self.assertEqual(application.close(), 0)

    def test_a_start_makes_no_agent_where_there_is_none(self):
        home = self.desktop.new_home()
        self.start_and_wait(home=home)
        self.assertEqual(self.files(home), (False, False))

    def test_a_failure_is_told_and_changes_nothing(self):
        for obstacle in ("agent", "autostart"):
            with self.subTest(obstacle=obstacle):
                home = self.desktop.new_home()
                file = {"agent": home.agent_file, "autostart": home.autostart_file}[obstacle]
                file.parent.parent.mkdir(parents=True, exist_ok=True)
                file.parent.write_text("a file where a folder is to be")
                application = self.start_and_wait(home=home)
                popover = self.open_and_read_popover(application, application.strip().rect)
                box = popover.find("check box", BOX)
                self.click_on(box)
                error = wait_until(lambda: next((label.name for label in popover.find_all("label") if label.has("showing")
                                                 and label.name.startswith("Could not change the autostart entry: ")), None),
                                   "the failure")
                self.assertGreater(len(error), len("Could not change the autostart entry: "))
                wait_until(lambda: not box.has("checked"), "the check mark to go")
                self.assertEqual(self.files(home), (False, False))
                file.parent.unlink()
                self.click_on(box)
                self.expect_files(home, True)
                wait_until(lambda: not any(label.name == error and label.has("showing")
                                           for label in popover.find_all("label")), "the failure to go")
                self.assertEqual(application.close(), 0)

    @unittest.skipIf(INSTALLED, "SKIPPED: an installed copy takes the entry")
    def test_the_entry_starts_the_application(self):
        # A copy in a folder with a name that needs escaping. (GLib starts nothing that has a percent sign in its path.)
        folder = self.desktop.folder / 'a "quoted" $name & <more> \\ ü'
        folder.mkdir()
        for file in (PROGRAM, PROGRAM.parent / "libombrel-qt.so"):
            shutil.copy2(file, folder)
        home = self.desktop.new_home()
        program = folder / PROGRAM.name
        application = self.start_and_wait(home=home, program=program)
        self.choose_from_menu(self.open_menu(application, application.strip().rect), BOX)
        self.expect_files(home, True)
        with home.agent_file.open("rb") as file:
            self.assertEqual(plistlib.load(file)["ProgramArguments"][2], str(program))
        self.assertEqual(application.close(), 0)
        self.desktop.spawn(["gio", "launch", str(home.autostart_file)], home=home.folder).wait(10)
        bar = wait_until(lambda: next((each for each in self.desktop.screen.windows() if each.title == "Ombrel"), None),
                         "the bar")
        self.addCleanup(os.kill, bar.pid, signal.SIGTERM)
        self.assertEqual(Path(f"/proc/{bar.pid}/exe").resolve(), program.resolve())

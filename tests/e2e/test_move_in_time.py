"""The "Free Up Space" window on a slow disk: what the user and other programs do while files are checked and moved."""

import os
import shutil
import unittest

from cleanup_case import MIB, NOTHING_SELECTED, CleanupCase
from waiting import holds, wait_until

CHECKING = "Checking that the selected items have not changed…"
TWO_SELECTED = "2 selected · 3.1 MB will move to Trash"
SLOWLY = "delay_enter=3s"


@unittest.skipUnless(shutil.which("strace"), "there is no strace")
class MoveInTime(CleanupCase):

    def open_with_two(self):
        """A window with two ticked files."""
        home = self.make_home({"Library/Logs/one.log": MIB, "Library/Logs/two.log": 2 * MIB})
        application, window = self.open(home)
        self.press(window, "Select Low-Risk Files")
        self.wait_for_text(window, TWO_SELECTED)
        return home, application, window

    def hold_up_check(self):
        home, application, window = self.open_with_two()
        self.inject(application, "openat2", 1, SLOWLY)  # by which a file is held for its check
        self.press(window, "Move to Trash…")
        self.wait_for_text(window, CHECKING)
        return home, application, window

    def hold_up_move(self):
        """A move of two files whose first one is about to leave its place."""
        home, application, window = self.open_with_two()
        self.press(window, "Move to Trash…")
        sheet = self.sheet(application, "Move 2 selected items to the Trash?")
        self.inject(application, "renameat2", 1, SLOWLY)
        self.press(sheet, "Move to Trash")
        infos = self.trash(home) / "info"
        wait_until(lambda: infos.exists() and os.listdir(infos), "a file that is announced to the Trash")
        return home, window, infos / os.listdir(infos)[0]

    def test_the_selection_cannot_change_while_it_is_checked(self):
        home, application, window = self.hold_up_check()
        box = self.box(window, "one.log")
        self.assertFalse(box.has("enabled"))
        self.click_on(box)
        self.assertFalse(self.button(window, "Select Low-Risk Files").has("enabled"))
        self.assertFalse(self.button(window, "Scan Again").has("enabled"))
        holds(lambda: self.box(window, "one.log").has("checked"), "the tick")
        self.answer(application, "Move 2 selected items to the Trash?", "Move to Trash")
        self.wait_for_text(window, "Moved 2 items to the Trash · a privacy-safe local record was saved")
        self.assertEqual(len(self.trashed(home)), 2)

    def test_escape_and_closing_give_up_a_check_that_takes_long(self):
        for key in (("Escape",), ("w", "Control_L")):
            with self.subTest(key=key):
                home, application, window = self.hold_up_check()
                self.desktop.screen.key(*key)
                if key != ("Escape",):
                    wait_until(lambda: not window.has("showing"), "the window to close")
                    self.assertEqual(self.start(home=home, arguments=["--show-cleanup"]).wait_for_end(), 0)
                    window = self.window(application)
                    wait_until(lambda: self.button(window, "Select Low-Risk Files").has("enabled"), "the end of the scan")
                    self.press(window, "Select Low-Risk Files")
                self.wait_for_text(window, TWO_SELECTED)
                wait_until(lambda: self.box(window, "one.log").has("enabled"), "the boxes")
                self.assertNotIn(CHECKING, self.texts(window))
                self.click_on(self.box(window, "one.log"))
                self.wait_for_text(window, "1 selected · 2.1 MB will move to Trash")
                holds(lambda: len(application.accessible().children) < 3, "the absence of a sheet", 3.5)
                self.assertFalse(self.trash(home).exists())
                application.close()

    def test_a_trash_that_is_emptied_in_between_gives_the_file_back(self):
        home, window, info = self.hold_up_move()
        info.unlink()
        self.wait_for_text(window, "Moved 1 item to the Trash; 1 could not be moved")
        name = info.name.removesuffix(".trashinfo")
        self.assertTrue((home.folder / "Library/Logs" / name).exists())
        self.assertEqual(len(self.trashed(home)), 1)

    def test_a_file_that_grows_in_between_stays(self):
        home, window, info = self.hold_up_move()
        name = info.name.removesuffix(".trashinfo")
        with open(home.folder / "Library/Logs" / name, "ab") as file:
            file.write(b"one more line")
        self.wait_for_text(window, "Moved 1 item to the Trash; 1 could not be moved")
        self.assertTrue((home.folder / "Library/Logs" / name).read_bytes().endswith(b"one more line"))
        self.assertEqual(len(self.trashed(home)), 1)

    def test_during_a_scan_nothing_of_the_last_one_can_be_ticked(self):
        _home, application, window = self.open_with_two()
        self.inject(application, "readlink", 1, SLOWLY)  # by which a scan finds the program of its workers
        self.press(window, "Scan Again")
        self.wait_for_text(window, "Checking storage…")
        self.assertEqual([each for each in window.find_all("check box") if each.has("showing")], [])
        self.assertFalse(self.button(window, "Select Low-Risk Files").has("enabled"))
        self.wait_for_text(window, NOTHING_SELECTED)
        wait_until(lambda: len(window.find_all("check box")) == 2, "what the scan found")
        self.assertTrue(self.button(window, "Select Low-Risk Files").has("enabled"))

"""The "Free Up Space" window: opened, read as a screen reader reads it, and used to move files to the Trash."""

import json
import os
import re
import subprocess
from pathlib import Path
from urllib.parse import quote

from bus import FileManager
from cleanup_case import LOW_RISK, MIB, NOTHING_SELECTED, CleanupCase
from waiting import holds, wait_for_equal, wait_until


class CleanupWindow(CleanupCase):

    # ---- opening

    def test_opens_from_the_menu_and_from_the_popover_and_comes_to_the_front(self):
        application = self.start(home=self.make_home())
        strip = application.wait_for_strip()
        menu = self.open_menu(application, strip.rect)
        self.choose_from_menu(menu, "Free Up Space…")
        self.window(application)
        self.desktop.screen.key("w", "Control_L")
        wait_until(lambda: not [each for each in application.windows() if each.rect.width >= 780], "the window to close")
        popover = self.open_and_read_popover(application, application.strip().rect)
        self.press(popover, "Free Up Space…")
        application.wait_until_popover_closed()
        self.window(application)
        self.assertEqual(len([each for each in application.windows() if each.rect.width >= 780]), 1)

    def test_a_second_start_that_asks_for_it_opens_it_in_the_first(self):
        home = self.make_home()
        first = self.start(home=home)
        first.wait_for_strip()
        second = self.start(home=home, arguments=["--show-cleanup"])
        self.assertEqual(second.wait_for_end(), 0)
        self.window(first)

    # ---- what it tells

    def test_tells_what_was_found_by_area(self):
        _application, window = self.open()
        texts = self.texts(window)
        for text in ("Free Up Space", "See what is using space, what can be selected, and what must stay protected.",
                     "Storage Used: 500 GB", "Files Found: 47.2 MB", "Selected for Trash: 0 B", NOTHING_SELECTED,
                     "Scan complete · This computer uses 500 GB of 1 TB · 6 files shown use 47.2 MB · 5 low-risk files can be "
                     "selected", "Temporary App Files"):
            self.assertIn(text, texts)
        self.assertEqual(self.rows(window), ["older.log", "old.log", "crash.ips", "Painter.dmg", "film.part", "photos.zip"])
        self.assertFalse(self.button(window, "Move to Trash…").has("enabled"))

    def test_without_findings_says_so_and_the_guide_still_lists_every_area(self):
        _application, window = self.open(self.make_home({}), ready=False)
        self.wait_for_text(window, "No cleanup files found")
        self.assertFalse(self.button(window, "Select Low-Risk Files").has("enabled"))
        self.click_on(self.mode(window, "Storage Guide"))
        self.wait_for_text(window, "60 storage areas covered · ")
        wait_for_equal(60, lambda: len(self.rows(window)), "the number of avenues")

    def test_changes_its_mode_with_the_keyboard_and_keeps_the_results(self):
        _application, window = self.open()
        self.click_on(self.mode(window, "Storage Guide"))
        self.wait_for_text(window, "Nothing is removed automatically. Managed and private storage never gets")
        self.desktop.screen.key("Left")
        self.wait_for_text(window, NOTHING_SELECTED)
        self.assertEqual(len(self.rows(window)), 6)

    # ---- choosing

    def test_a_ticked_file_counts_and_an_unticked_one_does_not(self):
        _application, window = self.open()
        self.click_on(self.box(window, "old.log"))
        self.wait_for_text(window, "1 selected · 1 MB will move to Trash")
        self.assertTrue(self.box(window, "old.log").has("checked"))
        self.box(window, "older.log").do("toggle")
        self.wait_for_text(window, "2 selected · 3.1 MB will move to Trash")
        self.click_on(self.box(window, "old.log"))
        self.wait_for_text(window, "1 selected · 2.1 MB will move to Trash")
        self.assertTrue(self.button(window, "Move to Trash…").has("enabled"))

    def test_low_risk_files_are_selected_at_once_and_no_others(self):
        _application, window = self.open()
        self.press(window, "Select Low-Risk Files")
        self.wait_for_text(window, "5 selected · 15.7 MB will move to Trash")
        self.assertTrue(all(each.has("checked") for each in window.find_all("check box")))
        self.assertEqual(len(window.find_all("check box")), len(LOW_RISK))

    def test_scanning_again_clears_the_selection(self):
        _application, window = self.open()
        self.press(window, "Select Low-Risk Files")
        self.wait_for_text(window, "5 selected")
        self.press(window, "Scan Again")
        self.wait_for_text(window, NOTHING_SELECTED)
        self.wait_until_scanned(window)
        self.assertFalse(any(each.has("checked") for each in window.find_all("check box")))

    def test_reveals_a_file_in_the_file_manager(self):
        manager = FileManager(self.desktop.loop, self.desktop.environment["DBUS_SESSION_BUS_ADDRESS"])
        self.addCleanup(manager.close)
        home = self.make_home({"Library/Logs/odd name é.log": MIB})
        _application, window = self.open(home)
        self.press(window, "Reveal odd name é.log in the file manager")
        expected = "file://" + quote(str(home.folder / "Library/Logs/odd name é.log"))
        wait_for_equal([[expected]], lambda: manager.shown, "what is revealed")

    # ---- moving

    def test_moves_what_was_chosen_to_the_trash_and_records_it(self):
        home = self.make_home()
        application, window = self.open(home)
        self.select_and_ask(application, window)
        said = self.answer(application, "Move 5 selected items to the Trash?", "Move to Trash")
        self.assertIn("This moves approximately 15.7 MB to the Trash so it remains recoverable.", said)
        self.wait_for_text(window, "Moved 5 items to the Trash · a privacy-safe local record was saved")
        self.wait_for_text(window, NOTHING_SELECTED)
        self.assertEqual(sorted(self.trashed(home).values()), sorted(str(home.folder / name) for name in LOW_RISK))
        for name in LOW_RISK:
            self.assertFalse((home.folder / name).exists())
        self.assertTrue((home.folder / "Downloads/photos.zip").exists())
        wait_for_equal(["photos.zip"], lambda: self.rows(window), "the rows that are left")
        self.assertFalse(self.button(window, "Move to Trash…").has("enabled"))
        (record,) = self.records(home)
        said = json.loads(record.read_text())
        self.assertEqual((said["itemCount"], said["totalBytes"]), (5, sum(LOW_RISK.values())))
        self.assertEqual([each["category"] for each in said["entries"]], sorted(each["category"] for each in said["entries"]))
        self.assertEqual((record.stat().st_mode & 0o777, record.parent.stat().st_mode & 0o777), (0o600, 0o700))
        for name in LOW_RISK:
            self.assertNotIn(Path(name).name, record.read_text())

    def test_the_trash_program_lists_and_restores_what_was_moved(self):
        home = self.make_home({})
        original = self.make_file(home, "Library/Logs/a b\nc é.log", MIB, contents=b"contents of the log")
        before = original.read_bytes()
        application, window = self.open(home)
        self.select_and_ask(application, window)
        self.answer(application, "Move 1 selected item to the Trash?", "Move to Trash")
        self.wait_for_text(window, "Moved 1 item to the Trash")
        environment = self.desktop.environment_of(home.folder, {})
        listed = subprocess.run(["trash-list"], env=environment, stdout=subprocess.PIPE, check=True).stdout.decode()
        self.assertIn(str(original), listed)
        subprocess.run(["trash-restore", "/"], env=environment, input=b"0\n", stdout=subprocess.DEVNULL, check=True)
        self.assertEqual(original.read_bytes(), before)

    def test_cancelling_changes_nothing(self):
        home = self.make_home()
        application, window = self.open(home)
        for way in ("Cancel", "Escape"):
            self.select_and_ask(application, window)
            message = "Move 5 selected items to the Trash?"
            if way == "Escape":
                self.sheet(application, message)
                self.desktop.screen.key(way)
                self.wait_until_no_sheet(application, message)
            else:
                self.answer(application, message, way)
            self.wait_for_text(window, "5 selected · 15.7 MB will move to Trash")
            holds(lambda: not self.trash(home).exists(), "the absence of a Trash")
        self.assertEqual(self.records(home), [])

    def press_tab_until(self, name):
        """Until what has this name has the focus."""
        for _step in range(60):
            self.desktop.accessibility.forget_focus()
            self.desktop.screen.key("Tab")
            if wait_until(self.desktop.accessibility.focus, "the next focus").name == name:
                return
        self.fail(f"Tab does not reach {name!r}")

    def test_the_keyboard_alone_is_enough(self):
        home = self.make_home({"Library/Logs/old.log": MIB})
        application, window = self.open(home)
        self.press_tab_until("Select low-risk file old.log")
        self.desktop.screen.key("space")
        self.wait_for_text(window, "1 selected · 1 MB will move to Trash")
        self.press_tab_until("Move to Trash…")
        self.desktop.screen.key("Return")
        self.sheet(application, "Move 1 selected item to the Trash?")
        self.desktop.screen.key("Return")
        self.wait_for_text(window, "Moved 1 item to the Trash")
        self.assertEqual(list(self.trashed(home).values()), [str(home.folder / "Library/Logs/old.log")])

    def test_a_held_key_confirms_nothing_and_a_fresh_press_does(self):
        message = "Move 1 selected item to the Trash?"
        for key in ("Return", "KP_Enter", "space"):
            with self.subTest(key=key):
                home = self.make_home({"Library/Logs/old.log": MIB})
                application, window = self.open(home)
                self.press(window, "Select Low-Risk Files")
                button = self.button(window, "Move to Trash…")
                wait_until(lambda: button.has("enabled"), "the button to move")
                button.do("setfocus")
                wait_until(lambda: button.has("focused"), "the focus on the button")
                self.desktop.screen.press_key(key)
                if key == "space":  # which acts when it comes up
                    button.do("press")
                self.sheet(application, message)
                holds(lambda: not self.trash(home).exists(), "the absence of a Trash", seconds=2)
                for _repetition in range(5):
                    self.desktop.screen.repeat_key(key)
                    holds(lambda: not self.trash(home).exists(), "the absence of a Trash")
                self.desktop.screen.release_key(key)
                holds(lambda: not self.trash(home).exists(), "the absence of a Trash")
                self.assertEqual(len(application.windows("DIALOG")), 1)
                self.desktop.screen.key(key)
                self.wait_for_text(window, "Moved 1 item to the Trash")
                self.assertEqual(application.close(), 0)

    def test_a_key_that_is_held_elsewhere_presses_no_button_of_the_window(self):
        home = self.make_home({"Library/Logs/old.log": MIB})
        application, window = self.open(home)
        self.press(window, "Select Low-Risk Files")
        self.wait_for_text(window, "1 selected")
        box = self.box(window, "old.log")
        box.do("setfocus")
        wait_until(lambda: box.has("focused"), "the focus on the check box")
        self.desktop.screen.press_key("Return")
        self.wait_for_text(window, NOTHING_SELECTED)
        for _repetition in range(5):
            self.desktop.screen.repeat_key("Return")
            holds(lambda: not box.has("checked"), "the empty check box")
        self.desktop.screen.release_key("Return")
        holds(lambda: not box.has("checked"), "the empty check box")
        self.desktop.screen.key("Return")
        self.wait_for_text(window, "1 selected")

    # ---- refusals

    def test_files_that_changed_since_the_scan_are_named_four_at_most_and_nothing_moves(self):
        home = self.make_home()
        application, window = self.open(home)
        for name in LOW_RISK:
            os.utime(home.folder / name)
        self.select_and_ask(application, window)
        lines = self.answer(application, "Some items changed since the scan", "OK").split("\n")
        self.assertEqual(len([each for each in lines if re.match(r"\S.*: \S", each)]), 4, lines)
        self.assertEqual(lines[-2:], ["", "Scan again before moving anything. No items were changed."])
        self.assertFalse(self.trash(home).exists())
        self.assertTrue(all((home.folder / name).exists() for name in LOW_RISK))

    def test_names_that_no_line_can_hold_leave_the_alert_readable(self):
        names = ["a" * 116 + ".log", "b" * 116 + ".log"]
        home = self.make_home({f"Library/Logs/{name}": MIB for name in names})
        application, window = self.open(home)
        for name in names:
            os.utime(home.folder / "Library/Logs" / name)
        self.select_and_ask(application, window)
        sheet = self.sheet(application, "Some items changed since the scan")
        for name in names:
            self.assertIn(f"{name}: ", sheet.description)
        shown = next(label for label in sheet.find_all("label") if "No items were changed." in label.name)
        self.assertEqual(shown.name.count("…"), 2)
        self.assertEqual(shown.description, sheet.description)
        self.assertLess(shown.rect.x + shown.rect.width, sheet.rect.x + sheet.rect.width)
        button = sheet.find("push button", "OK").rect
        self.assertLess(shown.rect.y + shown.rect.height, button.y)
        self.assertLess(button.y + button.height, sheet.rect.y + sheet.rect.height)

    def test_a_file_replaced_between_question_and_answer_stops_everything(self):
        home = self.make_home()
        application, window = self.open(home)
        self.select_and_ask(application, window)
        self.sheet(application, "Move 5 selected items to the Trash?")
        replaced = home.folder / "Library/Logs/old.log"
        replaced.unlink()
        self.make_file(home, "Library/Logs/old.log", MIB, contents=b"another file")
        self.answer(application, "Move 5 selected items to the Trash?", "Move to Trash")
        said = self.answer(application, "The files changed before they could be moved", "OK")
        self.assertRegex(said, r"^old\.log: .+\n\nNothing was moved\. Scan again to refresh the safety checks\.$")
        self.assertFalse(self.trash(home).exists())
        self.assertTrue(all((home.folder / name).exists() for name in LOW_RISK))
        self.assertTrue(self.button(window, "Scan Again").has("enabled"))

    def test_one_of_three_that_cannot_be_moved_stays_and_the_others_move(self):
        home = self.make_home({"Library/Logs/one.log": MIB, "Library/Logs/two.log": MIB})
        self.mount(home.folder / "Downloads")
        kept = self.make_file(home, "Downloads/film.part", 6 * MIB)
        application, window = self.open(home)
        self.select_and_ask(application, window)
        self.answer(application, "Move 3 selected items to the Trash?", "Move to Trash")
        self.wait_for_text(window, "Moved 2 items to the Trash; 1 could not be moved")
        self.assertTrue(kept.exists())
        self.assertEqual(sorted(Path(each).name for each in self.trashed(home).values()), ["one.log", "two.log"])
        wait_for_equal(["film.part"], lambda: self.rows(window), "the rows that are left")
        (record,) = self.records(home)
        self.assertEqual(json.loads(record.read_text())["itemCount"], 2)

    def mount(self, folder):
        """Puts another file system there, from which nothing is moved to this Trash."""
        folder.mkdir(parents=True, exist_ok=True)
        command = ["mount", "-t", "tmpfs", "-o", "size=32m", "tmpfs", folder]
        if subprocess.run(command, stderr=subprocess.DEVNULL).returncode != 0:
            self.skipTest("no right to mount a small file system")
        self.addCleanup(subprocess.run, ["umount", "-l", folder], check=True)

    # ---- bad moments

    def test_closing_and_reopening_and_quitting_at_any_moment_is_safe(self):
        home = self.make_home()
        application, window = self.open(home)
        for _repetition in range(3):
            self.press(window, "Scan Again")
            self.desktop.screen.key("w", "Control_L")
            wait_until(lambda: not [each for each in application.windows() if each.rect.width >= 780], "the window to close")
            self.assertEqual(self.start(home=home, arguments=["--show-cleanup"]).wait_for_end(), 0)
            window = self.window(application)
        self.press(window, "Scan Again")
        self.assertEqual(application.close(), 0)

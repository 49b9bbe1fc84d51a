"""The application is ended in the middle of a move of six files: whatever was moved is in the record."""

import json
import os
import shutil
import signal
import unittest

from cleanup_case import CleanupCase, MIB
from waiting import holds, wait_until

FILES = {f"Library/Logs/{name}.log": size * MIB for size, name in enumerate(("one", "two", "three", "four", "five", "six"), 1)}
QUESTION = "Move 6 selected items to the Trash?"

# Kinds of system calls that only a move makes, and which one of its thread: while the second or third file is in hand.
CALLS = {
    "the creation of an info file": ("openat", 20),
    "the sync of an info file": ("fsync", 5),
    "the move of a file": ("renameat2", 5),
    "the sync after a move": ("fsync", 7),
    "the replacement of the record": ("renameat2", 4),
}


@unittest.skipUnless(shutil.which("strace"), "there is no strace")
class EndingInAMove(CleanupCase):

    def begin(self):
        """An application that asks whether six files are to be moved."""
        home = self.make_home(FILES)
        for folder in ("files", "info"):
            (self.trash(home) / folder).mkdir(parents=True)  # so that all files take the same calls
        application, window = self.open(home)
        self.select_and_ask(application, window)
        self.sheet(application, QUESTION)
        return home, application

    def check(self, home, lacks_at_most=0, announced_at_most=0):
        """Every file is whole in one place, and the record tells of those in the Trash."""
        trashed = self.trash(home) / "files"
        moved = {name for name in FILES if not (home.folder / name).exists()}
        names = set(os.listdir(trashed)) if trashed.exists() else set()
        self.assertEqual(names, {os.path.basename(name) for name in moved})
        for name in moved:
            self.assertEqual((trashed / os.path.basename(name)).stat().st_size, FILES[name])
        infos = set(os.listdir(self.trash(home) / "info"))
        self.assertLessEqual({f"{name}.trashinfo" for name in names}, infos)
        self.assertLessEqual(len(infos) - len(names), announced_at_most)
        records = [path for path in self.records(home) if path.suffix == ".json"]
        self.assertLessEqual(len(records), 1)
        recorded = json.loads(records[0].read_text())["entries"] if records else []
        self.assertLessEqual(len(moved) - len(recorded), lacks_at_most)
        sizes = sorted(FILES[name] for name in moved)
        for entry in recorded:
            self.assertIn(entry["bytes"], sizes)
        self.assertLessEqual(len(recorded), len(moved))
        return len(moved)

    def end_at(self, what, number):
        home, application = self.begin()
        log = self.inject(application, *CALLS[what], f"signal={signal.Signals(number).name.removeprefix('SIG')}")
        self.desktop.screen.key("Return")
        status = application.wait_for_end()
        self.assertRegex(log.read_text(), "SIG(TERM|INT|HUP|KILL)")
        return home, status

    def test_a_signal_at_any_call_ends_it_after_the_file_in_hand_with_a_complete_record(self):
        for what in CALLS:
            for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
                with self.subTest(what, signal=number):
                    home, status = self.end_at(what, number)
                    self.assertEqual(status, 0)
                    self.assertGreater(self.check(home), 0)

    def test_killed_at_any_call_the_record_lacks_at_most_the_file_in_hand(self):
        for what in CALLS:
            with self.subTest(what):
                home, status = self.end_at(what, signal.SIGKILL)
                self.assertEqual(status, -signal.SIGKILL)
                self.assertIn(self.check(home, lacks_at_most=1, announced_at_most=1), (1, 2))

    def hold_up(self, what, seconds, in_trash):
        """An application that is held up in its move, once so many files are in the Trash."""
        home, application = self.begin()
        log = self.inject(application, *CALLS[what], f"delay_enter={seconds}s")
        self.desktop.screen.key("Return")
        files = self.trash(home) / "files"
        wait_until(lambda: files.exists() and len(os.listdir(files)) == in_trash, "a file in hand")
        return home, application, log

    def test_losing_the_display_ends_it_after_the_file_in_hand_with_a_complete_record(self):
        home, application, _log = self.hold_up("the move of a file", 1, 2)
        window = application.windows()[0]
        self.desktop.screen.display.create_resource_object("window", window.id).kill_client()
        self.desktop.screen.display.sync()
        self.assertEqual(application.wait_for_end(), 1)
        self.assertIn(self.check(home), (2, 3))

    def test_a_start_during_the_end_becomes_the_next_application(self):
        home, application, log = self.hold_up("the sync after a move", 30, 2)
        application.signal(signal.SIGTERM)
        wait_until(lambda: not any(path.is_socket() for path in self.desktop.runtime.iterdir()), "the end to begin")
        holds(lambda: "exit_group(" not in log.read_text(), "the wait for the disk")
        self.start(home=home).wait_for_strip()
        wait_until(lambda: "exit_group(0" in log.read_text(), "the end of the application")

    def test_a_disk_that_hangs_does_not_keep_it_from_ending(self):
        home, application, log = self.hold_up("the sync after a move", 30, 2)
        application.signal(signal.SIGTERM)
        wait_until(lambda: "exit_group(0" in log.read_text(), "the end of the application")
        self.assertEqual(self.check(home, lacks_at_most=1), 2)

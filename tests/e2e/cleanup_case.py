"""What the tests of the "Free Up Space" window share: a home folder with something in it, and the window."""

import configparser
import os
import re
import subprocess
import time
from datetime import datetime
from urllib.parse import unquote_to_bytes

from gi.repository import GLib

from case import DesktopCase
from waiting import wait_until

DAY = 86400
MIB = 1 << 20
NOTHING_SELECTED = "Nothing selected · Only low-risk files can be selected"
LOW_RISK = {"Downloads/Painter.dmg": 6 * MIB, "Downloads/film.part": 5 * MIB, "Library/Logs/old.log": MIB,
            "Library/Logs/older.log": 2 * MIB, "Library/Logs/DiagnosticReports/crash.ips": MIB}
REVIEW = {"Downloads/photos.zip": 30 * MIB}


def wait_for(read, what):
    """Waits for a true result; what goes away while it is read is read again."""
    def patiently():
        try:
            return read()
        except (GLib.Error, LookupError):
            return None

    return wait_until(patiently, what)


class CleanupCase(DesktopCase):
    options = {"size": "1100x900"}

    # ---- a home folder with something in it

    def make_home(self, files=None):
        home = self.desktop.new_home()
        for name, size in (LOW_RISK | REVIEW if files is None else files).items():
            self.make_file(home, name, size)
        return home

    def make_file(self, home, name, size, age=100 * DAY, contents=b""):
        path = home.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        with open(path, "wb") as file:
            file.write(contents)
            os.posix_fallocate(file.fileno(), 0, size)
        moment = time.time() - age
        os.utime(path, (moment, moment))
        return path

    def trash(self, home):
        return home.folder / ".local/share/Trash"

    def trashed(self, home):
        """What is in the Trash: the original place of each file by its name there."""
        found = {}
        for info in sorted((self.trash(home) / "info").glob("*")):
            parser = configparser.RawConfigParser()
            parser.read(info)
            datetime.strptime(parser["Trash Info"]["DeletionDate"], "%Y-%m-%dT%H:%M:%S")
            found[info.name.removesuffix(".trashinfo")] = os.fsdecode(unquote_to_bytes(parser["Trash Info"]["Path"]))
        self.assertEqual(sorted(found), sorted(os.listdir(self.trash(home) / "files")) if found else [])
        return found

    def records(self, home):
        folder = home.folder / "Library/Application Support/Ombrel/Cleanup History"
        return sorted(folder.iterdir()) if folder.exists() else []

    # ---- the window

    def open(self, home=None, ready=True):
        home = home or self.make_home()
        application = self.start(home=home, arguments=["--show-cleanup"])
        application.wait_for_strip()
        return application, self.window(application, ready)

    def window(self, application, ready=True):
        def found():
            return next((each for each in application.accessible().children if each.name == "Ombrel · Free Up Space"), None)

        window = wait_for(found, "the window")
        if ready:
            self.wait_until_scanned(window)
        return window

    def wait_until_scanned(self, window):
        wait_for(lambda: any(re.search(r"\d low-risk files? can be selected", text) for text in self.texts(window)),
                 "the end of the scan")

    def texts(self, window):
        return [each.name for each in window.walk() if each.role in ("label", "heading") and each.has("showing")]

    def wait_for_text(self, window, text):
        return wait_for(lambda: next((each for each in self.texts(window) if text in each), None), f"{text!r}")

    def button(self, window, title):
        return window.find("push button", title)

    def mode(self, window, title):
        return next(each for each in window.walk() if each.name == title and each.role in ("radio button", "push button",
                                                                                         "toggle button", "page tab"))

    def press(self, window, title):
        self.click_on(self.button(window, title))

    def box(self, window, title):
        return window.find("check box", f"Select low-risk file {title}")

    def rows(self, window):
        return [each.name for each in window.find_all("list item")]

    def sheet(self, application, message):
        """Once it is in its place and has the keyboard."""
        def found():
            focus = self.desktop.accessibility.focus()
            sheet = next((each for each in application.accessible().children if each.name == message), None)
            return sheet and focus in sheet.find_all("push button") and sheet

        sheet = wait_for(found, f"the sheet {message!r}")
        self.desktop.screen.steady_picture()
        return sheet

    def answer(self, application, message, title):
        """Presses a button of the sheet and waits for the sheet to close. What it said beside its message."""
        sheet = self.sheet(application, message)
        said = sheet.description
        self.press(sheet, title)
        self.wait_until_no_sheet(application, message)
        return said

    def wait_until_no_sheet(self, application, message):
        wait_for(lambda: all(each.name != message for each in application.accessible().children), "the sheet to close")

    def select_and_ask(self, application, window):
        self.press(window, "Select Low-Risk Files")
        wait_until(lambda: self.button(window, "Move to Trash…").has("enabled"), "the button to move")
        self.press(window, "Move to Trash…")

    # ---- what happens in between

    def inject(self, application, call, when, action):
        """Lets something happen at a system call: the one of that number in the life of whatever thread makes it. Returns
        the log of these calls."""
        log = self.desktop.folder / "strace.log"
        log.unlink(missing_ok=True)
        tracer = subprocess.Popen(["strace", "-f", "-o", log, "-e", f"trace={call},exit_group",
                                   f"--inject={call}:{action}:when={when}", "-p", str(application.pid)],
                                  stderr=subprocess.PIPE, text=True)
        self.addCleanup(tracer.communicate)
        self.addCleanup(tracer.kill)  # it may wait for what it holds up itself
        self.assertIn("attached", tracer.stderr.readline())
        return log

"""The application as a test sees it: its home folder, the volume that it is told about, and what it shows."""

import configparser
import os
import signal
import subprocess
from pathlib import Path

from waiting import wait_until

SOURCES = Path(__file__).resolve().parents[2]
PROGRAM = Path(os.environ.get("OMBREL", SOURCES / "build/release/ombrel")).resolve()
FAKE_VOLUME = Path(os.environ.get("OMBREL_FAKE_VOLUME", SOURCES / "build/e2e/libfakevolume.so")).resolve()


class Volume:
    """What the application is told about the volume of "/", from its next look at it on."""

    def __init__(self, path):
        self.path = path
        self.set(1000 * 10**9, 500 * 10**9)

    def set(self, total, available, name="Disk"):
        self._write(f"{total} {available} {name}")

    def set_used(self, fraction):
        self.set(1000 * 10**9, round(1000 * 10**9 * (1 - fraction)))

    def fail(self, errno):
        self._write(f"error {errno}")

    def _write(self, text):
        new = self.path.with_suffix(".new")
        new.write_text(text + "\n")
        new.rename(self.path)


class Home:
    """A user's home folder."""

    def __init__(self, folder):
        self.folder = folder
        self.configuration = folder / ".config"
        self.settings_file = self.configuration / "ombrel/settings.ini"
        self.agent_file = folder / "Library/LaunchAgents/app.ombrel.Ombrel.plist"
        self.autostart_file = self.configuration / "autostart/app.ombrel.Ombrel.desktop"
        self.configuration.mkdir(parents=True, exist_ok=True)

    def set_preferences(self, **values):
        self.settings_file.parent.mkdir(parents=True, exist_ok=True)
        new = self.settings_file.with_suffix(".new")
        lines = [f"{key}={str(value).lower() if isinstance(value, bool) else value}" for key, value in values.items()]
        new.write_text("\n".join(["[General]", *lines, ""]))
        new.rename(self.settings_file)

    def preferences(self):
        """What is stored; texts, as they are in the file."""
        parser = configparser.ConfigParser()
        parser.optionxform = str
        parser.read(self.settings_file)
        return dict(parser["General"]) if parser.has_section("General") else {}

    def preference(self, key):
        return self.preferences().get(key)


class Application:
    """A running Ombrel."""

    def __init__(self, desktop, home, program, arguments, environment):
        self.desktop, self.home = desktop, home
        self.scale = int(environment.get("QT_SCALE_FACTOR", 1))
        self._log = Path(f"{home.folder}.log")
        with self._log.open("a") as log:
            self._process = desktop.spawn([str(program), *arguments], stdout=log, stderr=log, home=home.folder,
                                          environment={"LD_PRELOAD": str(FAKE_VOLUME),
                                                       "OMBREL_FAKE_VOLUME_FILE": str(desktop.volume.path),
                                                       "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", **environment})
        self.pid = self._process.pid

    def is_running(self):
        return self._process.poll() is None

    def signal(self, number):
        self._process.send_signal(number)

    def wait_for_end(self, seconds=10):
        """The exit status; negative when a signal ended it."""
        try:
            return self._process.wait(seconds)
        except subprocess.TimeoutExpired:
            raise AssertionError(f"still running after {seconds} s") from None

    def output(self):
        """What it has printed."""
        return self._log.read_text(errors="replace")

    def kill(self):
        self._process.kill()
        self._process.wait()

    def close(self):
        """Ends it as a session does. The exit status; fails when it does not end."""
        if self.is_running():
            self.signal(signal.SIGTERM)
        try:
            return self.wait_for_end()
        finally:
            self.kill()

    # ---- what it shows

    def windows(self, kind=None):
        return [window for window in self.desktop.screen.windows(self.pid) if kind in (None, window.kind)]

    def strip(self):
        """The bar in its own window; absent when it is in a tray."""
        sizes = [(width * self.scale, 24 * self.scale) for width in (60, 94)]
        return next((window for window in self.windows() if (window.rect.width, window.rect.height) in sizes), None)

    def wait_for_strip(self, width=None):
        return wait_until(lambda: (found := self.strip()) and width in (None, found.rect.width) and found,
                          f"a strip {width or 60} points wide")

    def tray_icon(self):
        """The window inside an XEmbed tray."""
        owner = self.desktop.screen.selection_owner("_NET_SYSTEM_TRAY_S0")
        return next((window for window in self.windows() if owner and window.depth > 1 and
                     all(8 <= side <= 128 for side in (window.rect.width, window.rect.height))), None)

    def wait_for_tray_icon(self):
        return wait_until(self.tray_icon, "an icon in the tray")

    def popover(self):
        return next((window for window in self.windows() if window.rect.width == 380 * self.scale and
                     window.rect.height >= 452 * self.scale), None)

    def wait_for_popover(self):
        """With the keyboard, or a key would go elsewhere."""
        return wait_until(lambda: (found := self.popover()) and self.desktop.screen.has_keyboard(found) and found, "the popover")

    def wait_until_popover_closed(self):
        wait_until(lambda: not self.popover(), "the popover to close")

    def menus(self):
        """The open menus and lists: what is on the screen beside the bar, the popover and a tooltip."""
        others = {window.id for window in (self.strip(), self.tray_icon(), self.popover()) if window}
        return [window for window in self.windows() if window.id not in others and window.kind != "TOOLTIP"]

    def accessible(self):
        return self.desktop.accessibility.wait_for_application(self.pid)

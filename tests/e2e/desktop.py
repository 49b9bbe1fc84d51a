"""A desktop of its own for the application: X server, window manager, tray, message buses, home folder.

Nothing of it is shared with the desktop on which the tests run, and all of it is gone after `Desktop.close()`.
"""

import atexit
import ctypes
import os
import select
import shutil
import signal
import subprocess
import sys
import tempfile
from pathlib import Path

from gi.repository import GLib

from accessibility import AccessibilityBus
from application import PROGRAM, Application, Home, Volume
from bus import Connection, LoginManager, Loop, SettingsPortal
from notifier import NotifierItem, NotifierTray
from screen import Screen
from waiting import wait_until

ACCESSIBILITY_LAUNCHERS = ("/usr/libexec/at-spi-bus-launcher", "/usr/lib/at-spi2-core/at-spi-bus-launcher")
MARK = "OMBREL_TEST_DESKTOP"  # in the environment of all that belongs to a desktop

BUS_CONFIGURATION = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path={socket}</listen>
  <servicedir>{services}</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/>
  </policy>
</busconfig>
"""

# A panel with nothing on it but the tray.
XFCE_PANEL = """<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="dark-mode" type="bool" value="{dark}"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="length" type="uint" value="100"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="icon-size" type="uint" value="{icon_size}"/>
      <property name="size" type="uint" value="{size}"/>
      <property name="plugin-ids" type="array"><value type="int" value="1"/></property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="systray">
      <property name="square-icons" type="bool" value="true"/>
      <property name="icon-size" type="int" value="{icon_size}"/>
    </property>
  </property>
</channel>
"""


signal.signal(signal.SIGTERM, signal.default_int_handler)  # ends the tests too, and closes the desktops first

_prctl = ctypes.CDLL(None).prctl
_prctl(36, 1)  # PR_SET_CHILD_SUBREAPER: what a child of ours leaves behind becomes our child


def _die_with_parent():
    _prctl(1, signal.SIGKILL)  # PR_SET_PDEATHSIG


class Desktop:
    """`tray` is "trayer" (XEmbed), "xfce" (xfce4-panel), "notifier" (`NotifierTray`) or None. The panel of the first two is
    light or dark as the scheme is, and made for the `scale`."""

    def __init__(self, tray=None, scheme="light", size="1000x760", scale=1, accessibility=True, portal=True):
        # A socket's path has to be short, so it does not go where TMPDIR may point.
        self.folder = Path(tempfile.mkdtemp(prefix="ombrel-", dir="/tmp"))
        self.scale, self.dark = scale, scheme == "dark"
        self._processes, self._closers, self._homes = [], [], 0
        self.loop = self.portal = self.login = self.notifier = self.accessibility = None
        self.environment = {"PATH": os.environ.get("PATH", "/usr/bin:/bin"), "LC_ALL": "C.UTF-8", "TZ": "UTC",
                            MARK: str(self.folder)}
        atexit.register(self.close)
        try:
            self._start(tray, scheme, size, accessibility, portal)
        except BaseException:
            self.close()
            raise

    def _start(self, tray, scheme, size, accessibility, portal):
        self.runtime = self.folder / "run"
        self.runtime.mkdir(mode=0o700)
        (self.folder / "services").mkdir()
        self.home = self.new_home()
        self.volume = Volume(self.folder / "volume")
        self.environment |= {"XDG_RUNTIME_DIR": str(self.runtime), "DISPLAY": self._start_x_server(size)}
        self.screen = Screen(self.environment["DISPLAY"])
        self._closers.append(self.screen.close)
        self.environment["DBUS_SESSION_BUS_ADDRESS"], _bus = self.start_bus("session")
        self.environment["DBUS_SYSTEM_BUS_ADDRESS"], _bus = self.start_bus("system")
        self.session_bus = Connection(self.environment["DBUS_SESSION_BUS_ADDRESS"])
        self._closers.append(self.session_bus.close)
        self.loop = Loop()
        self._closers.append(self.loop.close)
        self.login = LoginManager(self.loop, self.environment["DBUS_SYSTEM_BUS_ADDRESS"])
        self._closers.append(self.login.close)
        if portal:
            self.portal = SettingsPortal(self.loop, self.environment["DBUS_SESSION_BUS_ADDRESS"], scheme)
            self._closers.append(self.portal.close)
        self.spawn(["openbox", "--sm-disable"])
        wait_until(self.screen.has_window_manager, "the window manager")
        if accessibility:
            self._start_accessibility()
        if tray:
            getattr(self, f"start_{tray}")()

    def close(self):
        """Ends and removes everything; nothing happens the second time."""
        atexit.unregister(self.close)
        for closer in reversed(self._closers):
            try:
                closer()
            except Exception as problem:  # the rest is to go all the same
                print(f"closing the desktop: {problem}", file=sys.stderr)
        self._closers.clear()
        for process in reversed(self._processes):
            process.terminate()
            try:
                process.wait(2)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()
        self._end_the_rest()
        shutil.rmtree(self.folder, ignore_errors=True)

    def _end_the_rest(self):
        """Ends what those processes had started, found by the mark in its environment, and forgets what has ended."""
        mark = f"{MARK}={self.folder}".encode()
        known = {process.pid for process in self._processes}

        def nothing_left():
            left = False
            for entry in Path("/proc").iterdir():
                try:
                    if not entry.name.isdigit() or int(entry.name) in known:
                        continue
                    pid, (state, parent) = int(entry.name), (entry / "stat").read_text().rpartition(")")[2].split()[:2]
                    if state == "Z" and int(parent) == os.getpid():
                        os.waitpid(pid, os.WNOHANG)
                    elif mark in (entry / "environ").read_bytes().split(b"\0"):
                        left = True
                        os.kill(pid, signal.SIGKILL)
                except OSError:
                    pass  # ended meanwhile, or somebody else's
            return not left

        wait_until(nothing_left, "the end of all processes")

    # ---- processes

    def spawn(self, command, home=None, environment=None, **options):
        process = subprocess.Popen(command, stdin=subprocess.DEVNULL, cwd=self.folder, preexec_fn=_die_with_parent,
                                   env=self.environment_of(home or self.home.folder, environment or {}),
                                   **{"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL, **options})
        self._processes.append(process)
        return process

    def environment_of(self, home, changes):
        """A change to None takes the variable away."""
        merged = {**self.environment, "HOME": str(home), "XDG_CONFIG_HOME": str(Path(home) / ".config"),
                  "XDG_DATA_HOME": str(Path(home) / ".local/share"), "XDG_CACHE_HOME": str(Path(home) / ".cache"),
                  **changes}
        return {name: value for name, value in merged.items() if value is not None}

    def _spawn_and_read(self, command):
        """Starts what writes a line about itself into the descriptor {fd}; returns that line and the process."""
        reader, writer = os.pipe()
        with os.fdopen(reader) as pipe:
            try:
                process = self.spawn([part.format(fd=writer) for part in command], pass_fds=[writer])
            finally:
                os.close(writer)
            line = pipe.readline().strip() if select.select([pipe], [], [], 10)[0] else ""
        if not line:
            raise AssertionError(f"{command[0]} does not start")
        return line, process

    def _start_x_server(self, size):
        number, _process = self._spawn_and_read(["Xvfb", "-displayfd", "{fd}", "-screen", "0", f"{size}x24", "-dpi", "96",
                                                 "-nolisten", "tcp", "-noreset"])
        return f":{number}"

    def start_bus(self, name):
        """A message bus: its address and its process."""
        configuration = self.folder / f"{name}.conf"
        configuration.write_text(BUS_CONFIGURATION.format(socket=self.folder / name, services=self.folder / "services"))
        return self._spawn_and_read(["dbus-daemon", f"--config-file={configuration}", "--nofork", "--print-address={fd}"])

    def _start_accessibility(self):
        launcher = next(path for path in ACCESSIBILITY_LAUNCHERS if os.path.exists(path))
        self.spawn([launcher, "--launch-immediately"])
        wait_until(lambda: self.session_bus.has_owner("org.a11y.Bus"), "the accessibility bus")
        self.accessibility = AccessibilityBus(self.session_bus, self.loop)
        self._closers.append(self.accessibility.close)

    # ---- trays

    def start_trayer(self):
        tint = "0x202020" if self.dark else "0xF0F0F0"
        self.trayer = self.spawn(["trayer", "--edge", "top", "--align", "right", "--widthtype", "request", "--transparent",
                                  "true", "--alpha", "0", "--tint", tint, "--height", str(24 * self.scale)])
        wait_until(lambda: self.screen.selection_owner("_NET_SYSTEM_TRAY_S0"), "trayer")

    def stop_trayer(self):
        self.trayer.terminate()
        self.trayer.wait(5)
        wait_until(lambda: not self.screen.selection_owner("_NET_SYSTEM_TRAY_S0"), "trayer to end")

    def start_notifier(self):
        self.notifier = NotifierTray(self.loop, self.environment["DBUS_SESSION_BUS_ADDRESS"])
        self._closers.append(self.notifier.close)

    def stop_notifier(self):
        self.notifier.close()
        wait_until(lambda: not self.session_bus.has_owner(NotifierTray.name), "the tray to end")

    def start_xfce(self):
        (self.folder / "services/xfconf.service").symlink_to("/usr/share/dbus-1/services/org.xfce.Xfconf.service")
        channels = self.home.configuration / "xfce4/xfconf/xfce-perchannel-xml"
        channels.mkdir(parents=True)
        (channels / "xfce4-panel.xml").write_text(XFCE_PANEL.format(dark=str(self.dark).lower(), size=26 * self.scale,
                                                                    icon_size=22 * self.scale))
        self.session_bus.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ReloadConfig")
        self.session_bus.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                              "UpdateActivationEnvironment",
                              GLib.Variant("(a{ss})", (self.environment_of(self.home.folder, {}),)))
        self.spawn(["xfce4-panel", "--disable-wm-check"], environment={"GSETTINGS_BACKEND": "memory"})
        wait_until(self._host_is_registered, "xfce4-panel", seconds=20)

    def _ask_watcher(self, name):
        try:
            return self.session_bus.get(NotifierTray.name, NotifierTray.path, NotifierTray.interface, name)
        except GLib.Error:
            return None  # there is none

    def _host_is_registered(self):
        return self._ask_watcher("IsStatusNotifierHostRegistered")

    def notifier_items(self):
        """The items of whichever tray of that kind there is."""
        # Some watchers tell the name of a connection and a path, some the name that the item has registered.
        parts = [registered.partition("/") for registered in self._ask_watcher("RegisteredStatusNotifierItems") or []]
        return [NotifierItem(self.session_bus, name, slash + path or "/StatusNotifierItem") for name, slash, path in parts]

    def wait_for_notifier_item(self):
        """The only item there."""
        return wait_until(lambda: len(items := self.notifier_items()) == 1 and items[0], "one item in the tray")

    # ---- the application

    def new_home(self):
        self._homes += 1
        return Home(self.folder / f"home{self._homes}")

    def start(self, home=None, program=PROGRAM, arguments=(), environment=None):
        """Starts Ombrel, with a fresh home folder unless one is given."""
        return Application(self, home or self.new_home(), program, arguments, environment or {})

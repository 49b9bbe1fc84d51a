"""Starting and ending: what a session, another start and a broken environment do to the application."""

import ast
import json
import os
import shutil
import signal
import stat
import subprocess
from pathlib import Path

from case import DesktopCase
from application import FAKE_VOLUME, PROGRAM
from pictures import coloured_columns
from waiting import holds, wait_for_equal, wait_until


class Process(DesktopCase):
    def setUp(self):
        super().setUp()
        for left in self.sockets():  # by a crash that another test made
            left.unlink()

    def start_and_wait(self, **options):
        application = self.start(**options)
        strip = application.wait_for_strip()
        wait_until(lambda: coloured_columns(self.desktop.screen.picture(strip.rect)) > 20, "the bar")
        return application

    def sockets(self):
        return [path for path in self.desktop.runtime.iterdir() if stat.S_ISSOCK(path.stat().st_mode)]

    def test_a_second_start_ends_well_and_opens_the_popover_of_the_first(self):
        first = self.start_and_wait()
        for arguments in ((), ("--of-another-version",)):
            second = self.start(home=first.home, arguments=arguments)
            self.assertEqual(second.wait_for_end(), 0)
            self.assertEqual(second.output(), "")
            first.wait_for_popover()
            self.assertEqual(len(self.sockets()), 1)
            self.desktop.screen.key("Escape")
            first.wait_until_popover_closed()
        self.assertTrue(first.is_running())

    def test_the_executable_exports_nothing_that_its_modules_could_mix_with_their_own(self):
        # It has a C++ library of its own, the modules load the shared one.
        names = subprocess.run(["nm", "-D", "--defined-only", PROGRAM], capture_output=True, text=True, check=True).stdout
        self.assertEqual([line for line in names.splitlines() if " _Z" in line], [])

    def test_a_start_that_restores_a_session_opens_no_popover(self):
        first = self.start_and_wait()
        self.assertEqual(self.start(home=first.home, arguments=("-session", "10a2b_3")).wait_for_end(), 0)
        holds(lambda: not first.popover(), "the closed popover")
        self.assertIsNone(self.start_and_wait(arguments=("-session", "10a2b_3")).popover())

    def test_a_session_manager_is_told_never_to_restart_it(self):
        manager = self.desktop.spawn(["/usr/bin/python3", Path(__file__).with_name("session_manager.py")],
                                     stdout=subprocess.PIPE, text=True)
        self.addCleanup(manager.stdout.close)
        address = manager.stdout.readline().strip()
        self.start_and_wait(environment={"SESSION_MANAGER": address})
        properties = ast.literal_eval(manager.stdout.readline())
        self.assertEqual(properties["Program"], [b"ombrel"])
        self.assertEqual(properties["RestartStyleHint"][0][0], 3)  # SmRestartNever

    def test_a_second_start_leaves_an_open_popover_open(self):
        first = self.start_and_wait()
        for _repetition in range(2):
            self.assertEqual(self.start(home=first.home).wait_for_end(), 0)
            first.wait_for_popover()
        holds(first.popover, "the open popover")

    def test_with_another_home_folder_it_is_another_one(self):
        first = self.start_and_wait()
        second = self.start_and_wait()
        self.assertTrue(first.is_running() and second.is_running())
        self.assertEqual(len(self.sockets()), 2)
        self.assertIsNone(first.popover())

    def test_signals_end_it_well_and_leave_no_socket(self):
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            with self.subTest(signal=number.name):
                application = self.start_and_wait()
                self.assertEqual(len(self.sockets()), 1)
                application.signal(number)
                self.assertEqual(application.wait_for_end(), 0)
                self.assertEqual(self.sockets(), [])
                self.assertEqual(application.output(), "")

    def test_a_signal_ends_it_with_popover_or_menu_open(self):
        application = self.start_and_wait()
        self.open_popover(application, application.strip().rect)
        self.assertEqual(application.close(), 0)
        application = self.start_and_wait()
        self.open_menu(application, application.strip().rect)
        self.assertEqual(application.close(), 0)

    def test_after_a_crash_the_next_start_is_the_first_again(self):
        application = self.start_and_wait()
        application.kill()
        self.assertEqual(len(self.sockets()), 1)
        self.start_and_wait(home=application.home)
        self.assertEqual(len(self.sockets()), 1)

    def test_the_end_of_the_display_ends_it(self):
        application = self.start_and_wait()
        clients = self.desktop.screen.windows(application.pid)
        self.desktop.screen.display.create_resource_object("window", clients[0].id).kill_client()
        self.desktop.screen.display.sync()
        self.assertGreaterEqual(application.wait_for_end(), 0, "ended by a signal")

    def test_without_a_display_it_says_so(self):
        for display in (":9999", "nonsense", None):
            with self.subTest(display=display):
                application = self.start(environment={"DISPLAY": display, "WAYLAND_DISPLAY": None})
                self.assertEqual(application.wait_for_end(), 69)
                self.assertEqual(application.output(), "ombrel: There is no display to show the bar on.\n")
                self.assertEqual(self.sockets(), [])

    def test_a_settings_file_of_rubbish_counts_as_none(self):
        for rubbish in (bytes(range(256)) * 64, b"[General]\nshowUsedPercentage=perhaps\nbarStyle=@Variant(\0\0\0)\n",
                        b"[General\nbarStyle\n====\n", b"\xff\xfe[\0G\0", b""):
            with self.subTest(rubbish=rubbish[:40]):
                home = self.desktop.new_home()
                home.set_preferences()
                home.settings_file.write_bytes(rubbish)
                application = self.start_and_wait(home=home)
                self.assertIn(application.strip().rect.width, (60, 94))
                self.assertEqual(application.close(), 0)

    def test_a_folder_in_the_place_of_the_settings_file_counts_as_none(self):
        home = self.desktop.new_home()
        home.settings_file.mkdir(parents=True)
        application = self.start_and_wait(home=home)
        self.assertEqual(application.strip().rect.width, 60)
        self.choose_from_menu(self.open_menu(application, application.strip().rect), "Show % Used")
        application.wait_for_strip(94)

    def test_a_home_folder_that_nobody_can_write_to_does_not_stop_it(self):
        # Nothing can be made in /proc, by no user.
        application = self.start_and_wait(environment={"HOME": "/proc", "XDG_CONFIG_HOME": None, "XDG_DATA_HOME": None,
                                                       "XDG_CACHE_HOME": None})
        self.choose_from_menu(self.open_menu(application, application.strip().rect), "Show % Used")
        application.wait_for_strip(94)
        self.open_popover(application, application.strip().rect)

    def test_without_a_message_bus_the_strip_is_there(self):
        nowhere = f"unix:path={self.desktop.folder}/no-bus"
        application = self.start_and_wait(environment={"DBUS_SESSION_BUS_ADDRESS": nowhere,
                                                       "DBUS_SYSTEM_BUS_ADDRESS": nowhere})
        self.open_popover(application, application.strip().rect)
        self.desktop.screen.key("Escape")
        application.wait_until_popover_closed()

    def test_a_message_bus_that_goes_does_not_end_it(self):
        address, bus = self.desktop.start_bus("another")
        application = self.start_and_wait(environment={"DBUS_SESSION_BUS_ADDRESS": address})
        bus.kill()
        bus.wait()
        holds(application.is_running, "the application", seconds=1)
        self.open_popover(application, application.strip().rect)

    def test_without_a_runtime_folder_it_finds_another(self):
        folder = Path(f"/tmp/ombrel-{os.getuid()}")  # the only place that a test shares with others
        before = set(folder.glob("*")) if folder.is_dir() else None
        self.addCleanup(lambda: before is None and shutil.rmtree(folder))
        self.addCleanup(lambda: [new.unlink() for new in set(folder.glob("*")) - (before or set())])
        application = self.start_and_wait(environment={"XDG_RUNTIME_DIR": None})
        self.assertEqual(self.start(home=application.home, environment={"XDG_RUNTIME_DIR": None}).wait_for_end(), 0)
        application.wait_for_popover()

    def test_the_settings_file_is_made_where_there_is_none(self):
        application = self.start_and_wait()
        self.assertFalse(application.home.settings_file.exists())
        self.choose_from_menu(self.open_menu(application, application.strip().rect), "Show % Used")
        wait_for_equal({"showUsedPercentage": "true"}, application.home.preferences, "what is stored")


class CommandLine(DesktopCase):
    options = {"accessibility": False, "portal": False}

    def ombrel(self, *arguments):
        """Runs it where there is neither display nor bus."""
        environment = {"PATH": os.environ.get("PATH", "/usr/bin:/bin"), "HOME": str(self.desktop.home.folder), "TZ": "UTC",
                       "LC_ALL": "C.UTF-8", "LD_PRELOAD": str(FAKE_VOLUME),
                       "OMBREL_FAKE_VOLUME_FILE": str(self.desktop.volume.path)}
        return subprocess.run([PROGRAM, *arguments], env=environment, capture_output=True, text=True, timeout=10, check=False)

    def test_the_status_is_printed_for_people_and_for_programs(self):
        result = self.ombrel("--status")
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        for part in ("Disk", "1 TB", "500 GB", "1000000000000", "500000000000", "50%"):
            self.assertIn(part, result.stdout)
        result = self.ombrel("--status=json")
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        status = json.loads(result.stdout)
        self.assertEqual((status["volumeName"], status["totalBytes"], status["usedBytes"], status["availableBytes"],
                          status["usedFraction"]), ("Disk", 10**12, 5 * 10**11, 5 * 10**11, 0.5))

    def test_a_failing_read_is_an_error(self):
        self.desktop.volume.fail(5)
        for option in ("--status", "--status=json"):
            result = self.ombrel(option)
            self.assertEqual((result.returncode, result.stdout), (1, ""))
            self.assertRegex(result.stderr, r"^ombrel: .+\n$")

    def test_a_worker_whose_job_is_wrong_ends_before_anything_else(self):
        for arguments in (["--directory-metrics-worker"], ["--shallow-children-worker", "--help"],
                          ["--directory-metrics-worker", "--status"], ["--directory-metrics-worker", "--show-cleanup"]):
            ended = subprocess.run([PROGRAM, *arguments], capture_output=True, timeout=10)
            self.assertEqual((ended.returncode, ended.stdout, ended.stderr), (0, b"", b""))

    def test_help_and_version(self):
        self.assertRegex(self.ombrel("--help").stdout, r"^Usage: ombrel")
        self.assertRegex(self.ombrel("--version").stdout, r"^Ombrel \d+\.\d+\.\d+\n$")

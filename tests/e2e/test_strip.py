"""The bar in its own strip, where the desktop has no tray."""

import errno
import itertools
import time

from case import DesktopCase
from clicks import Clicks
from pictures import coloured_columns, ink, lightness, same
from screen import RIGHT, Rect, middle
from waiting import holds, wait_for_equal, wait_until

HALF_FULL = "Disk: 500 GB used, 500 GB available"


class Strip(Clicks, DesktopCase):
    def start_and_wait(self, home=None, **options):
        """The application with its first figures on the screen."""
        application = self.start(home=home, **options)
        strip = application.wait_for_strip()
        wait_until(lambda: "available" in self.button(application).name, "the first figures")
        return application, strip

    def button(self, application):
        (button,) = application.accessible().children
        return button

    def test_stands_at_the_top_right_edge_and_is_one_button_for_a_screen_reader(self):
        application, strip = self.start_and_wait()
        self.assertEqual(strip.rect, Rect(1000 - 60, 0, 60, 24))
        button = self.button(application)
        self.assertEqual((button.role, button.name, button.children), ("push button", HALF_FULL, []))
        self.assertEqual(button.description, HALF_FULL)
        self.assertEqual((button.rect.width, button.rect.height), (60, 24))

    def test_covers_no_maximised_window(self):
        application, _strip = self.start_and_wait()
        for shows in (True, False):
            self.choose_from_menu(self.open_menu(application, application.strip().rect), "Show % Used")
            width = 94 if shows else 60
            application.wait_for_strip(width)
            frame, window = self.desktop.screen.open_maximised_window()
            wait_for_equal((24, 760), lambda: (frame().y, frame().y + frame().height), "top and bottom of the window")
            holds(lambda: application.strip().rect == Rect(1000 - width, 0, width, 24), "the strip's place")
            window.destroy()

    def test_stays_where_it_is_when_another_home_has_one_too(self):
        application, strip = self.start_and_wait()
        other = self.start()
        wait_until(lambda: other.strip() and other.strip().rect.y == 24, "the other one's place")
        holds(lambda: application.strip().rect == strip.rect and other.strip().rect.y == 24, "both places")
        other.close()
        holds(lambda: application.strip().rect == strip.rect, "the strip's place")

    def test_stays_where_it_is_when_the_space_of_a_strip_is_told_before_its_window(self):
        # As openbox does it: first the work area, then the list of windows.
        application, strip = self.start_and_wait()
        self.desktop.screen.tell_work_area(48)
        time.sleep(0.03)
        self.desktop.screen.tell_work_area(24)
        holds(lambda: application.strip().rect == strip.rect, "the strip's place")

    def test_leaves_nothing_reserved_when_it_ends(self):
        application, _strip = self.start_and_wait()
        application.close()
        frame, window = self.desktop.screen.open_maximised_window()
        wait_for_equal(0, lambda: frame().y, "the top of the window")
        window.destroy()

    def test_shows_how_full_the_volume_is(self):
        # The bar is 50 points wide; its ends are round.
        for used, low, high in ((0.0, 0, 0), (0.1, 3, 6), (0.5, 23, 26), (0.9, 43, 46), (1.0, 48, 50)):
            with self.subTest(used=used):
                self.desktop.volume.set_used(used)
                application, strip = self.start_and_wait()
                columns = coloured_columns(self.picture(strip))
                self.assertTrue(low <= columns <= high, f"{columns} coloured columns")
                application.close()

    def test_is_wider_by_the_figure_where_the_stored_preference_asks_for_it(self):
        home = self.desktop.new_home()
        figure = Rect(1000 - 35, 0, 32, 24)
        for shows, width in ((False, 60), (True, 94), (False, 60)):
            with self.subTest(shows=shows):
                home.set_preferences(showUsedPercentage=shows)
                application, strip = self.start_and_wait(home)
                self.assertEqual(strip.rect.width, width)
                self.picture(strip)
                self.assertEqual(ink(self.desktop.screen.picture(figure)) > 0.05, shows)
                application.close()

    def test_every_stored_style_and_sizing_has_a_picture_of_its_own(self):
        home = self.desktop.new_home()
        pictures = {}
        choices = [("storageGradient", "equal"), ("macOSSegments", "equal"), ("macOSSegments", "verifiedSnapshot"),
                   ("vividTheme", "equal"), ("currentTheme", "equal")]
        for style, sizing in choices:
            home.set_preferences(barStyle=style, segmentSizing=sizing)
            application, strip = self.start_and_wait(home)
            pictures[style, sizing] = self.picture(strip)
            application.close()
        for one, other in itertools.combinations(choices, 2):
            self.assertFalse(same(pictures[one], pictures[other]), f"{one} looks like {other}")

    def test_a_failing_read_is_told_and_leaves_the_bar(self):
        application, strip = self.start_and_wait()
        before, button = self.picture(strip), self.button(application)
        self.desktop.volume.fail(errno.EIO)
        self.desktop.login.wake()
        wait_until(lambda: button.description.startswith("Storage unavailable: "), "the failure in the tooltip")
        self.assertGreater(len(button.description), len("Storage unavailable: "))
        self.assertEqual(button.name, HALF_FULL)
        self.assertTrue(same(before, self.picture(strip)))

        self.desktop.volume.set_used(0.8)
        self.desktop.login.wake()
        wait_for_equal("Disk: 800 GB used, 200 GB available", lambda: button.name, "the new figures")
        self.assertEqual(button.description, button.name)
        wait_until(lambda: coloured_columns(self.desktop.screen.picture(strip.rect)) >= 38, "a longer bar")

    def test_a_failing_first_read_shows_an_empty_bar(self):
        self.desktop.volume.fail(errno.EACCES)
        application = self.start()
        strip = application.wait_for_strip()
        wait_until(lambda: self.button(application).description.startswith("Storage unavailable: "), "the failure")
        self.assertEqual(coloured_columns(self.picture(strip)), 0)

    def test_going_to_sleep_reads_nothing(self):
        application, _strip = self.start_and_wait()
        button = self.button(application)
        self.desktop.volume.set_used(0.8)
        self.desktop.login.sleep()
        holds(lambda: button.name == HALF_FULL, "the old figure")
        self.desktop.login.wake()
        wait_until(lambda: button.name != HALF_FULL, "the new figure")

    def test_follows_the_desktop_from_light_to_dark_and_back(self):
        application, strip = self.start_and_wait()
        pictures = [self.picture(strip)]
        for scheme in ("dark", "light"):
            self.desktop.portal.set_scheme(scheme)
            wait_until(lambda: not same(pictures[-1], self.desktop.screen.picture(strip.rect)), scheme)
            pictures.append(self.picture(strip))
        ground = [lightness(picture.getpixel((3, 3))) for picture in pictures]
        self.assertGreater(ground[0], 0.7)
        self.assertLess(ground[1], 0.4)
        self.assertTrue(same(pictures[0], pictures[2]))

    def test_starts_dark_on_a_dark_desktop(self):
        self.desktop.portal.set_scheme("dark")
        application, strip = self.start_and_wait()
        wait_until(lambda: lightness(self.desktop.screen.picture(strip.rect).getpixel((3, 3))) < 0.4, "a dark strip")

    def test_the_menu_shows_what_is_stored_when_it_opens(self):
        application, strip = self.start_and_wait()

        def states():
            menu = self.open_menu(application, strip.rect)
            entries = {entry.name: entry for entry in menu.walk() if entry.role in ("menu item", "check menu item")}
            result = ([name for name, entry in entries.items() if entry.has("checked")],
                      entries["Segment Widths"].has("enabled"))
            self.desktop.screen.key("Escape")
            wait_until(lambda: not application.menus(), "the menu to close")
            return result

        self.assertEqual(states(), (["Rainbow", "Verified Storage Snapshot"], False))
        application.home.set_preferences(showUsedPercentage=True, barStyle="macOSSegments", segmentSizing="equal")
        self.assertEqual(states(), (["Show % Used", "macOS Storage Colors", "Equal Colors"], True))
        application.home.set_preferences(barStyle="of another version")
        self.assertEqual(states(), (["Rainbow", "Verified Storage Snapshot"], False))

    def test_the_figure_is_chosen_from_the_menu_and_makes_the_strip_wider_at_once(self):
        application, _strip = self.start_and_wait()
        for value, width in (("true", 94), ("false", 60)):
            self.choose_from_menu(self.open_menu(application, application.strip().rect), "Show % Used")
            wait_for_equal(value, lambda: application.home.preference("showUsedPercentage"), "the stored preference")
            application.wait_for_strip(width)

    def test_the_menu_refreshes(self):
        application, strip = self.start_and_wait()
        self.desktop.volume.set_used(0.25)
        self.choose_from_menu(self.open_menu(application, strip.rect), "Refresh")
        wait_for_equal("Disk: 250 GB used, 750 GB available", lambda: self.button(application).name, "the figures")

    def test_the_middle_button_does_nothing(self):
        application, strip = self.start_and_wait()
        self.desktop.screen.click(*middle(strip.rect), button=2)
        holds(lambda: not application.popover() and not application.menus(), "nothing open")

    def test_a_press_that_ends_elsewhere_is_none(self):
        application, strip = self.start_and_wait()
        for button in (1, RIGHT):
            self.desktop.screen.move_to(*middle(strip.rect))
            self.desktop.screen.press_button(button)
            self.desktop.screen.move_to(300, 500)
            self.desktop.screen.release_button(button)
            holds(lambda: not application.popover() and not application.menus(), "nothing open", seconds=0.3)

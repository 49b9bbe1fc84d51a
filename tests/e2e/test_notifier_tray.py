"""The item in a tray of the StatusNotifierItem kind, seen and operated as such a tray does."""

import errno
import itertools

from case import DesktopCase
from clicks import CHOICES
from pictures import coloured_columns, same
from waiting import holds, wait_for_equal, wait_until

HALF_FULL = "Disk: 500 GB used, 500 GB available"
TITLES = ["Refresh", "Open Storage Settings…", "Free Up Space…", "Show % Used", "Bar Style", "Segment Widths",
          "Launch at Login", "-", "Quit Ombrel"]
STYLES = ["Rainbow", "macOS Storage Colors", "Vivid Theme", "Current Theme"]
SIZINGS = ["Equal Colors", "Verified Storage Snapshot"]


class NotifierTrayItem(DesktopCase):
    options = {"tray": "notifier"}

    def start_and_wait(self, home=None):
        """The application with its first figures in the tray."""
        application = self.start(home=home)
        item = self.desktop.wait_for_notifier_item()
        wait_until(lambda: "available" in item.tooltip(), "the first figures")
        self.wait_for_picture(item)
        return application, item

    def wait_for_picture(self, item):
        """The picture for a high-density panel, as soon as it has stopped to change."""
        seen = [item.pictures()[64]]

        def unchanged():
            seen.append(item.pictures()[64])
            return len(seen) > 3 and all(same(seen[-1], other) for other in seen[-4:])

        wait_until(unchanged, "a picture that stands still", interval=0.03)
        return seen[-1]

    def test_is_in_the_tray_with_its_figures_and_nowhere_else(self):
        application, item = self.start_and_wait()
        self.assertEqual(item.tooltip(), HALF_FULL)
        self.assertEqual(application.windows(), [])
        self.assertEqual(item.get("Status"), "Active")
        self.assertEqual(item.get("Category"), "ApplicationStatus")

    def test_has_a_picture_for_every_size_of_panel(self):
        self.desktop.volume.set_used(0.75)
        _application, item = self.start_and_wait()
        pictures = item.pictures()
        self.assertLessEqual({16, 22, 24, 32, 48, 64}, set(pictures))
        for side, picture in pictures.items():
            with self.subTest(side=side):
                self.assertEqual(picture.size, (side, side))
                self.assertAlmostEqual(coloured_columns(picture) / side, 0.72, delta=0.1)

    def test_shows_how_full_the_volume_is(self):
        for used in (0.0, 0.1, 0.5, 0.9, 1.0):
            with self.subTest(used=used):
                self.desktop.volume.set_used(used)
                application, item = self.start_and_wait()
                self.assertAlmostEqual(coloured_columns(self.wait_for_picture(item)), 62 * used, delta=3)
                application.close()

    def test_every_stored_preference_has_a_picture_of_its_own(self):
        home = self.desktop.new_home()
        pictures = {}
        choices = [("storageGradient", "equal", False), ("storageGradient", "equal", True),
                   ("macOSSegments", "equal", False), ("macOSSegments", "verifiedSnapshot", False),
                   ("vividTheme", "equal", False), ("currentTheme", "equal", False)]
        for choice in choices:
            style, sizing, shows = choice
            home.set_preferences(barStyle=style, segmentSizing=sizing, showUsedPercentage=shows)
            application, item = self.start_and_wait(home)
            pictures[choice] = self.wait_for_picture(item)
            application.close()
        for one, other in itertools.combinations(choices, 2):
            self.assertFalse(same(pictures[one], pictures[other]), f"{one} looks like {other}")

    def test_a_failing_read_is_told_and_leaves_the_picture(self):
        _application, item = self.start_and_wait()
        before = self.wait_for_picture(item)
        self.desktop.volume.fail(errno.EIO)
        self.desktop.login.wake()
        wait_until(lambda: item.tooltip().startswith("Storage unavailable: "), "the failure in the tooltip")
        self.assertGreater(len(item.tooltip()), len("Storage unavailable: "))
        self.assertTrue(same(before, self.wait_for_picture(item)))

        self.desktop.volume.set_used(0.8)
        self.desktop.login.wake()
        wait_for_equal("Disk: 800 GB used, 200 GB available", item.tooltip, "the new figures")
        self.assertGreater(coloured_columns(self.wait_for_picture(item)), coloured_columns(before))

    def test_follows_the_desktop_from_light_to_dark(self):
        home = self.desktop.new_home()
        home.set_preferences(showUsedPercentage=True)
        _application, item = self.start_and_wait(home)
        before = self.wait_for_picture(item)
        self.desktop.portal.set_scheme("dark")
        wait_until(lambda: not same(before, item.pictures()[64]), "another picture")
        self.desktop.portal.set_scheme("light")
        wait_until(lambda: same(before, item.pictures()[64]), "the first picture")

    def test_left_clicks_open_and_close_the_popover(self):
        application, item = self.start_and_wait()
        for _repetition in range(2):
            item.activate()
            application.wait_for_popover()
            item.activate()
            application.wait_until_popover_closed()
            holds(lambda: not application.popover(), "the closed popover")

    def test_the_popover_opens_inside_the_screen(self):
        application, item = self.start_and_wait()
        for x, y in ((1, 1), (999, 1), (999, 759), (1, 759), (500, 380)):
            with self.subTest(pointer=(x, y)):
                self.desktop.screen.move_to(x, y)
                item.activate(x, y)
                rect = application.wait_for_popover().rect
                self.assertTrue(0 <= rect.x and rect.x + rect.width <= 1000 and
                                0 <= rect.y and rect.y + rect.height <= 760, rect)
                item.activate(x, y)
                application.wait_until_popover_closed()

    def test_the_menu_has_the_commands_in_their_order(self):
        _application, item = self.start_and_wait()
        menu = item.open_menu("Bar Style")
        self.assertEqual(menu.titles(), TITLES)
        self.assertEqual(menu["Bar Style"].titles(), STYLES)
        self.assertEqual(menu["Segment Widths"].titles(), SIZINGS)
        self.assertEqual([entry.title for entry in menu.children if entry.shortcut], [])  # none would work
        self.assertEqual([entry.title for entry in menu.children if entry.checkable], ["Show % Used", "Launch at Login"])
        for title in ("Bar Style", "Segment Widths"):
            self.assertTrue(all(entry.checkable for entry in menu[title].children))

    def states(self, menu):
        return (menu.checked_titles(), menu["Bar Style"].checked_titles(), menu["Segment Widths"].checked_titles(),
                [entry.title for entry in menu.children if not entry.enabled and not entry.separator])

    def test_the_menu_shows_what_is_stored_when_it_opens(self):
        application, item = self.start_and_wait()
        self.assertEqual(self.states(item.open_menu()),
                         ([], ["Rainbow"], ["Verified Storage Snapshot"], ["Segment Widths"]))
        application.home.set_preferences(showUsedPercentage=True, barStyle="macOSSegments", segmentSizing="equal")
        self.assertEqual(self.states(item.open_menu()), (["Show % Used"], ["macOS Storage Colors"], ["Equal Colors"], []))
        application.home.set_preferences(barStyle="of another version", segmentSizing="Equal")
        self.assertEqual(self.states(item.open_menu()),
                         ([], ["Rainbow"], ["Verified Storage Snapshot"], ["Segment Widths"]))

    def test_every_choice_of_the_menu_is_stored_and_shown_at_once(self):
        application, item = self.start_and_wait()
        choices = [*CHOICES, (("Show % Used",), "showUsedPercentage", "true"),
                   (("Show % Used",), "showUsedPercentage", "false")]
        for titles, key, value in choices:
            with self.subTest(titles=titles, value=value):
                before = self.wait_for_picture(item)
                item.choose(*titles)
                wait_for_equal(value, lambda key=key: application.home.preference(key), key)
                wait_until(lambda before=before: not same(before, item.pictures()[64]), "another picture")
                # Also a host that does not ask before it shows the menu has it right.
                wait_for_equal(value != "false", lambda titles=titles: self.is_checked(item, titles), "the check mark")

    def is_checked(self, item, titles):
        entry = item.read_menu()
        for title in titles:
            entry = entry[title]
        return entry.checked

    def test_choosing_what_is_chosen_keeps_it(self):
        application, item = self.start_and_wait()
        item.choose("Bar Style", "Rainbow")
        wait_for_equal("storageGradient", lambda: application.home.preference("barStyle"), "the stored style")
        self.assertEqual(item.open_menu()["Bar Style"].checked_titles(), ["Rainbow"])

    def test_the_menu_refreshes(self):
        _application, item = self.start_and_wait()
        self.desktop.volume.set_used(0.25)
        item.choose("Refresh")
        wait_for_equal("Disk: 250 GB used, 750 GB available", item.tooltip, "the figures")

    def test_the_menu_quits(self):
        application, item = self.start_and_wait()
        item.choose("Quit Ombrel")
        self.assertEqual(application.wait_for_end(), 0)
        wait_until(lambda: not self.desktop.notifier_items(), "the item to leave the tray")


class NotifierTrayComesAndGoes(DesktopCase):
    def test_a_tray_that_appears_later_takes_the_item_until_it_goes(self):
        application = self.start()
        for _repetition in range(2):
            application.wait_for_strip()
            self.desktop.start_notifier()
            item = self.desktop.wait_for_notifier_item()
            wait_for_equal(HALF_FULL, item.tooltip, "the tooltip")
            wait_until(lambda: not application.windows(), "the strip to go")
            item.activate()
            application.wait_for_popover()
            item.activate()
            application.wait_until_popover_closed()
            self.desktop.stop_notifier()
            strip = application.wait_for_strip()
            wait_until(lambda: coloured_columns(self.desktop.screen.picture(application.strip().rect)) > 20, "the bar")
            self.open_popover(application, strip.rect)
            self.desktop.screen.key("Escape")
            application.wait_until_popover_closed()

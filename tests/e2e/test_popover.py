"""The popover, read as a screen reader reads it and operated with mouse and keyboard."""

import errno
import re

from case import DesktopCase
from application import Home
from pictures import coloured_columns, lightness, same
from screen import Rect, middle
from waiting import wait_for_equal, wait_until

CONTROLS = [("push button", "Free Up Space…"), ("check box", "Launch at Login"), ("check box", "Show % Used in Panel"),
            ("combo box", "Bar Style"), ("combo box", "Segment Widths"), ("push button", "Refresh"),
            ("push button", "Storage Settings…"), ("push button", "Quit")]
STYLES = [("Rainbow", "storageGradient"), ("macOS Storage Colors", "macOSSegments"), ("Vivid Theme", "vividTheme"),
          ("Current Theme", "currentTheme")]
SIZINGS = [("Equal Colors", "equal"), ("Verified Storage Snapshot", "verifiedSnapshot")]
DETAILS = {
    "storageGradient": "The color strip shows total used space with the current Ombrel palette.",
    "vividTheme": "Keeps the fixed blue, purple, pink, red, and orange colors from the previous Current Theme.",
    "currentTheme": "Samples the wallpaper actually rendering on the desktop and adds a soft inner glow.",
    "equal": "Each category color gets equal width. Total used and available space stay live.",
    "verifiedSnapshot": "Widths use category totals that were once measured; total disk usage stays live.",
}


class Popover(DesktopCase):
    def open(self, **options):
        """Starts the application, waits for its figures and opens the popover."""
        application = self.start(**options)
        strip = application.wait_for_strip()
        wait_until(lambda: coloured_columns(self.desktop.screen.picture(strip.rect)) > 3, "the bar")
        popover = self.open_and_read_popover(application, strip.rect)
        self.desktop.screen.move_to(5, 700)
        return application, popover

    def close_and_open(self, application):
        self.desktop.screen.key("Escape")
        application.wait_until_popover_closed()
        return self.open_and_read_popover(application, application.strip().rect)

    def texts(self, popover):
        return [label.name for label in popover.find_all("label") if label.name and label.has("showing")]

    def name_of(self, control):
        """What a screen reader says first: a pop-up button's label stands beside it."""
        return control.label or control.name

    def test_has_its_size_and_stands_below_the_item(self):
        application, _popover = self.open()
        self.assertEqual(application.popover().rect, Rect(1000 - 380, 28, 380, 452))

    def test_tells_the_figures(self):
        self.desktop.volume.set(2 * 10**12, 5 * 10**11, "Data & <more>")
        _application, popover = self.open()
        texts = self.texts(popover)
        for text in ("Data & <more>", "1.5 TB of 2 TB used", "Used", "1.5 TB  ·  75%", "Available", "500 GB",
                     DETAILS["storageGradient"]):
            self.assertIn(text, texts)
        self.assertTrue(any(re.fullmatch(r"Updated \d\d:\d\d.*", text) for text in texts), texts)
        bar = popover.find("progress bar")
        self.assertEqual((bar.name, bar.description, bar.value), ("Storage used", "75 percent", 75))

    def test_every_control_has_a_name_and_all_are_in_the_order_of_the_keyboard(self):
        application, popover = self.open()
        found = [(each.role, self.name_of(each)) for each in popover.walk()
                 if each.role in ("push button", "check box", "combo box")]
        self.assertEqual(found, CONTROLS)
        # The pop-up button that cannot be used is left out.
        expected = [name for _role, name in CONTROLS if name != "Segment Widths"]
        reached = [self.name_of(self.desktop.accessibility.focus())]
        while len(reached) < len(expected) + 1:
            self.desktop.accessibility.forget_focus()
            self.desktop.screen.key("Tab")
            focus = wait_until(self.desktop.accessibility.focus, f"the focus behind {reached[-1]}")
            reached.append(self.name_of(focus))
        self.assertEqual(reached, [*expected, expected[0]])
        self.assertTrue(application.popover())

    def test_is_found_among_the_windows_of_the_application(self):
        application, popover = self.open()
        self.assertIn(popover, application.accessible().children)
        self.assertEqual(popover.name, "Ombrel")

    def test_a_click_on_the_percentage_box_is_stored_and_shown_at_once(self):
        application, popover = self.open()
        box = popover.find("check box", "Show % Used in Panel")
        self.assertFalse(box.has("checked"))
        for stored, width in (("true", 94), ("false", 60), ("true", 94)):
            self.click_on(box)
            wait_for_equal(stored, lambda: application.home.preference("showUsedPercentage"), "the stored preference")
            application.wait_for_strip(width)
            wait_for_equal(width == 94, lambda: box.has("checked"), "the check mark")
        self.assertTrue(application.popover())

    def test_the_percentage_box_can_be_toggled_with_keyboard_and_screen_reader(self):
        application, popover = self.open()
        box = popover.find("check box", "Show % Used in Panel")
        for _repetition in range(2):
            self.desktop.screen.key("Tab")
        wait_until(lambda: box.has("focused"), "the focus")
        self.desktop.screen.key("space")
        wait_for_equal("true", lambda: application.home.preference("showUsedPercentage"), "the stored preference")
        box.do("toggle")
        wait_for_equal("false", lambda: application.home.preference("showUsedPercentage"), "the stored preference")
        application.wait_for_strip(60)

    def choose_and_see(self, application, popover, pop_up, title, key, raw):
        """The choice is stored and named, and changes the strip as well as the bar of the popover."""
        places = (application.strip().rect, popover.find("progress bar").rect)
        before = [self.desktop.screen.steady_picture(place) for place in places]
        self.choose_from(pop_up, title)
        wait_for_equal(raw, lambda: application.home.preference(key), "the stored choice")
        wait_for_equal(title, lambda: pop_up.name, "the pop-up's text")
        self.desktop.screen.move_to(5, 700)
        for picture, place in zip(before, places):
            wait_until(lambda: not same(picture, self.desktop.screen.picture(place)), "another picture")

    def test_every_style_is_stored_and_shown_at_once(self):
        application, popover = self.open()
        pop_up, sizing = popover.find("combo box", label="Bar Style"), popover.find("combo box", label="Segment Widths")
        self.assertEqual([item.name for item in pop_up.find_all("list item")], [title for title, _raw in STYLES])
        for title, raw in (*STYLES[1:], STYLES[0]):
            with self.subTest(title=title):
                self.choose_and_see(application, popover, pop_up, title, "barStyle", raw)
                wait_for_equal(raw == "macOSSegments", lambda: sizing.has("enabled"), "the state of the other pop-up")
                self.assertIn(DETAILS["verifiedSnapshot" if raw == "macOSSegments" else raw], self.texts(popover))
        self.assertTrue(application.popover())

    def test_every_sizing_is_stored_and_shown_at_once(self):
        home = self.desktop.new_home()
        home.set_preferences(barStyle="macOSSegments")
        application, popover = self.open(home=home)
        pop_up = popover.find("combo box", label="Segment Widths")
        self.assertEqual([item.name for item in pop_up.find_all("list item")], [title for title, _raw in SIZINGS])
        self.assertEqual((pop_up.name, pop_up.has("enabled")), ("Verified Storage Snapshot", True))
        for title, raw in SIZINGS:
            with self.subTest(title=title):
                self.choose_and_see(application, popover, pop_up, title, "segmentSizing", raw)
                self.assertIn(DETAILS[raw], self.texts(popover))

    def test_a_pop_up_can_be_operated_with_the_keyboard(self):
        application, popover = self.open()
        pop_up = popover.find("combo box", label="Bar Style")
        for _repetition in range(3):
            self.desktop.screen.key("Tab")
        wait_until(lambda: pop_up.has("focused"), "the focus")
        self.desktop.screen.key("Down")
        wait_for_equal("macOSSegments", lambda: application.home.preference("barStyle"), "the stored style")
        self.desktop.screen.key("space")
        wait_until(application.menus, "the list")
        for key in ("End", "Return"):
            self.desktop.screen.key(key)
        wait_for_equal("currentTheme", lambda: application.home.preference("barStyle"), "the stored style")
        self.assertTrue(application.popover())

    def test_escape_closes_an_open_list_before_the_popover(self):
        application, popover = self.open()
        self.click_on(popover.find("combo box", label="Bar Style"))
        wait_until(application.menus, "the list")
        self.desktop.screen.key("Escape")
        wait_until(lambda: not application.menus(), "the list to close")
        self.assertTrue(application.popover())
        self.desktop.screen.key("Escape")
        application.wait_until_popover_closed()
        self.assertEqual(application.home.preferences(), {})

    def test_a_click_outside_closes_it_also_after_a_list_was_open(self):
        application, popover = self.open()
        self.choose_from(popover.find("combo box", label="Bar Style"), "Vivid Theme")
        wait_until(lambda: not application.menus(), "the list to close")
        self.desktop.screen.click(100, 600)
        application.wait_until_popover_closed()

    def test_shows_what_is_stored_when_it_opens(self):
        application, popover = self.open()
        application.home.set_preferences(showUsedPercentage=True, barStyle="macOSSegments", segmentSizing="equal")
        popover = self.close_and_open(application)
        self.assertTrue(popover.find("check box", "Show % Used in Panel").has("checked"))
        self.assertEqual(popover.find("combo box", label="Bar Style").name, "macOS Storage Colors")
        sizing = popover.find("combo box", label="Segment Widths")
        self.assertEqual((sizing.name, sizing.has("enabled")), ("Equal Colors", True))
        self.assertIn(DETAILS["equal"], self.texts(popover))

    def test_an_open_popover_follows_the_volume_and_tells_failures(self):
        _application, popover = self.open()
        self.desktop.volume.set_used(0.9)
        self.click_on(popover.find("push button", "Refresh"))
        wait_until(lambda: "900 GB  ·  90%" in self.texts(popover), "the new figures")

        self.desktop.volume.fail(errno.EIO)
        before = self.texts(popover)
        self.click_on(popover.find("push button", "Refresh"))
        wait_until(lambda: len(self.texts(popover)) == len(before) + 1, "the failure")
        (text,) = set(self.texts(popover)) - set(before)
        self.assertGreater(len(text), 5)
        error = next(label for label in popover.find_all("label") if label.name == text)
        self.assertIn((255, 59, 48), [color for _count, color in self.desktop.screen.steady_picture(error.rect).getcolors(9999)])

        self.desktop.volume.set_used(0.2)
        self.click_on(popover.find("push button", "Refresh"))
        wait_until(lambda: "200 GB  ·  20%" in self.texts(popover) and text not in self.texts(popover), "the recovery")

    def test_before_the_first_figures_it_says_so(self):
        self.desktop.volume.fail(errno.EIO)
        application = self.start()
        strip = application.wait_for_strip()
        popover = self.open_and_read_popover(application, strip.rect)
        texts = self.texts(popover)
        self.assertIn("Loading storage…", texts)
        self.assertEqual(texts.count("—"), 2)
        bar = popover.find("progress bar")
        self.assertEqual((bar.name, bar.description), ("Storage", "Loading"))

    def test_follows_the_desktop_from_light_to_dark(self):
        application, _popover = self.open()
        place = application.popover().rect
        before = self.desktop.screen.steady_picture(place)
        self.desktop.portal.set_scheme("dark")
        wait_until(lambda: lightness(self.desktop.screen.picture(place).getpixel((8, 8))) < 0.4, "a dark popover")
        self.desktop.portal.set_scheme("light")
        wait_until(lambda: same(before, self.desktop.screen.picture(place)), "the first picture")

    def test_storage_settings_closes_it(self):
        application, popover = self.open()
        self.click_on(popover.find("push button", "Storage Settings…"))
        application.wait_until_popover_closed()
        self.assertTrue(self.open_and_read_popover(application, application.strip().rect))

    def test_free_up_space_closes_it(self):
        application, popover = self.open()
        self.click_on(popover.find("push button", "Free Up Space…"))
        application.wait_until_popover_closed()
        self.assertTrue(self.open_and_read_popover(application, application.strip().rect))

    def test_quit_ends_the_application(self):
        application, popover = self.open()
        self.click_on(popover.find("push button", "Quit"))
        self.assertEqual(application.wait_for_end(), 0)

    def test_a_long_error_takes_two_lines_and_can_be_read_in_whole(self):
        home = Home(self.desktop.folder / ("home-of-somebody-" + "x" * 120))
        home.agent_file.parent.parent.mkdir(parents=True)
        home.agent_file.parent.write_text("a file where a folder is to be")
        application, popover = self.open(home=home)
        self.click_on(popover.find("check box", "Launch at Login"))
        error = wait_until(lambda: next((label for label in popover.find_all("label")
                                         if label.name.startswith("Could not change the autostart entry: ")), None), "the error")
        self.assertIn(str(home.agent_file.parent), error.name)
        wait_for_equal(error.name, lambda: error.description, "what is said of the elided error")
        self.assertEqual(application.popover().rect.height, 452)
        updated = next(label for label in popover.find_all("label") if label.name.startswith("Updated "))
        self.assertLessEqual(error.rect.y + error.rect.height, updated.rect.y)
        self.assertLess(error.rect.height, 3 * updated.rect.height)

    def test_the_middle_of_a_long_name_is_not_cut_off(self):
        name = "A volume whose name is so long that no line can hold it at"
        self.desktop.volume.set(10**12, 10**11, name)
        application, popover = self.open()
        self.assertIn(name, self.texts(popover))
        title = next(label for label in popover.find_all("label") if label.name == name)
        window = application.popover().rect
        self.assertLessEqual(title.rect.x + title.rect.width, window.x + window.width - 18)
        self.assertEqual(window.width, 380)
        self.assertLessEqual(middle(title.rect)[1], window.y + 60)

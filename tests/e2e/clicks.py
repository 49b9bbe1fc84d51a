"""What the bar does when it is pointed at and clicked, alike in its own strip and in a tray."""

from pictures import same
from screen import middle
from waiting import holds, wait_for_equal, wait_until

MENU = ["Refresh", "Open Storage Settings…", "Free Up Space…", "Show % Used", "Bar Style", "Segment Widths",
        "Launch at Login", "", "Quit Ombrel"]
# Entries of the menu, with the preference that each stores. Each changes the picture of the one before.
CHOICES = [(("Bar Style", "macOS Storage Colors"), "barStyle", "macOSSegments"),
           (("Segment Widths", "Equal Colors"), "segmentSizing", "equal"),
           (("Segment Widths", "Verified Storage Snapshot"), "segmentSizing", "verifiedSnapshot"),
           (("Bar Style", "Vivid Theme"), "barStyle", "vividTheme"),
           (("Bar Style", "Current Theme"), "barStyle", "currentTheme"),
           (("Bar Style", "Rainbow"), "barStyle", "storageGradient")]


class Clicks:
    """Tests for a `DesktopCase` whose `start_and_wait` returns the application and the window that holds the bar."""

    def picture(self, bar):
        return self.desktop.screen.steady_picture(bar.rect)

    def check_place(self, bar, popover):
        """Where the popover opens, if that is asked."""

    def test_left_clicks_open_and_close_the_popover(self):
        application, bar = self.start_and_wait()
        for _repetition in range(2):
            self.desktop.screen.click(*middle(bar.rect))
            self.check_place(bar.rect, application.wait_for_popover().rect)
            self.desktop.screen.click(*middle(bar.rect))
            application.wait_until_popover_closed()
            holds(lambda: not application.popover(), "the closed popover")

    def test_a_slow_click_escape_and_a_click_outside_close_the_popover(self):
        application, bar = self.start_and_wait()
        for close in (lambda: self.desktop.screen.click(*middle(bar.rect), seconds=0.6),
                      lambda: self.desktop.screen.key("Escape"), lambda: self.desktop.screen.click(100, 600)):
            self.open_popover(application, bar.rect)
            close()
            application.wait_until_popover_closed()
            holds(lambda: not application.popover(), "the closed popover")

    def test_every_opening_is_told_to_a_screen_reader(self):
        application, bar = self.start_and_wait()
        for _repetition in range(2):
            self.open_and_read_popover(application, bar.rect)
            self.desktop.screen.key("Escape")
            application.wait_until_popover_closed()

    def test_a_right_click_opens_the_menu_and_not_the_popover(self):
        application, bar = self.start_and_wait()
        menu = self.open_menu(application, bar.rect)
        self.assertIsNone(application.popover())
        self.assertEqual([entry.name for entry in menu.children], MENU)
        (window,) = application.menus()
        self.assertLessEqual(window.rect.x + window.rect.width, 1000)
        self.desktop.screen.key("Escape")
        wait_until(lambda: not application.menus(), "the menu to close")

    def choose_and_see(self, application, bar, titles, key, value):
        before = self.picture(bar)
        self.choose_from_menu(self.open_menu(application, bar.rect), *titles)
        wait_for_equal(value, lambda: application.home.preference(key), key)
        wait_until(lambda: not application.menus(), "the menu to close")
        self.desktop.screen.move_to(5, 700)
        wait_until(lambda: not same(before, self.desktop.screen.picture(bar.rect)), "another picture")

    def test_every_choice_of_the_menu_is_stored_and_shown_at_once(self):
        application, bar = self.start_and_wait()
        for titles, key, value in CHOICES:
            with self.subTest(titles=titles):
                self.choose_and_see(application, bar, titles, key, value)

    def test_shows_its_tooltip_under_the_pointer(self):
        application, bar = self.start_and_wait()
        x, y = middle(bar.rect)
        for column in (x, x + 1):
            self.desktop.screen.move_to(column, y)
        tooltip = wait_until(lambda: application.windows("TOOLTIP"), "the tooltip", seconds=5)[0]
        self.assertGreater(tooltip.rect.width, 150)

    def test_the_menu_quits(self):
        application, bar = self.start_and_wait()
        self.choose_from_menu(self.open_menu(application, bar.rect), "Quit Ombrel")
        self.assertEqual(application.wait_for_end(), 0)

"""What the tests share: one desktop for a class, one application and home folder for a test."""

import sys
import unittest

from application import SOURCES
from desktop import Desktop
from screen import RIGHT, middle
from waiting import wait_until

FAILURES = SOURCES / "build/e2e/failures"


class DesktopCase(unittest.TestCase):
    """Sub-classes choose their desktop with `options`, see `Desktop`."""

    options = {}

    @classmethod
    def setUpClass(cls):
        cls.desktop = Desktop(**cls.options)
        cls.addClassCleanup(cls.desktop.close)

    def setUp(self):
        self.desktop.volume.set(10**12, 5 * 10**11)
        if self.desktop.portal:
            self.desktop.portal.set_scheme("light")
        if self.desktop.accessibility:
            self.desktop.accessibility.forget_focus()
        self.desktop.screen.move_to(5, 700)

    def start(self, **options):
        """Starts the application; it is ended with the test, and is to end well."""
        application = self.desktop.start(**options)
        self.addCleanup(self._end, application)
        return application

    def run(self, result=None):
        self._result = result
        return super().run(result)

    def _has_failed(self):
        problems = [*self._result.failures, *self._result.errors]
        return any(getattr(test, "test_case", test) is self for test, _text in problems)

    def _end(self, application):
        if self._has_failed():
            self._tell_about(application)
            application.kill()
        elif application.is_running():
            self.assertEqual(application.close(), 0)

    def _tell_about(self, application):
        FAILURES.mkdir(parents=True, exist_ok=True)
        picture = FAILURES / f"{self.id()}.png"
        self.desktop.screen.picture().save(picture)
        state = "still running" if application.is_running() else f"gone, status {application.wait_for_end()}"
        print(f"\n{self.id()}: the application is {state}, the screen is {picture}; printed was:\n{application.output()}",
              file=sys.stderr)

    # ---- what a person does

    def open_popover(self, application, place):
        """Clicks at `place` and returns the popover's window."""
        self.desktop.screen.click(*middle(place))
        return application.wait_for_popover()

    def open_and_read_popover(self, application, place):
        """Clicks at `place` and returns the popover as a screen reader finds it: by where the keyboard is."""
        application.accessible()
        self.desktop.accessibility.forget_focus()
        self.open_popover(application, place)
        return self.focused_window("push button")

    def focused_window(self, *roles):
        """The window with the object that gets the keyboard, which has one of the roles."""
        def window():
            focus = self.desktop.accessibility.focus()
            # A window that is itself the button is the strip.
            return focus and focus.role in roles and (found := focus.window()) != focus and found

        return wait_until(window, f"the focus on a {' or '.join(roles)}")

    def open_menu(self, application, place):
        """Clicks with the right button at `place` and returns the menu."""
        application.accessible()
        self.desktop.screen.click(*middle(place), RIGHT)
        wait_until(application.menus, "the menu")
        self.desktop.accessibility.forget_focus()
        self.desktop.screen.key("Down")
        return self.focused_window("menu item", "check menu item")

    def click_on(self, accessible):
        """A click of the mouse on what a screen reader has found."""
        self.desktop.screen.click(*middle(accessible.rect))

    def choose_from(self, pop_up, title):
        """Opens a pop-up button with the mouse and clicks the item."""
        self.click_on(pop_up)
        item = wait_until(lambda: next((each for each in pop_up.find_all("list item") if each.name == title and
                                        each.has("showing") and each.rect.height > 0), None), f"{title!r} in the list")
        self.click_on(item)

    def choose_from_menu(self, menu, *titles):
        """Clicks the entry at the end of the path of titles, opening the submenus above it."""
        for title in titles:
            entry = next(each for each in menu.children if each.name == title)
            wait_until(lambda entry=entry: entry.has("showing"), f"{title!r} in the menu")
            submenus = entry.children
            self.click_on(entry)
            menu = submenus[0] if submenus else None

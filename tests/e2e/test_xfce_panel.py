"""The item in a panel that people use: Xfce's, a StatusNotifierItem host that draws the menu by itself."""

from case import DesktopCase
from pictures import coloured_columns
from screen import RIGHT, Rect, middle
from waiting import wait_for_equal, wait_until


class XfcePanel(DesktopCase):
    options = {"tray": "xfce", "accessibility": False}

    def start_and_wait(self):
        application = self.start()
        item = self.desktop.wait_for_notifier_item()
        wait_for_equal("Disk: 500 GB used, 500 GB available", item.tooltip, "the tooltip")
        return application, item

    def panel_picture(self):
        return self.desktop.screen.picture(Rect(0, 0, 1000, 26))

    def place(self):
        """Where the bar is in the panel: it stands alone there."""
        picture = self.panel_picture()
        columns = [x for x in range(picture.width) if coloured_columns(picture.crop((x, 0, x + 1, 26)))]
        return columns and Rect(columns[0], 0, 20, 26)

    def test_the_panel_shows_the_bar(self):
        _application, _item = self.start_and_wait()
        wait_until(lambda: 7 <= coloured_columns(self.panel_picture()) <= 13, "a bar that is half full")
        self.desktop.volume.set_used(0.9)
        self.desktop.login.wake()
        wait_until(lambda: 16 <= coloured_columns(self.panel_picture()) <= 22, "a bar that is nearly full")

    def test_a_left_click_opens_the_popover_and_the_next_closes_it(self):
        application, _item = self.start_and_wait()
        place = wait_until(self.place, "the bar in the panel")
        self.desktop.screen.click(*middle(place))
        popover = application.wait_for_popover().rect
        self.assertLessEqual(popover.x, middle(place)[0])
        self.assertGreaterEqual(popover.y, 20)
        self.desktop.screen.click(*middle(place))
        application.wait_until_popover_closed()

    def test_a_right_click_opens_a_menu_that_chooses(self):
        application, _item = self.start_and_wait()
        place = wait_until(self.place, "the bar in the panel")
        for value in ("true", "false"):
            before = len(self.desktop.screen.windows())
            self.desktop.screen.click(*middle(place), RIGHT)
            wait_until(lambda before=before: len(self.desktop.screen.windows()) > before, "the panel's menu")
            self.desktop.screen.steady_picture()
            for key in ("Down", "Down", "Down", "Down", "Return"):
                self.desktop.screen.key(key)
            wait_for_equal(value, lambda: application.home.preference("showUsedPercentage"), "the stored preference")
        self.assertIsNone(application.popover())

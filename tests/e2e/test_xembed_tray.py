"""The item in a tray of the XEmbed kind, which takes a small window of ours."""

from case import DesktopCase
from pictures import coloured_columns, same
from screen import middle
from waiting import holds, wait_for_equal, wait_until


class XEmbedTray(DesktopCase):
    options = {"tray": "trayer"}

    def start_and_wait(self, home=None):
        """The application with its first figures in the tray."""
        application = self.start(home=home)

        def painted_icon():
            icon = application.tray_icon()
            return icon and coloured_columns(self.desktop.screen.picture(icon.rect)) > 0 and icon

        return application, wait_until(painted_icon, "the bar in the tray")

    def picture(self, icon):
        return self.desktop.screen.steady_picture(icon.rect)

    def test_is_in_the_tray_and_nowhere_else(self):
        application, icon = self.start_and_wait()
        self.assertGreaterEqual(icon.rect.width, 16)
        self.assertEqual([window.id for window in application.windows()], [icon.id])

    def test_shows_how_full_the_volume_is(self):
        for used in (0.25, 0.5, 0.75, 1.0):
            with self.subTest(used=used):
                self.desktop.volume.set_used(used)
                application, icon = self.start_and_wait()
                self.assertAlmostEqual(coloured_columns(self.picture(icon)) / icon.rect.width, 0.9 * used, delta=0.08)
                application.close()

    def test_the_picture_follows_the_choices_at_once(self):
        application, icon = self.start_and_wait()
        before = self.picture(icon)
        for titles, key, value in ((("Show % Used",), "showUsedPercentage", "true"),
                                   (("Show % Used",), "showUsedPercentage", "false"),
                                   (("Bar Style", "Vivid Theme"), "barStyle", "vividTheme")):
            with self.subTest(titles=titles):
                self.choose_from_menu(self.open_menu(application, icon.rect), *titles)
                wait_for_equal(value, lambda key=key: application.home.preference(key), key)
                wait_until(lambda: not application.menus(), "the menu to close")
                self.desktop.screen.move_to(5, 700)
                wait_until(lambda before=before: not same(before, self.desktop.screen.picture(icon.rect)), "another picture")
                before = self.picture(icon)

    def test_the_stored_preference_counts_after_a_restart(self):
        home = self.desktop.new_home()
        pictures = []
        for shows in (False, True, False):
            home.set_preferences(showUsedPercentage=shows)
            application, icon = self.start_and_wait(home)
            pictures.append(self.picture(icon))
            application.close()
        self.assertFalse(same(pictures[0], pictures[1]))
        self.assertTrue(same(pictures[0], pictures[2]))

    def test_left_clicks_open_and_close_the_popover_at_the_item(self):
        application, icon = self.start_and_wait()
        for _repetition in range(2):
            self.desktop.screen.click(*middle(icon.rect))
            popover = application.wait_for_popover().rect
            self.assertTrue(0 <= popover.y - (icon.rect.y + icon.rect.height) <= 12, popover)
            self.assertTrue(popover.x <= middle(icon.rect)[0] <= popover.x + popover.width <= 1000, popover)
            self.desktop.screen.click(*middle(icon.rect))
            application.wait_until_popover_closed()
            holds(lambda: not application.popover(), "the closed popover")

    def test_a_slow_click_closes_the_popover_too(self):
        application, icon = self.start_and_wait()
        self.open_popover(application, icon.rect)
        self.desktop.screen.click(*middle(icon.rect), seconds=0.6)
        application.wait_until_popover_closed()
        holds(lambda: not application.popover(), "the closed popover")

    def test_escape_and_a_click_outside_close_the_popover(self):
        application, icon = self.start_and_wait()
        for close in (lambda: self.desktop.screen.key("Escape"), lambda: self.desktop.screen.click(100, 600)):
            self.open_popover(application, icon.rect)
            close()
            application.wait_until_popover_closed()
            holds(lambda: not application.popover(), "the closed popover")

    def test_every_opening_is_told_to_a_screen_reader(self):
        application, icon = self.start_and_wait()
        for _repetition in range(2):
            self.open_and_read_popover(application, icon.rect)
            self.desktop.screen.key("Escape")
            application.wait_until_popover_closed()

    def test_a_right_click_opens_the_menu_and_not_the_popover(self):
        application, icon = self.start_and_wait()
        menu = self.open_menu(application, icon.rect)
        self.assertEqual([entry.name for entry in menu.children][:3], ["Refresh", "Open Storage Settings…", "Free Up Space…"])
        self.assertIsNone(application.popover())
        self.desktop.screen.key("Escape")
        wait_until(lambda: not application.menus(), "the menu to close")

    def test_shows_its_tooltip_under_the_pointer(self):
        application, icon = self.start_and_wait()
        x, y = middle(icon.rect)
        for column in (x, x + 1):
            self.desktop.screen.move_to(column, y)
        tooltip = wait_until(lambda: application.windows("TOOLTIP"), "the tooltip", seconds=5)[0]
        self.assertGreater(tooltip.rect.width, 150)

    def test_the_menu_quits(self):
        application, icon = self.start_and_wait()
        self.choose_from_menu(self.open_menu(application, icon.rect), "Quit Ombrel")
        self.assertEqual(application.wait_for_end(), 0)


class XEmbedTrayComesAndGoes(DesktopCase):
    def test_a_tray_that_appears_later_takes_the_item_until_it_goes(self):
        application = self.start()
        for _repetition in range(2):
            strip = application.wait_for_strip()
            self.desktop.start_trayer()
            icon = application.wait_for_tray_icon()
            wait_until(lambda: not application.strip(), "the strip to go")
            wait_until(lambda: (icon := application.tray_icon()) and
                       coloured_columns(self.desktop.screen.picture(icon.rect)) > 5, "the bar in the tray")
            icon = application.tray_icon()
            self.open_popover(application, icon.rect)
            self.desktop.screen.key("Escape")
            application.wait_until_popover_closed()
            self.desktop.stop_trayer()
            strip = application.wait_for_strip()
            wait_until(lambda: coloured_columns(self.desktop.screen.picture(application.strip().rect)) > 20, "the bar")
            self.open_popover(application, strip.rect)
            self.desktop.screen.key("Escape")
            application.wait_until_popover_closed()

    def test_the_tray_may_go_while_popover_or_menu_is_open(self):
        application = self.start()
        application.wait_for_strip()
        self.desktop.start_trayer()
        icon = application.wait_for_tray_icon()
        self.open_popover(application, icon.rect)
        self.desktop.stop_trayer()
        strip = application.wait_for_strip()
        self.desktop.screen.key("Escape")
        application.wait_until_popover_closed()
        self.open_menu(application, strip.rect)
        self.desktop.start_trayer()
        icon = application.wait_for_tray_icon()
        self.desktop.screen.key("Escape")
        wait_until(lambda: not application.menus(), "the menu to close")
        self.open_popover(application, icon.rect)
        self.desktop.screen.key("Escape")
        application.wait_until_popover_closed()
        self.desktop.stop_trayer()
        application.wait_for_strip()

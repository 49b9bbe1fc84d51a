"""The item in a tray of the XEmbed kind, which takes a small window of ours."""

from case import DesktopCase
from clicks import Clicks
from pictures import coloured_columns, same
from screen import middle
from waiting import wait_until


class XEmbedTray(Clicks, DesktopCase):
    options = {"tray": "trayer"}

    def start_and_wait(self, home=None):
        """The application with its first figures in the tray."""
        application = self.start(home=home)

        def painted_icon():
            icon = application.tray_icon()
            return icon and coloured_columns(self.desktop.screen.picture(icon.rect)) > 0 and icon

        return application, wait_until(painted_icon, "the bar in the tray")

    def check_place(self, icon, popover):
        self.assertTrue(0 <= popover.y - (icon.y + icon.height) <= 12, popover)
        self.assertTrue(popover.x <= middle(icon)[0] <= popover.x + popover.width <= 1000, popover)

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

    def test_the_figure_is_chosen_from_the_menu_and_shown_at_once(self):
        application, icon = self.start_and_wait()
        for value in ("true", "false"):
            self.choose_and_see(application, icon, ("Show % Used",), "showUsedPercentage", value)

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

"""The style "Current Theme": the colours of what is really shown on the desktop."""

import colorsys
import subprocess
import sys

from PIL import Image

from case import DesktopCase
from pictures import coloured_columns
from screen import Rect
from waiting import wait_until

RED, BLUE, GREEN, YELLOW, GREY = (200, 30, 30), (30, 60, 200), (30, 160, 60), (220, 200, 40), (120, 120, 120)

# A program that covers the screen with a film, as far as its window and its open files tell.
PLAYER = """
import os, sys
from Xlib import X, Xatom, display
connection = display.Display()
screen = connection.screen()
window = screen.root.create_window(0, 0, screen.width_in_pixels, screen.height_in_pixels, 0, screen.root_depth,
                                   background_pixel=0, override_redirect=int(sys.argv[2]))
atom = connection.intern_atom
window.change_property(atom("_NET_WM_WINDOW_TYPE"), Xatom.ATOM, 32, [atom("_NET_WM_WINDOW_TYPE_DESKTOP")])
window.change_property(atom("_NET_WM_PID"), Xatom.CARDINAL, 32, [os.getpid()])
film = open(sys.argv[1], "rb")
window.configure(stack_mode=X.Below)
window.map()
connection.sync()
print("shown", flush=True)
while True:
    connection.next_event()
"""


class Wallpaper(DesktopCase):
    def make_picture(self, name, *colours, size=(640, 400)):
        """Stripes of equal width."""
        path = self.desktop.folder / name
        picture = Image.new("RGB", size)
        width = size[0] // len(colours)
        for index, colour in enumerate(colours):
            picture.paste(colour, (index * width, 0, (index + 1) * width, size[1]))
        picture.save(path)
        return path

    def make_film(self, name, *colours):
        """The same stripes for two seconds."""
        picture, path = self.make_picture("frame.png", *colours), self.desktop.folder / name
        subprocess.run(["ffmpeg", "-loglevel", "error", "-y", "-loop", "1", "-i", picture, "-t", "2", "-r", "10",
                        "-c:v", "libx264", "-pix_fmt", "yuv420p", path], check=True)
        return path

    def set_wallpaper(self, home, path):
        self.desktop.spawn(["feh", "--bg-scale", path], home=home.folder).wait()

    def open(self, home):
        home.set_preferences(barStyle="currentTheme")
        self.desktop.volume.set_used(0.95)
        application = self.start(home=home)
        application.wait_for_strip()
        return application

    def hues(self, application):
        """The families of colours in the middle of the bar, inside what shows where the keyboard is."""
        found = set()
        strip = application.strip().rect
        inside = Rect(strip.x + 8, strip.y + 10, strip.width - 16, 4)
        picture = self.desktop.screen.picture(inside).convert("RGB")
        for red, green, blue in picture.getdata():
            hue, saturation, value = colorsys.rgb_to_hsv(red / 255, green / 255, blue / 255)
            if saturation > 0.35 and value > 0.25:
                found.add(("red", "yellow", "green", "cyan", "blue", "pink")[int(hue * 6 + 0.5) % 6])
        return found

    def wait_for_hues(self, application, wanted, unwanted=()):
        def found():
            hues = self.hues(application)
            return hues.issuperset(wanted) and hues.isdisjoint(unwanted)

        try:
            wait_until(found, f"{wanted} in the bar")
        except AssertionError:
            raise AssertionError(f"{wanted} and not {unwanted} in the bar; there is {self.hues(application)}") from None

    def refresh(self, application):
        popover = self.open_and_read_popover(application, application.strip().rect)
        self.click_on(popover.find("push button", "Refresh"))
        self.desktop.screen.key("Escape")
        application.wait_until_popover_closed()
        self.desktop.screen.move_to(5, 700)

    def test_the_bar_takes_the_colours_of_the_picture_and_of_the_next_one_when_refreshed(self):
        home = self.desktop.new_home()
        self.set_wallpaper(home, self.make_picture("warm and blue.png", RED, BLUE))
        application = self.open(home)
        self.wait_for_hues(application, {"red", "blue"}, {"green", "yellow"})
        self.set_wallpaper(home, self.make_picture("meadow.jpg", GREEN, YELLOW))
        self.refresh(application)
        self.wait_for_hues(application, {"green", "yellow"}, {"red", "blue"})

    def test_a_picture_that_was_changed_in_place_is_looked_at_again(self):
        home = self.desktop.new_home()
        self.set_wallpaper(home, self.make_picture("one.png", RED, BLUE))
        application = self.open(home)
        self.wait_for_hues(application, {"red", "blue"}, {"green"})
        self.make_picture("one.png", GREEN, YELLOW)
        self.refresh(application)
        self.wait_for_hues(application, {"green", "yellow"}, {"red", "blue"})

    def test_a_grey_picture_makes_a_grey_bar(self):
        home = self.desktop.new_home()
        self.set_wallpaper(home, self.make_picture("fog.png", GREY, (60, 60, 60), (200, 200, 200)))
        application = self.open(home)
        wait_until(lambda: coloured_columns(self.desktop.screen.picture(application.strip().rect)) == 0, "a grey bar")

    def test_without_a_wallpaper_the_vivid_colours_stand_in(self):
        application = self.open(self.desktop.new_home())
        self.wait_for_hues(application, {"blue", "red"}, {"green"})

    def test_a_film_that_covers_the_screen_comes_before_the_picture(self):
        for managed in (True, False):
            with self.subTest(managed=managed):
                home = self.desktop.new_home()
                self.set_wallpaper(home, self.make_picture("below.png", RED, BLUE))
                film = self.make_film("film.MP4", GREEN, YELLOW)
                player = self.desktop.spawn([sys.executable, "-c", PLAYER, film, str(int(not managed))],
                                            stdout=subprocess.PIPE)
                self.addCleanup(player.stdout.close)
                self.addCleanup(player.kill)
                self.assertEqual(player.stdout.readline(), b"shown\n")
                application = self.open(home)
                self.wait_for_hues(application, {"green"}, {"red"})
                player.terminate()
                player.wait()
                self.refresh(application)
                self.wait_for_hues(application, {"red", "blue"}, {"green"})
                self.assertEqual(application.close(), 0)

    def test_a_damaged_picture_leaves_the_vivid_colours(self):
        home = self.desktop.new_home()
        path = self.make_picture("damaged.png", RED)
        self.set_wallpaper(home, path)
        path.write_bytes(path.read_bytes()[:60])
        application = self.open(home)
        self.wait_for_hues(application, {"blue", "red"}, {"green"})

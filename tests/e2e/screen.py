"""An X screen as a person meets it: windows, the picture, the mouse, the keyboard."""

import time
from collections import namedtuple

from PIL import Image
from Xlib import X, XK, Xatom, display, error
from Xlib.ext import xtest

from waiting import wait_until

LEFT, MIDDLE, RIGHT = 1, 2, 3
NO_DOUBLE_CLICK = 0.45  # seconds between two clicks

Rect = namedtuple("Rect", "x y width height")


def middle(rect):
    return rect.x + rect.width // 2, rect.y + rect.height // 2


class Window:
    """A viewable window: its place on the screen, its process, its EWMH type ("TOOLTIP", "POPUP_MENU", ...)."""

    def __init__(self, handle, rect, pid, title, kind, depth):
        self.id, self.rect, self.pid, self.title, self.kind, self.depth = handle.id, rect, pid, title, kind, depth

    def __repr__(self):
        return f"<{self.kind} {self.title!r} of {self.pid} at {tuple(self.rect)}>"


class Screen:
    """One connection to a display."""

    def __init__(self, name):
        self.display = display.Display(name)
        self.root = self.display.screen().root
        self._clicked = 0.0

    def close(self):
        self.display.close()

    # ---- windows

    def _property(self, window, name):
        found = window.get_full_property(self.display.intern_atom(name), X.AnyPropertyType)
        return None if found is None else found.value

    def _window(self, handle, depth):
        if handle.get_attributes().map_state != X.IsViewable:
            return None
        geometry = handle.get_geometry()
        place = handle.translate_coords(self.root, 0, 0)
        pid = self._property(handle, "_NET_WM_PID")
        types = self._property(handle, "_NET_WM_WINDOW_TYPE")
        kind = self.display.get_atom_name(types[0]).replace("_NET_WM_WINDOW_TYPE_", "") if types else None
        title = self._property(handle, "_NET_WM_NAME")
        if isinstance(title, bytes):
            title = title.decode(errors="replace")
        # The coordinates of the root inside the window are the window's place, negated.
        rect = Rect(-place.x, -place.y, geometry.width, geometry.height)
        return Window(handle, rect, pid[0] if pid else None, title, kind, depth)

    def windows(self, pid=None):
        """The viewable windows, of one process or of all."""
        found = []

        def visit(parent, depth):
            for child in parent.query_tree().children:
                try:
                    window = self._window(child, depth)
                    if window is None:
                        continue
                    if window.pid is not None and pid in (None, window.pid):
                        found.append(window)
                    visit(child, depth + 1)
                except (error.BadWindow, error.BadDrawable, error.BadMatch):
                    pass  # gone in the meantime

        visit(self.root, 0)
        return found

    def tell_work_area(self, top):
        """Says for the window manager that so much is taken at the top of the screen."""
        screen = self.root.get_geometry()
        area = [0, top, screen.width, screen.height - top]
        atom = self.display.intern_atom("_NET_WORKAREA")
        desktops = len(self.root.get_full_property(atom, X.AnyPropertyType).value) // 4
        self.root.change_property(atom, Xatom.CARDINAL, 32, area * desktops)
        self.display.sync()

    def has_keyboard(self, window):
        return getattr(self.display.get_input_focus().focus, "id", None) == window.id

    def open_maximised_window(self):
        """A window that fills what the window manager leaves it: what tells its place with its frame, and itself. The place
        may change a few times before it is final."""
        handle = self.root.create_window(100, 100, 300, 200, 0, X.CopyFromParent, background_pixel=0x336699)
        states = [self.display.intern_atom(f"_NET_WM_STATE_MAXIMIZED_{way}") for way in ("VERT", "HORZ")]
        handle.change_property(self.display.intern_atom("_NET_WM_STATE"), Xatom.ATOM, 32, states)
        handle.map()
        self.display.sync()

        def frame():
            outer = handle
            while (parent := outer.query_tree().parent) != self.root:
                outer = parent
            geometry = outer.get_geometry()
            return Rect(geometry.x, geometry.y, geometry.width, geometry.height)

        wait_until(lambda: frame().width >= 900, "a maximised window")
        return frame, handle

    def selection_owner(self, name):
        """The id of the window that owns a selection, 0 when none does."""
        owner = self.display.get_selection_owner(self.display.intern_atom(name))
        return owner.id if owner else 0

    def clipboard(self):
        """The text that would be pasted; None while nobody has copied one."""
        selection, text, place = (self.display.intern_atom(name) for name in ("CLIPBOARD", "UTF8_STRING", "OMBREL_TEST"))
        window = self.root.create_window(0, 0, 1, 1, 0, X.CopyFromParent)
        window.convert_selection(selection, text, place, X.CurrentTime)
        self.display.sync()

        def answer():
            while self.display.pending_events():
                event = self.display.next_event()
                if event.type == X.SelectionNotify and event.requestor == window:
                    return event
            return None

        try:
            if wait_until(answer, "what is in the clipboard").property == X.NONE:
                return None
            return window.get_full_property(place, X.AnyPropertyType).value.decode()
        finally:
            window.destroy()

    def has_window_manager(self):
        return self._property(self.root, "_NET_SUPPORTING_WM_CHECK") is not None

    # ---- the picture

    def picture(self, rect=None):
        """What is seen there, as an RGB picture; black outside of the screen."""
        screen = self.root.get_geometry()
        rect = rect or Rect(0, 0, screen.width, screen.height)
        left, top = max(rect.x, 0), max(rect.y, 0)
        right, bottom = min(rect.x + rect.width, screen.width), min(rect.y + rect.height, screen.height)
        result = Image.new("RGB", (rect.width, rect.height))
        if left < right and top < bottom:
            size = right - left, bottom - top
            raw = self.root.get_image(left, top, *size, X.ZPixmap, 0xFFFFFFFF)
            result.paste(Image.frombytes("RGB", size, raw.data, "raw", "BGRX"), (left - rect.x, top - rect.y))
        return result

    def steady_picture(self, rect=None):
        """The picture as soon as it has stopped to change."""
        seen = [self.picture(rect)]

        def unchanged():
            seen.append(self.picture(rect))
            return len(seen) > 4 and len({picture.tobytes() for picture in seen[-4:]}) == 1

        wait_until(unchanged, "a picture that stands still", interval=0.04)
        return seen[-1]

    # ---- the mouse and the keyboard

    def move_to(self, x, y):
        xtest.fake_input(self.display, X.MotionNotify, x=x, y=y)
        self.display.sync()

    def press_button(self, button):
        xtest.fake_input(self.display, X.ButtonPress, button)
        self.display.sync()

    def release_button(self, button):
        xtest.fake_input(self.display, X.ButtonRelease, button)
        self.display.sync()

    def click(self, x, y, button=LEFT, seconds=0.04):
        """Presses for as long as a quick finger does: what acts on the press has acted when the button comes up. Waits
        before that so that two clicks are two and not a double click."""
        time.sleep(max(0.0, self._clicked + NO_DOUBLE_CLICK - time.monotonic()))
        self.move_to(x, y)
        self.press_button(button)
        time.sleep(seconds)
        self.release_button(button)
        self._clicked = time.monotonic()

    def _key_code(self, name):
        return self.display.keysym_to_keycode(XK.string_to_keysym(name))

    def press_key(self, name):
        """Holds a key down; the server repeats it until it is released."""
        xtest.fake_input(self.display, X.KeyPress, self._key_code(name))
        self.display.sync()

    def release_key(self, name):
        xtest.fake_input(self.display, X.KeyRelease, self._key_code(name))
        self.display.sync()

    def repeat_key(self, name):
        """One repetition of a key that is held, as a server sends it: a release with a press right behind it."""
        xtest.fake_input(self.display, X.KeyRelease, self._key_code(name))
        xtest.fake_input(self.display, X.KeyPress, self._key_code(name))
        self.display.sync()

    def key(self, name, *modifiers):
        """Presses and releases a key, with others held: `key("q", "Control_L")`."""
        codes = [self._key_code(each) for each in (*modifiers, name)]
        for code in codes:
            xtest.fake_input(self.display, X.KeyPress, code)
        for code in reversed(codes):
            xtest.fake_input(self.display, X.KeyRelease, code)
        self.display.sync()

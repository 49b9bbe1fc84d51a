"""The interface as a screen reader meets it: the AT-SPI tree of an application, read and operated over its bus."""

from gi.repository import Gio, GLib

from bus import Connection
from screen import Rect
from waiting import wait_until

REGISTRY = "org.a11y.atspi.Registry"
ROOT = "/org/a11y/atspi/accessible/root"
ACCESSIBLE, ACTION, COMPONENT = (f"org.a11y.atspi.{name}" for name in ("Accessible", "Action", "Component"))

# Positions in the bit set of states.
STATES = {"checked": 4, "enabled": 8, "expanded": 10, "focusable": 11, "focused": 12, "selected": 23, "sensitive": 24,
          "showing": 25, "visible": 30, "checkable": 41}
LABELLED_BY = 2


class Accessible:
    """One object of the tree; whatever is asked is asked anew."""

    def __init__(self, connection, service, path):
        self._connection, self._service, self._path = connection, service, path

    def __eq__(self, other):
        return isinstance(other, Accessible) and (self._service, self._path) == (other._service, other._path)

    def _call(self, interface, method, arguments=None):
        return self._connection.call(self._service, self._path, interface, method, arguments)

    def _get(self, name, interface=ACCESSIBLE):
        return self._connection.get(self._service, self._path, interface, name)

    def _other(self, reference):
        return Accessible(self._connection, *reference)

    @property
    def name(self):
        return self._get("Name")

    @property
    def description(self):
        return self._get("Description")

    @property
    def role(self):
        return self._call(ACCESSIBLE, "GetRoleName")[0]

    @property
    def value(self):
        return self._get("CurrentValue", "org.a11y.atspi.Value")

    @property
    def label(self):
        """The text of what labels the object: an object of its own beside it."""
        relations = dict(self._call(ACCESSIBLE, "GetRelationSet")[0])
        return " ".join(self._other(target).name for target in relations.get(LABELLED_BY, []))

    @property
    def parent(self):
        return self._other(self._get("Parent"))

    @property
    def children(self):
        return [self._other(reference) for reference in self._call(ACCESSIBLE, "GetChildren")[0]]

    def has(self, state):
        low, high = self._call(ACCESSIBLE, "GetState")[0]
        return bool((low | high << 32) >> STATES[state] & 1)

    @property
    def rect(self):
        """On the screen."""
        return Rect(*self._call(COMPONENT, "GetExtents", GLib.Variant("(u)", (0,)))[0])

    def do(self, action):
        """Does one of the actions that the object offers to a screen reader, by its name."""
        offered = [each[0].lower() for each in self._call(ACTION, "GetActions")[0]]
        self._call(ACTION, "DoAction", GLib.Variant("(i)", (offered.index(action),)))

    def walk(self):
        """The object and all below it."""
        yield self
        for child in self.children:
            yield from child.walk()

    def find_all(self, role):
        return [each for each in self.walk() if each.role == role]

    def find(self, role, name=None, label=None):
        """The first with the role, and with the name or the label if one is given."""
        for each in self.find_all(role):
            if name in (None, each.name) and label in (None, each.label):
                return each
        raise LookupError(f"no {role} {name or label!r} in:\n" + "\n".join(self.describe()))

    def describe(self, depth=0):
        """The tree in lines, for a message."""
        lines = [f"{'  ' * depth}{self.role} {self.name!r}"]
        for child in self.children:
            lines += child.describe(depth + 1)
        return lines

    def window(self):
        """The outermost object below the application that holds this one."""
        each = self
        while (above := each.parent)._path != ROOT:
            each = above
        return each


class AccessibilityBus:
    """Where the applications of a desktop offer their trees and tell where the keyboard is."""

    def __init__(self, session_connection, loop):
        (address,) = session_connection.call("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress")
        self._connection = Connection(address)
        self.focused = []  # what has got the keyboard, one after the other
        loop.invoke(lambda: self._connection.gio.signal_subscribe(
            None, "org.a11y.atspi.Event.Object", "StateChanged", None, "focused", Gio.DBusSignalFlags.NONE,
            self._focus_changed))
        # Applications tell only what somebody wants to hear.
        self._connection.gio.call_sync(REGISTRY, "/org/a11y/atspi/registry", REGISTRY, "RegisterEvent",
                                       GLib.Variant("(sass)", ("object:state-changed:focused", [], "")), None,
                                       Gio.DBusCallFlags.NONE, 5000, None)

    def close(self):
        self._connection.close()

    def _focus_changed(self, _connection, sender, path, _interface, _signal, arguments):
        if arguments.unpack()[1]:
            self.focused.append(Accessible(self._connection, sender, path))

    def focus(self):
        """What got the keyboard last; absent when nothing has yet."""
        return self.focused[-1] if self.focused else None

    def forget_focus(self):
        self.focused.clear()

    def _process_of(self, service):
        return self._connection.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                     "GetConnectionUnixProcessID", GLib.Variant("(s)", (service,)))[0]

    def application(self, pid):
        """The tree of a process; absent while it offers none."""
        try:
            desktop = Accessible(self._connection, REGISTRY, ROOT)
            return next((child for child in desktop.children if self._process_of(child._service) == pid), None)
        except GLib.Error:
            return None  # some process is just ending

    def wait_for_application(self, pid):
        return wait_until(lambda: self.application(pid), "the application on the accessibility bus")

"""A tray of the StatusNotifierItem kind that shows nothing: it knows the items and can do what a person does to them."""

from gi.repository import Gio, GLib
from PIL import Image

from bus import StandIn


class MenuItem:
    """One entry of an item's menu, as it was told at one moment."""

    def __init__(self, layout):
        self.id, properties, children = layout
        self.separator = properties.get("type") == "separator"
        self.title = properties.get("label", "").replace("__", "\0").replace("_", "").replace("\0", "_")
        self.enabled = properties.get("enabled", True)
        self.checkable = bool(properties.get("toggle-type"))
        self.checked = properties.get("toggle-state", 0) == 1
        self.shortcut = properties.get("shortcut", [])
        self.children = [MenuItem(child) for child in children]

    def __getitem__(self, title):
        return next(child for child in self.children if child.title == title)

    def titles(self):
        return ["-" if child.separator else child.title for child in self.children]

    def checked_titles(self):
        return [child.title for child in self.children if child.checked]


class NotifierItem:
    """An item in the tray."""

    INTERFACE = "org.kde.StatusNotifierItem"
    MENU_INTERFACE = "com.canonical.dbusmenu"

    def __init__(self, connection, service, path):
        self._connection, self._service, self._path = connection, service, path

    def get(self, name):
        return self._connection.get(self._service, self._path, self.INTERFACE, name)

    def tooltip(self):
        _icon, _pixmaps, title, _text = self.get("ToolTip")
        return title

    def pictures(self):
        """The item's pictures by their width, RGBA."""
        found = {}
        packed = self._connection.get_packed(self._service, self._path, self.INTERFACE, "IconPixmap")
        for index in range(packed.n_children()):
            width, height, data = (packed.get_child_value(index).get_child_value(field) for field in range(3))
            width, height = width.get_int32(), height.get_int32()
            alpha, red, green, blue = Image.frombytes("RGBA", (width, height), data.get_data_as_bytes().get_data()).split()
            found[width] = Image.merge("RGBA", (red, green, blue, alpha))
        return found

    def activate(self, x=0, y=0):
        """The left click."""
        self._connection.call(self._service, self._path, self.INTERFACE, "Activate", GLib.Variant("(ii)", (x, y)))

    def _menu_call(self, method, arguments):
        return self._connection.call(self._service, self.get("Menu"), self.MENU_INTERFACE, method, arguments)

    def open_menu(self, title=None):
        """What a host does for the right click: tells that the menu is about to be shown, then reads it.
        `title` opens a submenu as well. Returns the whole menu."""
        self._menu_call("AboutToShow", GLib.Variant("(i)", (0,)))
        if title:
            self._menu_call("AboutToShow", GLib.Variant("(i)", (self.read_menu()[title].id,)))
        return self.read_menu()

    def read_menu(self):
        _revision, layout = self._menu_call("GetLayout", GLib.Variant("(iias)", (0, -1, [])))
        return MenuItem(layout)

    def choose(self, *titles):
        """Opens the menu and its submenus and chooses the entry at the end of the path of titles."""
        entry = self.open_menu(*titles[:-1])
        for title in titles:
            entry = entry[title]
        self._menu_call("Event", GLib.Variant("(isvu)", (entry.id, "clicked", GLib.Variant("s", ""), 0)))


class NotifierTray(StandIn):
    """The watcher of items and the only host in one."""

    name = "org.kde.StatusNotifierWatcher"
    path = "/StatusNotifierWatcher"
    interface = "org.kde.StatusNotifierWatcher"
    xml = """<node><interface name="org.kde.StatusNotifierWatcher">
        <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
        <method name="RegisterStatusNotifierHost"><arg type="s" direction="in"/></method>
        <property name="RegisteredStatusNotifierItems" type="as" access="read"/>
        <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
        <property name="ProtocolVersion" type="i" access="read"/>
        <signal name="StatusNotifierItemRegistered"><arg type="s"/></signal>
        <signal name="StatusNotifierItemUnregistered"><arg type="s"/></signal>
        <signal name="StatusNotifierHostRegistered"/></interface></node>"""

    def __init__(self, loop, address):
        self._items = {}  # the name that an item registered: its connection's name
        super().__init__(loop, address)
        loop.invoke(lambda: self.connection.gio.signal_subscribe(
            "org.freedesktop.DBus", "org.freedesktop.DBus", "NameOwnerChanged", "/org/freedesktop/DBus", None,
            Gio.DBusSignalFlags.NONE, self._owner_changed))
        self.emit("StatusNotifierHostRegistered", None)

    def _owner_changed(self, _connection, _sender, _path, _interface, _signal, arguments):
        name, _old, new = arguments.unpack()
        if not new:
            self._items = {item: owner for item, owner in self._items.items() if name not in (item, owner)}

    def handle(self, sender, method, arguments):
        if method == "RegisterStatusNotifierItem":
            self._items[arguments[0]] = sender
        return None

    def read(self, name):
        return {"RegisteredStatusNotifierItems": GLib.Variant("as", list(self._items)),
                "IsStatusNotifierHostRegistered": GLib.Variant("b", True),
                "ProtocolVersion": GLib.Variant("i", 0)}[name]

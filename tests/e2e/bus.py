"""D-Bus: connections, and stand-ins for the services of a desktop that Ombrel talks to.

A stand-in answers from a thread of its own, so that a test may wait for the application while the application waits for it.
"""

import threading

from gi.repository import Gio, GLib

CALL_TIMEOUT_MS = 5000


class Loop:
    """A thread that serves D-Bus objects."""

    def __init__(self):
        self._context = GLib.MainContext()
        self._loop = GLib.MainLoop.new(self._context, False)
        self._thread = threading.Thread(target=self._run, daemon=True)
        self._thread.start()

    def _run(self):
        self._context.push_thread_default()
        self._loop.run()
        self._context.pop_thread_default()

    def invoke(self, function):
        """Runs `function` in the thread, waits for it and returns its result."""
        done, outcome = threading.Event(), []

        def call(_data=None):
            try:
                outcome.append((function(), None))
            except Exception as problem:  # handed to the caller
                outcome.append((None, problem))
            done.set()
            return GLib.SOURCE_REMOVE

        source = GLib.idle_source_new()
        source.set_callback(call)
        source.attach(self._context)
        if not done.wait(CALL_TIMEOUT_MS / 1000):
            raise TimeoutError("the thread of the D-Bus stand-ins does not answer")
        result, problem = outcome[0]
        if problem:
            raise problem
        return result

    def close(self):
        self._loop.quit()
        self._thread.join(5)


class Connection:
    """A connection to one bus."""

    def __init__(self, address):
        flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        self.gio = Gio.DBusConnection.new_for_address_sync(address, flags, None, None)

    def close(self):
        if not self.gio.is_closed():
            self.gio.close_sync(None)

    def call_packed(self, service, path, interface, method, arguments=None):
        """Calls and waits. The result is a variant, the tuple of what came back."""
        return self.gio.call_sync(service, path, interface, method, arguments, None, Gio.DBusCallFlags.NO_AUTO_START,
                                  CALL_TIMEOUT_MS, None)

    def call(self, *what):
        return self.call_packed(*what).unpack()

    def get_packed(self, service, path, interface, name):
        answer = self.call_packed(service, path, "org.freedesktop.DBus.Properties", "Get",
                                  GLib.Variant("(ss)", (interface, name)))
        return answer.get_child_value(0).get_variant()

    def get(self, *what):
        return self.get_packed(*what).unpack()

    def has_owner(self, name):
        return self.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner",
                         GLib.Variant("(s)", (name,)))[0]

    def own(self, name):
        (answer,) = self.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
                              GLib.Variant("(su)", (name, 4)))  # 4: do not queue
        if answer != 1:
            raise RuntimeError(f"somebody else owns {name}")


class StandIn:
    """Serves one object under a well-known name, on a connection of its own. Sub-classes answer `handle` and `read`."""

    name = path = interface = xml = None

    def __init__(self, loop, address):
        self.connection = Connection(address)
        info = Gio.DBusNodeInfo.new_for_xml(self.xml).interfaces[0]
        loop.invoke(lambda: self.connection.gio.register_object(self.path, info, self._called, self._asked, None))
        self.connection.own(self.name)

    def close(self):
        """The name is free again afterwards, as if the service had ended."""
        self.connection.close()

    def emit(self, signal, arguments):
        self.connection.gio.emit_signal(None, self.path, self.interface, signal, arguments)
        self.connection.gio.flush_sync(None)

    def handle(self, sender, method, arguments):
        raise NotImplementedError(method)

    def read(self, name):
        raise NotImplementedError(name)

    def _called(self, _connection, sender, _path, _interface, method, arguments, invocation):
        try:
            invocation.return_value(self.handle(sender, method, arguments.unpack()))
        except Exception as problem:
            invocation.return_dbus_error("org.freedesktop.DBus.Error.Failed", str(problem))

    def _asked(self, _connection, _sender, _path, _interface, name):
        return self.read(name)


class LoginManager(StandIn):
    """logind, as far as it tells about sleeping."""

    name = "org.freedesktop.login1"
    path = "/org/freedesktop/login1"
    interface = "org.freedesktop.login1.Manager"
    xml = """<node><interface name="org.freedesktop.login1.Manager">
        <signal name="PrepareForSleep"><arg type="b"/></signal></interface></node>"""

    def sleep(self):
        self.emit("PrepareForSleep", GLib.Variant("(b)", (True,)))

    def wake(self):
        self.emit("PrepareForSleep", GLib.Variant("(b)", (False,)))


class SettingsPortal(StandIn):
    """The desktop portal's settings: light or dark."""

    name = "org.freedesktop.portal.Desktop"
    path = "/org/freedesktop/portal/desktop"
    interface = "org.freedesktop.portal.Settings"
    xml = """<node><interface name="org.freedesktop.portal.Settings">
        <method name="Read"><arg type="s" direction="in"/><arg type="s" direction="in"/>
          <arg type="v" direction="out"/></method>
        <signal name="SettingChanged"><arg type="s"/><arg type="s"/><arg type="v"/></signal>
        <property name="version" type="u" access="read"/></interface></node>"""

    GROUP, KEY = "org.freedesktop.appearance", "color-scheme"
    SCHEMES = {"none": 0, "dark": 1, "light": 2}

    def __init__(self, loop, address, scheme="light"):
        self.scheme = scheme
        super().__init__(loop, address)

    def set_scheme(self, scheme):
        self.scheme = scheme
        self.emit("SettingChanged", GLib.Variant("(ssv)", (self.GROUP, self.KEY, self._value())))

    def _value(self):
        return GLib.Variant("u", self.SCHEMES[self.scheme])

    def handle(self, sender, method, arguments):
        if (method, arguments) != ("Read", (self.GROUP, self.KEY)):
            raise KeyError("no such setting")
        return GLib.Variant("(v)", (GLib.Variant("v", self._value()),))  # the portal wraps it twice

    def read(self, name):
        return GLib.Variant("u", 1)


class FileManager(StandIn):
    """A file manager that notes which items it is to show."""

    name = interface = "org.freedesktop.FileManager1"
    path = "/org/freedesktop/FileManager1"
    xml = """<node><interface name="org.freedesktop.FileManager1">
        <method name="ShowItems"><arg type="as" direction="in"/><arg type="s" direction="in"/></method></interface></node>"""

    def __init__(self, loop, address):
        self.shown = []
        super().__init__(loop, address)

    def handle(self, sender, method, arguments):
        self.shown.append(arguments[0])

"""The accessibility bus at its source, for what no window lists and only events tell: the menus of panels."""

from gi.repository import Gio, GLib

SPI = "org.a11y.atspi."
SENSITIVE, SHOWING, VISIBLE = 24, 25, 30


class Element:
    """Something on a screen; what it is asked for is asked of the program that shows it, each time anew."""

    def __init__(self, bus, owner, path):
        self.bus, self.owner, self.path = bus, owner, path

    def ask(self, interface, method, arguments=None):
        return self.bus.call_sync(self.owner, self.path, interface, method, arguments, None,
                                  Gio.DBusCallFlags.NONE, 10000, None).unpack()

    def fact(self, name):
        return self.ask("org.freedesktop.DBus.Properties", "Get", GLib.Variant("(ss)", (SPI + "Accessible", name)))[0]

    @property
    def name(self):
        return self.fact("Name")

    @property
    def parent(self):
        return Element(self.bus, *self.fact("Parent"))

    @property
    def role(self):
        """Nothing once it is gone."""
        try:
            return self.ask(SPI + "Accessible", "GetRoleName")[0]
        except GLib.Error:
            return None

    def has(self, state):
        low, high = self.ask(SPI + "Accessible", "GetState")[0]
        return bool((low | high << 32) >> state & 1)

    @property
    def box(self):
        return self.ask(SPI + "Component", "GetExtents", GLib.Variant("(u)", (0,)))[0]

    def __iter__(self):
        return (Element(self.bus, *each) for each in self.ask(SPI + "Accessible", "GetChildren")[0])


class EventReader:
    """Notes what appears."""

    def __init__(self, address):
        self.appeared = []
        self.context = GLib.MainContext()
        self.context.push_thread_default()
        kind = Gio.DBusConnectionFlags
        self.bus = Gio.DBusConnection.new_for_address_sync(
            address, kind.AUTHENTICATION_CLIENT | kind.MESSAGE_BUS_CONNECTION, None, None)
        self.bus.signal_subscribe(None, SPI + "Event.Object", "StateChanged", None, "showing", Gio.DBusSignalFlags.NONE,
                                  self.note)
        self.context.pop_thread_default()
        self.bus.call_sync(SPI + "Registry", "/org/a11y/atspi/registry", SPI + "Registry", "RegisterEvent",
                           GLib.Variant("(sass)", ("object:state-changed:showing", [], "")), None,
                           Gio.DBusCallFlags.NONE, 10000, None)

    def note(self, _bus, sender, path, _interface, _member, arguments):
        if arguments[1]:
            self.appeared.append(Element(self.bus, sender, path))

    def look(self):
        """Everything that appeared since it was last forgotten."""
        while self.context.iteration(False):
            pass
        return self.appeared

    def forget(self):
        self.look()
        self.appeared.clear()

"""A window with a line to write in and, as editors have it, a terminal; it prints the pastes that it gets."""

import gi

for library, version in (("Gtk", "3.0"), ("Gdk", "3.0"), ("Atk", "1.0")):
    gi.require_version(library, version)
from gi.repository import Atk, Gdk, Gtk  # noqa: E402


def pressed(widget, event):
    if event.keyval in (Gdk.KEY_v, Gdk.KEY_V):
        held = [name for name, mask in (("Control", Gdk.ModifierType.CONTROL_MASK),
                                        ("Shift", Gdk.ModifierType.SHIFT_MASK)) if event.state & mask]
        print(widget.get_name(), "+".join([*held, "v"]), flush=True)
        return True
    if event.keyval == Gdk.KEY_Tab:
        terminal.grab_focus()
        return True
    return False


window = Gtk.Window(title="terminal inside")
panes = Gtk.Box(orientation=Gtk.Orientation.VERTICAL)
terminal = Gtk.TextView(name="terminal")
terminal.get_accessible().set_role(Atk.Role.TERMINAL)
scrolled = Gtk.ScrolledWindow(child=terminal)
book = Gtk.Notebook()
book.append_page(scrolled, Gtk.Label(label="Terminal"))
entry = Gtk.Entry(name="entry")
for widget in (Gtk.MenuBar(), entry, book):
    panes.add(widget)
for widget in (entry, terminal):
    widget.connect("key-press-event", pressed)
window.add(panes)
window.show_all()
entry.grab_focus()
Gtk.main()

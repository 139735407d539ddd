"""The icon in the panel of the desktop that this runs in, as screen readers are told of it."""

import os

STATES = ("Sayvane: ready", "● Listening…", "Transcribing…")
# The program of the panel, and what it calls the icon.
PANEL, ROLE, NAMES = {"GNOME": ("gnome-shell", "menu", STATES), "KDE": ("plasmashell", "push button", ("Sayvane",)),
                      "LXQt": ("lxqt-panel", "push button", ("",))}[os.environ["XDG_CURRENT_DESKTOP"]]


def shown(item, showing):
    for child in item:
        if child and child.getState().contains(showing):
            yield child
            yield from shown(child, showing)


def places(spi, names, role):
    """The middles of what the panel shows of one of these names, from left to right."""
    found = []
    for panel in spi.Registry.getDesktop(0):
        if panel and panel.name == PANEL:
            for each in shown(panel, spi.STATE_SHOWING):
                if each.name in names and each.getRoleName() == role:
                    box = each.queryComponent().getExtents(spi.DESKTOP_COORDS)
                    found.append((box.x + box.width // 2, box.y + box.height // 2))
    return sorted(found)


def icons(spi):
    """Where they are; a window of Plasma's with the same name is left of them."""
    return places(spi, NAMES, ROLE)

#!/usr/bin/python3
"""Prints what a screen reader is told: the name of every notification that appears."""
import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi


def appeared(event):
    if "showing" in event.type and event.detail1 and event.source.get_role() == Atspi.Role.NOTIFICATION:
        print(event.source.get_name(), event.source.get_child_count(), flush=True)


listener = Atspi.EventListener.new(appeared)
listener.register("object:state-changed:showing")
listener.register("object:property-change:accessible-name")  # as screen readers do; names are cached
print("listening", flush=True)
Atspi.event_main()
